// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef REQUESTLOG_H
#define REQUESTLOG_H

#include "httpmessages.h"

#include <QJsonArray>

#include <map>
#include <optional>

/*! The last 200 requests to the backend and how they were answered:
    {"number", "time", "operation", "path", "summary", "status", "durationMs", "succeeded", "request", "reply"}.

    A record exists from the moment its request has arrived. "status", "durationMs" and "reply" are null as
    long as it has no answer. "request" and "reply" are the bodies: JSON objects, or a text that describes
    anything else. "summary" says in a few words what a request asks for. The group secret is masked, and
    headers, with the token among them, are not kept. */
class RequestLog
{
public:
    /*! Records \a request and gives it its number, counted from 1. */
    void begin(const QString &operation, HttpRequest &request);
    /*! Records the answer to a \a request that has been recorded. */
    void end(const HttpRequest &request, const HttpReply &reply);

    QJsonArray records() const; //!< oldest first
    /*! The records that are new or have changed since the previous call with the same \a seen, which is 0 at
        first. Oldest first, without "request" and "reply". */
    QJsonArray changes(int &seen) const;
    std::optional<QJsonObject> record(int number) const;
    /*! How many there have been since the start. */
    int count() const { return m_count; }

private:
    struct Entry
    {
        int change; // the last one, counted through all entries
        QJsonObject record;
    };

    std::map<int, Entry> m_entries; // by number
    int m_count = 0;
    int m_changeCount = 0;
};

/*! Now, ISO 8601 in UTC with milliseconds: "2024-05-01T12:00:00.500Z". */
QString utcNow();

#endif // REQUESTLOG_H
