// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef FUZZING_H
#define FUZZING_H

#include <QByteArray>
#include <QList>

// Used by all targets. Each program starts with a QCoreApplication, a fixed seed for hashes and without a log.

/*! Ends the program, so that the fuzzer keeps the input, unless \a holds is true. */
void require(bool holds, const char *what);

/*! The \a size bytes at \a data, not copied. */
QByteArray inputBytes(const uint8_t *data, size_t size);
/*! The same as up to three replies, with ASCII record separators between them. */
QList<QByteArray> inputReplies(const uint8_t *data, size_t size);

#endif // FUZZING_H
