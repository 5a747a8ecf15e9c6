// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "backendapi.h"

QString BackendApi::onlinePath()
{
    return QStringLiteral("/is_online");
}

QString BackendApi::groupInfoPath(const QString &groupId)
{
    return QLatin1String("/vela/get_group_info/") + groupId;
}

QString BackendApi::valuesPath(const QString &groupId)
{
    return QLatin1String("/vela/get_values/") + groupId;
}

QString BackendApi::limitsPath(const QString &groupId)
{
    return QLatin1String("/vela/set_limits/") + groupId;
}

QJsonObject BackendApi::valuesBody(const QJsonArray &devices)
{
    QJsonObject body;
    body.insert(QLatin1String("evse_ids"), devices);
    return body;
}

QJsonObject BackendApi::limitsBody(const QJsonObject &limits)
{
    QJsonObject body;
    body.insert(QLatin1String("limits"), limits);
    return body;
}
