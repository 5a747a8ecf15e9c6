// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "fault.h"

namespace {

constexpr std::chrono::hours untilLifted{24 * 365};

void setStatus(FaultEffect &effect, const QJsonValue &value)
{
    const int status = value.toInt();
    effect.reply =
        refusal(status, QStringLiteral("the backend is told to answer with status %1").arg(status));
}

void setDelay(FaultEffect &effect, const QJsonValue &value)
{
    effect.hold = std::max(effect.hold, std::chrono::milliseconds(value.toInt()));
}

void setGarbage(FaultEffect &effect, const QJsonValue & /*value*/)
{
    const int status = effect.reply ? effect.reply->status : 200;
    effect.reply = HttpReply{status, "\x1f<garbage \"values\": {["};
}

void setSilent(FaultEffect &effect, const QJsonValue & /*value*/)
{
    effect.hold = untilLifted;
}

// The control endpoint and the page read this table: a new fault needs a row here and a line in README.md. They
// are applied in this order.
constexpr struct
{
    BodyMember member;
    const char *label; // of the page's field
    const char *says;
    void (*apply)(FaultEffect &effect, const QJsonValue &value);
} faultTable[] = {
    {{"status", BodyMember::WholeNumber, 200, 599},           "Status",    "status %1",        &setStatus },
    {{"delayMs", BodyMember::WholeNumber, 0, 10 * 60 * 1000}, "Delay, ms", "a delay of %1 ms", &setDelay  },
    {{"garbage", BodyMember::Flag},                           "Garbage",   "garbage",          &setGarbage},
    {{"silent", BodyMember::Flag},                            "No answer", "no answer",        &setSilent },
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
        if (faults.contains(QLatin1String(fault.member.name)))
            fault.apply(effect, faults.value(QLatin1String(fault.member.name)));
    }
    return effect;
}

QJsonArray describeFaults()
{
    QJsonArray faults;
    for (const auto &[member, label, says, apply] : faultTable)
        faults.append(QJsonObject{
            {QStringLiteral("name"),  QLatin1String(member.name)},
            {QStringLiteral("label"), QLatin1String(label)      },
            {QStringLiteral("says"),  QLatin1String(says)       },
            {QStringLiteral("least"), member.least              },
            {QStringLiteral("most"),  member.most               }
        });
    return faults;
}
