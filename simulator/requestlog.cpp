// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "requestlog.h"

#include <QDateTime>
#include <QJsonDocument>

#include <set>

namespace {

constexpr std::size_t requestsKept = 200;
constexpr int largestBodyKept = 64 * 1024; // bytes; 200 larger ones would take too much memory

/*! Clients may put the secret anywhere by mistake, and the page shows what is logged. */
QJsonValue withoutSecrets(const QJsonValue &value)
{
    if (value.isArray()) {
        QJsonArray array = value.toArray();
        for (QJsonValueRef element : array)
            element = withoutSecrets(element);
        return array;
    }
    if (!value.isObject())
        return value;
    QJsonObject object = value.toObject();
    for (auto member = object.begin(); member != object.end(); ++member) {
        const bool isSecret = member.key() == QLatin1String("secret");
        member.value() = isSecret ? QStringLiteral("***") : withoutSecrets(member.value());
    }
    return object;
}

/*! A body that is not JSON could contain the secret anywhere, so only its length is kept. */
QJsonValue masked(const QByteArray &body)
{
    const QJsonDocument document = QJsonDocument::fromJson(body);
    if (!document.isObject())
        return QStringLiteral("%1 bytes that are not a JSON object").arg(body.size());
    if (body.size() > largestBodyKept)
        return QStringLiteral("%1 bytes").arg(body.size());
    return withoutSecrets(document.object());
}

/*! What a request asks for: "EVSE-01 10 A", "4 wallboxes 6 to 16 A", "4 wallboxes" or, with another body,
    nothing. */
QString summary(const QJsonValue &body)
{
    const QJsonObject limits = body[QLatin1String("limits")].toObject();
    const int count = limits.size() + body[QLatin1String("evse_ids")].toArray().size();
    QString text = QStringLiteral("%1 wallboxes").arg(count);
    if (count == 1)
        text = limits.isEmpty() ? QStringLiteral("1 wallbox") : limits.begin().key();
    std::set<double> values;
    for (const QJsonValue &limit : limits) {
        if (limit[QLatin1String("value")].isDouble())
            values.insert(limit[QLatin1String("value")].toDouble());
    }
    if (values.size() > 1)
        text += QStringLiteral(" %1 to").arg(*values.begin());
    if (!values.empty())
        text += QStringLiteral(" %1 A").arg(*values.rbegin());
    return count > 0 ? text : QString();
}

} // namespace

void RequestLog::begin(const QString &operation, HttpRequest &request)
{
    request.number = ++m_count;
    const QJsonValue body = masked(request.body);
    const QJsonObject record{
        {QStringLiteral("number"),     m_count      },
        {QStringLiteral("time"),       utcNow()     },
        {QStringLiteral("operation"),  operation    },
        {QStringLiteral("path"),       request.path },
        {QStringLiteral("summary"),    summary(body)},
        {QStringLiteral("status"),     QJsonValue() },
        {QStringLiteral("durationMs"), QJsonValue() },
        {QStringLiteral("succeeded"),  false        },
        {QStringLiteral("request"),    body         },
        {QStringLiteral("reply"),      QJsonValue() }
    };
    m_entries[m_count] = {++m_changeCount, record};
    if (m_entries.size() > requestsKept)
        m_entries.erase(m_entries.begin());
}

void RequestLog::end(const HttpRequest &request, const HttpReply &reply)
{
    const auto entry = m_entries.find(request.number);
    if (entry == m_entries.end())
        return; // It was held back for so long that newer requests have replaced it.
    const bool succeeded = QJsonDocument::fromJson(reply.body)[QLatin1String("success")].toBool();
    auto &[change, record] = entry->second;
    change = ++m_changeCount;
    record.insert(QStringLiteral("status"), reply.status);
    record.insert(QStringLiteral("durationMs"), double(request.age.nsecsElapsed()) / 1e6);
    record.insert(QStringLiteral("succeeded"), succeeded);
    record.insert(QStringLiteral("reply"), masked(reply.body));
}

QJsonArray RequestLog::records() const
{
    QJsonArray records;
    for (const auto &[number, entry] : m_entries)
        records.append(entry.record);
    return records;
}

QJsonArray RequestLog::changes(int &seen) const
{
    QJsonArray changes;
    for (const auto &[number, entry] : m_entries) {
        if (entry.change <= seen)
            continue;
        QJsonObject record = entry.record;
        record.remove(QLatin1String("request"));
        record.remove(QLatin1String("reply"));
        changes.append(record);
    }
    seen = m_changeCount;
    return changes;
}

std::optional<QJsonObject> RequestLog::record(int number) const
{
    const auto entry = m_entries.find(number);
    return entry == m_entries.end() ? std::nullopt : std::optional(entry->second.record);
}

QString utcNow()
{
    return QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs);
}
