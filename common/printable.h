// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef PRINTABLE_H
#define PRINTABLE_H

#include <QByteArray>
#include <QJsonObject>
#include <QString>

/*! \a text on one line, safe for a terminal. Names and messages come from the backend, and could otherwise
    move the cursor, change the colours or reverse the direction of writing. White space, line separators
    included, becomes a blank; control and format characters (Unicode's categories Cc and Cf, zero-width
    characters and direction overrides among them) and characters without a meaning become U+FFFD. */
QString printable(const QString &text);

/*! \a object as JSON on one line, in UTF-8, without a line break at its end. It means the same to every
    reader of JSON: the characters that printable() would replace are written as escape sequences. */
QByteArray printableJson(const QJsonObject &object);

#endif // PRINTABLE_H
