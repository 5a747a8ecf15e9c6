// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef DAEMONOPTIONS_H
#define DAEMONOPTIONS_H

#include <QString>

#include <chrono>

/*! What a Daemon works with. */
struct DaemonOptions
{
    QString pluginFile;
    QString storageFolder;
    std::chrono::milliseconds jobTimeout = std::chrono::seconds(30); //!< 0: jobs may wait for ever
};

#endif // DAEMONOPTIONS_H
