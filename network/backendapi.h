// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef BACKENDAPI_H
#define BACKENDAPI_H

#include <QJsonArray>
#include <QJsonObject>
#include <QString>

/*! The paths and bodies of the backend's operations. The group secret is added when a request is sent.
    Paths are not percent-encoded: they contain the group id as it is. */
namespace BackendApi {

QString onlinePath();
QString groupInfoPath(const QString &groupId);
QString valuesPath(const QString &groupId);
QString limitsPath(const QString &groupId);

/*! \a devices: infrastructure ids. */
QJsonObject valuesBody(const QJsonArray &devices);
/*! \a limits: charge limits by infrastructure id. */
QJsonObject limitsBody(const QJsonObject &limits);

} // namespace BackendApi

#endif // BACKENDAPI_H
