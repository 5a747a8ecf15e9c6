// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "fault.h"

namespace {

constexpr std::chrono::hours untilEnded{24 * 365};

// The control endpoint and the page read this table: a new fault needs a row here, its effect in effectOf() and a
// line in README.md.
constexpr struct
{
    BodyMember member;
    const char *label; // of the page's field
    const char *says;
} faultTable[] = {
    {{"status", BodyMember::WholeNumber, 200, 599},           "Status",    "status %1"       },
    {{"delayMs", BodyMember::WholeNumber, 0, 10 * 60 * 1000}, "Delay, ms", "a delay of %1 ms"},
    {{"garbage", BodyMember::Flag},                           "Garbage",   "garbage"         },
    {{"silent", BodyMember::Flag},                            "No answer", "no answer"       },
};

} // namespace

std::vector<BodyMember> faultMembers()
{
    std::vector<BodyMember> members;
    for (const auto &fault : faultTable)
        members.push_back(fault.member);
    return members;
}

FaultEffect effectOf(const QJsonObject &faults)
{
    const QString refused = QStringLiteral("the backend is told to answer with status %1");
    const int status = faults.value(QLatin1String("status")).toInt(200);
    FaultEffect effect;
    effect.hold = std::chrono::milliseconds(faults.value(QLatin1String("delayMs")).toInt());
    if (faults.contains(QLatin1String("silent")))
        effect.hold = untilEnded;
    if (faults.contains(QLatin1String("garbage")))
        effect.reply = HttpReply{status, "\x1f<garbage \"values\": {["};
    else if (faults.contains(QLatin1String("status")))
        effect.reply = refusal(status, refused.arg(status));
    return effect;
}

QJsonArray describeFaults()
{
    QJsonArray faults;
    for (const auto &[member, label, says] : faultTable)
        faults.append(QJsonObject{
            {QStringLiteral("name"),  QLatin1String(member.name)},
            {QStringLiteral("label"), QLatin1String(label)      },
            {QStringLiteral("says"),  QLatin1String(says)       },
            {QStringLiteral("least"), member.least              },
            {QStringLiteral("most"),  member.most               }
        });
    return faults;
}
