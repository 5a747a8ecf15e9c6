// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT
#include "reply.h"

#include <QJsonDocument>

Reply jsonReply(const QJsonObject &object, int status)
{
    return {status, QJsonDocument(object).toJson(QJsonDocument::Compact)};
}

Reply refusal(int status, const QString &reason)
{
    return jsonReply(
        {
            {QStringLiteral("error"), reason}
    },
        status);
}
