// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef PRINTABLE_H
#define PRINTABLE_H

#include <QByteArray>
#include <QJsonObject>
#include <QString>

/*! Returns \a text on one line, safe for a terminal. Names and messages come from the backend and could
    otherwise move the cursor, change colours or reverse the direction of writing. White space, including line
    separators, becomes a space. Control and format characters (Unicode categories Cc and Cf, for example
    zero-width characters and direction overrides) and unassigned characters become U+FFFD. */
QString printable(const QString &text);

/*! Returns \a object as JSON on one line, in UTF-8, without a line break at the end. Its meaning does not
    change: the characters that printable() would replace are written as escape sequences. */
QByteArray printableJson(const QJsonObject &object);

/*! Returns \a number to 0.001, without trailing zeros. */
QString numberText(double number);

#endif // PRINTABLE_H
