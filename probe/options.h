// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef OPTIONS_H
#define OPTIONS_H

#include <QStringList>

#include <chrono>
#include <optional>

/*! The charge limit that the user wants to try. */
struct LimitRequest
{
    QString wallbox; //!< infrastructure id
    int ampere = 0;  //!< 0 forbids charging
};

/*! What the user asks for. */
struct ProbeOptions
{
    QString url; //!< as the user would enter it in nymea
    QString groupId;
    QString secret;
    std::optional<LimitRequest> limit;    //!< none: no limit is sent
    std::chrono::milliseconds timeout{0}; //!< for each step
    bool json = false;
};

/*! Reads \a arguments, the program's name first, and the secret: from the file that they name, else from the
    environment, else from the terminal. Ends the program if they are unusable or ask only for help. */
ProbeOptions readOptions(const QStringList &arguments);

#endif // OPTIONS_H
