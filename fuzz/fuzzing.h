// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef FUZZING_H
#define FUZZING_H

#include <QByteArray>
#include <QList>

// What all targets use. The program starts with a QCoreApplication, hashes in a fixed order, and no log.

/*! Ends the program, so that the fuzzer keeps the input, unless \a holds is true. */
void require(bool holds, const char *what);

/*! The \a size bytes at \a data, not copied. */
QByteArray inputBytes(const uint8_t *data, size_t size);
/*! The same as up to three replies, an ASCII record separator between them. */
QList<QByteArray> inputReplies(const uint8_t *data, size_t size);

#endif // FUZZING_H
