// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef JSON_H
#define JSON_H

#include <QJsonDocument>
#include <QJsonObject>

/*! The object that \a text stands for; a text that stands for none ends the program. */
inline QJsonObject json(const QByteArray &text)
{
    const QJsonDocument document = QJsonDocument::fromJson(text);
    if (!document.isObject())
        qFatal("This is not a JSON object: %s", text.constData());
    return document.object();
}

#endif // JSON_H
