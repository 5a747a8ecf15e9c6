// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "httpmessages.h"

#include <QHostAddress>
#include <QJsonDocument>
#include <QUrl>

bool HttpRequest::isFor(const QString &listenAddress) const
{
    const QString name = QUrl(QLatin1String("http://") + QString::fromUtf8(host)).host(); // without the port
    // RFC 6761 reserves names that end in .test, so that no foreign page has one.
    return name == QLatin1String("localhost") || name.endsWith(QLatin1String(".test"))
        || name == listenAddress.toLower() || !QHostAddress(name).isNull();
}

HttpReply jsonReply(const QJsonObject &object, int status)
{
    return {status, QJsonDocument(object).toJson(QJsonDocument::Compact)};
}

HttpReply refusal(int status, const QString &reason)
{
    const QJsonObject error{
        {QStringLiteral("error"), reason}
    };
    return jsonReply(error, status);
}

HttpReply unknownHostReply()
{
    return refusal(403,
                   QStringLiteral("unknown host name: use a numeric address, localhost, a name that ends in "
                                  ".test or the one given to --listen"));
}
