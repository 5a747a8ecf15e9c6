// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "requestlog.h"

#include <QDateTime>
#include <QJsonDocument>

namespace {

constexpr std::size_t requestsKept = 200;
constexpr int largestBodyKept = 64 * 1024; // bytes; two hundred large ones must not fill the memory

// Clients may put the secret anywhere by mistake; what is logged is shown on the page.
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

// A body that cannot be read could hold the secret anywhere, so it is described instead of kept.
QJsonValue masked(const QByteArray &body)
{
    const QJsonDocument document = QJsonDocument::fromJson(body);
    if (!document.isObject())
        return QStringLiteral("%1 bytes that are no JSON object").arg(body.size());
    if (body.size() > largestBodyKept)
        return QStringLiteral("%1 bytes").arg(body.size());
    return withoutSecrets(document.object());
}

} // namespace

void RequestLog::begin(const QString &operation, HttpRequest &request)
{
    request.number = ++m_count;
    const QJsonObject record{
        {QStringLiteral("number"),     m_count             },
        {QStringLiteral("time"),       utcNow()            },
        {QStringLiteral("operation"),  operation           },
        {QStringLiteral("path"),       request.path        },
        {QStringLiteral("request"),    masked(request.body)},
        {QStringLiteral("status"),     QJsonValue()        },
        {QStringLiteral("durationMs"), QJsonValue()        },
        {QStringLiteral("reply"),      QJsonValue()        }
    };
    m_entries.push_back({++m_changeCount, record});
    if (m_entries.size() > requestsKept)
        m_entries.pop_front();
}

void RequestLog::end(const HttpRequest &request, const HttpReply &reply)
{
    const auto later = std::size_t(m_count - request.number);
    if (later >= m_entries.size())
        return; // it waited for so long that it has dropped out
    Entry &entry = m_entries[m_entries.size() - 1 - later];
    entry.change = ++m_changeCount;
    entry.record.insert(QStringLiteral("status"), reply.status);
    entry.record.insert(QStringLiteral("durationMs"), double(request.age.nsecsElapsed()) / 1e6);
    entry.record.insert(QStringLiteral("reply"), masked(reply.body));
}

QJsonArray RequestLog::changes(int &seen) const
{
    QJsonArray changes;
    for (const Entry &entry : m_entries) {
        if (entry.change > seen)
            changes.append(entry.record);
    }
    seen = m_changeCount;
    return changes;
}

QString utcNow()
{
    return QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs);
}
