// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "fault.h"

namespace {

constexpr std::chrono::hours untilEnded{24 * 365};

void refuse(const QJsonValue &status, FaultEffect *effect)
{
    const QString reason = QStringLiteral("the backend is told to answer with status %1");
    effect->reply = refusal(status.toInt(), reason.arg(status.toInt()));
}

void delay(const QJsonValue &milliseconds, FaultEffect *effect)
{
    effect->hold = std::chrono::milliseconds(milliseconds.toInt());
}

void garble(const QJsonValue &, FaultEffect *effect)
{
    effect->reply = HttpReply{effect->reply ? effect->reply->status : 200, "\x1f<garbage \"values\": {["};
}

void keepSilent(const QJsonValue &, FaultEffect *effect)
{
    effect->hold = untilEnded;
}

// In the order in which they take effect. The control endpoint and the page read this table: a new fault needs a
// row here and a line in README.md.
constexpr struct
{
    BodyMember member;
    void (*apply)(const QJsonValue &value, FaultEffect *effect);
    const char *label; // of the page's field
    const char *says;
} faultTable[] = {
    {{"status", BodyMember::WholeNumber, 200, 599},           refuse,     "Status",    "status %1"       },
    {{"delayMs", BodyMember::WholeNumber, 0, 10 * 60 * 1000}, delay,      "Delay, ms", "a delay of %1 ms"},
    {{"garbage", BodyMember::Flag},                           garble,     "Garbage",   "garbage"         },
    {{"silent", BodyMember::Flag},                            keepSilent, "No answer", "no answer"       },
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
    FaultEffect effect;
    for (const auto &fault : faultTable) {
        const QJsonValue value = faults.value(QLatin1String(fault.member.name));
        if (!value.isUndefined())
            fault.apply(value, &effect);
    }
    return effect;
}

QJsonArray describeFaults()
{
    QJsonArray faults;
    for (const auto &fault : faultTable)
        faults.append(QJsonObject{
            {QStringLiteral("name"),  QLatin1String(fault.member.name)},
            {QStringLiteral("label"), QLatin1String(fault.label)      },
            {QStringLiteral("says"),  QLatin1String(fault.says)       },
            {QStringLiteral("least"), fault.member.least              },
            {QStringLiteral("most"),  fault.member.most               }
        });
    return faults;
}
