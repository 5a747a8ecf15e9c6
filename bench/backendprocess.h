// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef BACKENDPROCESS_H
#define BACKENDPROCESS_H

#include "replies.h"

#include <QProcess>

/*! vela-bench-backend, running as long as this lives. */
class BackendProcess
{
public:
    /*! Returns once the backend listens; ends the program if it does not. */
    BackendProcess(int wallboxes, Yard yard);
    ~BackendProcess();

    QString url() const;
    /*! Connections that the backend has accepted so far. */
    int connections();

private:
    QProcess m_process;
    QString m_url;
    int m_connections = 0;
};

#endif // BACKENDPROCESS_H
