// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT
#ifndef REPLY_H
#define REPLY_H

#include <QByteArray>
#include <QJsonObject>
#include <QString>

#include <functional>

/*! What goes back to a client: an HTTP status and a body, which is JSON unless it says otherwise. */
struct Reply
{
    int status = 200;
    QByteArray body;
    const char *contentType = "application/json";
    QByteArray policy = {}; //!< Content-Security-Policy: what a page may load and do; empty: nothing
    /*! Makes a stream of the reply: called again and again for what comes next, instead of the body. */
    std::function<QByteArray()> next = {};
};

Reply jsonReply(const QJsonObject &object, int status = 200);
/*! {"error": \a reason}, \a reason being one sentence for a person. */
Reply refusal(int status, const QString &reason);

#endif // REPLY_H
