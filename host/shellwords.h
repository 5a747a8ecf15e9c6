// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef SHELLWORDS_H
#define SHELLWORDS_H

#include <QStringList>

/*! The words of a line, or why it has none. */
struct ShellWords
{
    QStringList words;
    QString error; //!< a sentence; empty when all is well
};
/*! Splits \a line as a shell does, without expanding anything: white space separates, 'single' and "double"
    quotes and the backslash keep it together, # at the start of a word begins a comment. */
ShellWords splitShellWords(const QString &line);

#endif // SHELLWORDS_H
