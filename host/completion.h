// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef COMPLETION_H
#define COMPLETION_H

#include "daemon.h"
#include "prompt.h"

/*! The words that can complete the last word of \a before: a command, or what its usage names there, such as
    a thing. */
Completions completionsFor(const Daemon &daemon, const QString &before);

#endif // COMPLETION_H
