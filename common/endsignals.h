// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef ENDSIGNALS_H
#define ENDSIGNALS_H

#include <QObject>

/*! Turns the first SIGINT, SIGTERM or SIGHUP into a signal from the event loop. The second one kills the
    process, which may be stuck in a write that nobody reads. That is why this is no signalfd: it would hold the
    second signal back, or make one of the two, until the process reads it. One object a process. */
class EndSignals : public QObject
{
    Q_OBJECT
public:
    explicit EndSignals(QObject *parent = nullptr);

Q_SIGNALS:
    void received();
};

#endif // ENDSIGNALS_H
