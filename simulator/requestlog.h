// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef REQUESTLOG_H
#define REQUESTLOG_H

#include "httpmessages.h"

#include <QJsonArray>

#include <deque>

/*! The last requests to the backend and how they were answered.

    A record is there from the moment its request has arrived; "status", "durationMs" and "reply" are null as
    long as it has no answer. The group secret is masked, and headers, with the token among them, are not
    kept. */
class RequestLog
{
public:
    /*! Notes \a request and gives it its number, counted from 1. */
    void begin(const QString &operation, HttpRequest &request);
    /*! Notes the answer to a \a request that has been noted. */
    void end(const HttpRequest &request, const HttpReply &reply);

    /*! Those of the last requests that have come or have been answered since the call before that had the
        same \a seen, which is 0 at first. Oldest first: {"number", "time", "operation", "path", "request",
        "status", "durationMs", "reply"}. Bodies are JSON objects, or a text that describes what is none. */
    QJsonArray changes(int &seen) const;
    /*! How many there have been since the start. */
    int count() const { return m_count; }

private:
    struct Entry
    {
        int change; // the last one, counted through all entries
        QJsonObject record;
    };

    std::deque<Entry> m_entries; // oldest first; the last one has the number m_count
    int m_count = 0;
    int m_changeCount = 0;
};

/*! Now, ISO 8601 in UTC with milliseconds: "2024-05-01T12:00:00.500Z". */
QString utcNow();

#endif // REQUESTLOG_H
