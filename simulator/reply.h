// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT
#ifndef REPLY_H
#define REPLY_H

#include <QByteArray>
#include <QJsonObject>
#include <QString>

/*! What goes back to a client: an HTTP status and a body, by its content type JSON. */
struct Reply {
    int status = 200;
    QByteArray body;
};

Reply jsonReply(const QJsonObject &object, int status = 200);
/*! {"error": \a reason}, \a reason being one sentence for a person. */
Reply refusal(int status, const QString &reason);

#endif // REPLY_H
