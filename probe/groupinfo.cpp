// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "groupinfo.h"

#include "jsonreply.h"

namespace {

constexpr int mostWallboxes = 32; // as many as the plugin has wallbox classes

const QLatin1String evseIdsKey("evse_ids");
const QLatin1String maxCurrentKey("max_charging_current");

Findings judgeMaxCurrent(const QString &wallbox, const QJsonValue &record)
{
    const QJsonValue value = record.toObject().value(maxCurrentKey);
    const int ampere = value.toInt();
    if (ampere >= smallestCurrent && ampere <= largestCurrent)
        return {};
    QString text =
        QStringLiteral("\"max_charging_current\" is %1; the plugin takes whole amperes from 6 to 32");
    if (ampere == 0 && value != QJsonValue(0))
        text += QLatin1String(" and would read 0");
    return {problem("unusable-max-current", text).quoting(inWords(value)).about(wallbox)};
}

} // namespace

Findings judgeGroupInfo(const QByteArray &body)
{
    Findings findings = judgeMember(body, evseIdsKey, "no-evse-ids");
    if (hasProblem(findings)) {
        for (Finding &finding : findings)
            finding.text += groupLossWarning();
        return findings;
    }
    const QJsonObject evseIds = listedWallboxes(body);
    if (evseIds.isEmpty())
        findings.append(problem("no-wallboxes",
                                QStringLiteral("the group has no wallbox; discovery takes that for a backend "
                                               "out of reach")
                                    + groupLossWarning()));
    if (evseIds.size() > mostWallboxes)
        findings.append(problem("too-many-wallboxes",
                                QStringLiteral("the group lists %1 wallboxes; it should not list more than "
                                               "%2. At first the others get no thing, but each restart of "
                                               "nymea creates up to %2 more, and several then share a thing "
                                               "class")
                                    .arg(evseIds.size())
                                    .arg(mostWallboxes)));
    for (auto it = evseIds.begin(); it != evseIds.end(); ++it)
        findings += judgeMaxCurrent(it.key(), it.value());
    return findings;
}

QString groupLossWarning()
{
    return QStringLiteral(
        "; at a gateway's set-up, as at each start of nymea, such a reply removes every wallbox "
        "together with its total energy");
}

QJsonObject listedWallboxes(const QByteArray &body)
{
    return objectIn(body).value(evseIdsKey).toObject();
}

QStringList describeWallboxes(const QJsonObject &evseIds)
{
    QStringList lines;
    for (auto it = evseIds.begin(); it != evseIds.end(); ++it)
        lines.append(
            it.key()
            + QStringLiteral(": up to %1 A").arg(it.value().toObject().value(maxCurrentKey).toInt()));
    return lines;
}

Findings judgeLimitRequest(const LimitRequest &limit, const QJsonObject &evseIds)
{
    if (!evseIds.contains(limit.wallbox))
        return {problem("limit-not-sent", QStringLiteral("not a wallbox of this group; no limit was sent"))
                    .about(limit.wallbox)};
    const int largest = evseIds.value(limit.wallbox).toObject().value(maxCurrentKey).toInt();
    if (limit.ampere > largest)
        return {
            problem("limit-not-sent",
                    QStringLiteral("%1 A is more than the %2 A that the group allows it; no limit was sent")
                        .arg(limit.ampere)
                        .arg(largest))
                .about(limit.wallbox)};
    return {};
}
