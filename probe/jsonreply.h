// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef JSONREPLY_H
#define JSONREPLY_H

#include "finding.h"

#include <QByteArray>
#include <QJsonObject>

/*! How \a value reads in a sentence that goes "it is …". */
QString inWords(const QJsonValue &value);

/*! The object in \a body, read as the plugin does: empty when the body is anything else. */
QJsonObject objectIn(const QByteArray &body);

/*! What keeps the plugin from the member \a key of \a body, which has to be an object of wallboxes; \a code
    when the rest of the body is in order. */
Findings judgeMember(const QByteArray &body, QLatin1String key, const char *code);

#endif // JSONREPLY_H
