// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef SCREEN_H
#define SCREEN_H

#include <QSize>
#include <QString>

/*! Columns and rows of the terminal to which standard output goes; the usual ones if it does not say. */
QSize screenSize();

/*! How many columns \a text takes on a terminal: some characters take two, and some none. */
int columns(const QString &text);

/*! The longest beginning of \a text that takes at most \a width columns. */
QString leftColumns(const QString &text, int width);

#endif // SCREEN_H
