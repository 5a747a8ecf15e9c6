// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef PROCESSONE_H
#define PROCESSONE_H

#include <QProcess>

/*! A process that is number 1 of a namespace of its own, as the daemon of a container is. */
class ProcessOne : public QProcess
{
    Q_OBJECT
public:
    /*! Whether this process may make such namespaces. */
    static bool isPermitted();

    /*! Processes that are started while it lives go to a new namespace. */
    class Namespace
    {
    public:
        Namespace();
        ~Namespace();
        Q_DISABLE_COPY(Namespace)
    };

protected:
    void setupChildProcess() override;
};

#endif // PROCESSONE_H
