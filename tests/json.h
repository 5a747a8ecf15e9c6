// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef JSON_H
#define JSON_H

#include <QJsonDocument>
#include <QJsonObject>

/*! The object that \a text stands for; empty when it stands for none. */
inline QJsonObject json(const QByteArray &text)
{
    return QJsonDocument::fromJson(text).object();
}

#endif // JSON_H
