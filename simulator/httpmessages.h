// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef HTTPMESSAGES_H
#define HTTPMESSAGES_H

#include <QElapsedTimer>
#include <QJsonObject>

#include <functional>

/*! A request that has arrived to its end. Headers are null where there are none. */
struct HttpRequest
{
    QByteArray method;
    QString path; //!< decoded, without the query
    QByteArray host;
    QByteArray origin;
    QByteArray authorization;
    QByteArray body;
    QElapsedTimer age; //!< started when it arrived
    int number = 0;    //!< in the request log; 0: not noted yet

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
    /*! Makes a stream of the reply: called again and again for what comes next, instead of the body. Returns
        an empty text while there is nothing. */
    std::function<QByteArray()> next = {};
};

HttpReply jsonReply(const QJsonObject &object, int status = 200);
/*! {"error": \a reason}, \a reason being one sentence for a person. */
HttpReply refusal(int status, const QString &reason);
/*! The answer to a request that is not for this simulator. */
HttpReply unknownHostReply();

#endif // HTTPMESSAGES_H
