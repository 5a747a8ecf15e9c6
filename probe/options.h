// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef OPTIONS_H
#define OPTIONS_H

#include "groupinfo.h"

#include <QString>
#include <QStringList>

#include <chrono>
#include <optional>

/*! What the command line asks for. */
struct Options
{
    QString url;
    QString groupId;
    QString secretFile; //!< empty when none is named
    std::optional<LimitRequest> limit;
    std::chrono::milliseconds timeout{0};
    bool json = false;
};

/*! Reads \a arguments, the program's name first. Ends the program where they are unusable, or ask for no more
    than help or the version. */
Options readOptions(const QStringList &arguments);

/*! Ends the program with one line about \a reason: it was called in a way that it cannot work with. */
[[noreturn]] void failUsage(const QString &reason);

#endif // OPTIONS_H
