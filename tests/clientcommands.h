// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef CLIENTCOMMANDS_H
#define CLIENTCOMMANDS_H

#include "networkhandler.h"

#include <functional>

/*! A client of the backend without a plugin around it, which prints what it signals. */
class ClientCommands : public QObject
{
public:
    using Print = std::function<void(const QString &line)>;
    explicit ClientCommands(const Print &print);

    /*! "aim URL GROUP SECRET", or the operation "online", "group", "values" or "limits". */
    void run(const QStringList &words);

private:
    NetworkHandler m_handler;
};

#endif // CLIENTCOMMANDS_H
