// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT
#include "requestlog.h"

#include "yard.h"

#include <QJsonDocument>

#include <algorithm>

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

int RequestLog::begin(const QString &operation, const QString &path, const QByteArray &body)
{
    const QJsonObject record{
        {QStringLiteral("time"),       utcNow()    },
        {QStringLiteral("operation"),  operation   },
        {QStringLiteral("path"),       path        },
        {QStringLiteral("request"),    masked(body)},
        {QStringLiteral("status"),     QJsonValue()},
        {QStringLiteral("durationMs"), QJsonValue()},
        {QStringLiteral("reply"),      QJsonValue()}
    };
    const std::lock_guard lock(m_mutex);
    m_entries.push_back({++m_count, {}, ++m_changeCount, record});
    m_entries.back().record.insert(QStringLiteral("number"), m_count);
    m_entries.back().age.start();
    if (m_entries.size() > requestsKept)
        m_entries.pop_front();
    return m_count;
}

void RequestLog::end(int number, const Reply &reply)
{
    const QJsonValue body = masked(reply.body);
    const std::lock_guard lock(m_mutex);
    const auto entry = std::find_if(m_entries.begin(), m_entries.end(),
                                    [number](const Entry &entry) { return entry.number == number; });
    if (entry == m_entries.end())
        return; // it waited for so long that it has dropped out
    entry->change = ++m_changeCount;
    entry->record.insert(QStringLiteral("status"), reply.status);
    entry->record.insert(QStringLiteral("durationMs"), double(entry->age.nsecsElapsed()) / 1e6);
    entry->record.insert(QStringLiteral("reply"), body);
}

QJsonArray RequestLog::requests() const
{
    int seen = 0;
    return changes(seen);
}

QJsonArray RequestLog::changes(int &seen) const
{
    const std::lock_guard lock(m_mutex);
    QJsonArray changes;
    for (const Entry &entry : m_entries) {
        if (entry.change > seen)
            changes.append(entry.record);
    }
    seen = m_changeCount;
    return changes;
}

int RequestLog::count() const
{
    const std::lock_guard lock(m_mutex);
    return m_count;
}
