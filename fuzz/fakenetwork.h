// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef FAKENETWORK_H
#define FAKENETWORK_H

#include <QByteArray>

// Stands in for the network: in a program that links this, no POST of Qt's access manager reaches a socket.
// It waits until it is answered.

/*! Answers the oldest POST that waits, at once, with status 200 and \a body. False when none waits. */
bool answerPost(const QByteArray &body);

#endif // FAKENETWORK_H
