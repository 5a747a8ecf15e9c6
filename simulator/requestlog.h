// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT
#ifndef REQUESTLOG_H
#define REQUESTLOG_H

#include "reply.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonObject>
#include <QString>

#include <deque>
#include <mutex>

/*! The last requests to the backend and how they were answered. Safe to call from any thread.
 *
 *  A record is there from the moment its request has arrived; "status", "durationMs" and "reply" are null as
 *  long as it has no answer. The group secret is masked, and headers, with the token among them, are not
 * kept. */
class RequestLog
{
public:
    /*! Notes a request and returns its number, counted from 1. */
    int begin(const QString &operation, const QString &path, const QByteArray &body);
    /*! Notes the answer to request \a number. */
    void end(int number, const Reply &reply);

    /*! The last requests, oldest first: {"number", "time", "operation", "path", "request", "status",
     *  "durationMs", "reply"}. Bodies are JSON objects, or a text that describes what is none. */
    QJsonArray requests() const;
    /*! Those of them that have come or have been answered since the call before that had the same \a seen,
     *  which is 0 at first. */
    QJsonArray changes(int &seen) const;
    /*! How many there have been since the start. */
    int count() const;

private:
    struct Entry
    {
        int number;
        QElapsedTimer age;
        int change; // the last one, counted through all entries
        QJsonObject record;
    };

    mutable std::mutex m_mutex; // guards all that follows
    std::deque<Entry> m_entries;
    int m_count = 0;
    int m_changeCount = 0;
};

#endif // REQUESTLOG_H
