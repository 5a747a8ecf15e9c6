// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef HTTPMESSAGES_H
#define HTTPMESSAGES_H

#include <QElapsedTimer>
#include <QJsonObject>

#include <functional>

/*! A request that has arrived completely. Missing headers are null. */
struct HttpRequest
{
    QByteArray method;
    QString path; //!< decoded, without the query
    QByteArray host;
    QByteArray origin;
    QByteArray authorization;
    QByteArray body;
    QElapsedTimer age; //!< started when it arrived
    int number = 0;    //!< in the request log; 0 if it has not been recorded

    /*! Whether the header Host names this simulator: localhost, a name that ends in .test, \a listenAddress
        or any numeric address. A foreign page whose own name has been rebound to our address still sends that
        name; a numeric address cannot be rebound. */
    bool isFor(const QString &listenAddress) const;
};

/*! What goes back to a client: an HTTP status and a body, which is JSON unless it says otherwise. */
struct HttpReply
{
    int status = 200;
    QByteArray body;
    const char *contentType = "application/json";
    const char *policy = "default-src 'none'"; //!< Content-Security-Policy: what a page may load and do
    /*! If set, the reply is a stream without a body: this is called repeatedly for what comes next. It returns
        an empty text while there is nothing. */
    std::function<QByteArray()> next = {};
};

HttpReply jsonReply(const QJsonObject &object, int status = 200);
/*! {"error": \a reason}. The reason is a sentence for the user. */
HttpReply refusal(int status, const QString &reason);
/*! The answer to a request that is not for this simulator. */
HttpReply unknownHostReply();

#endif // HTTPMESSAGES_H
