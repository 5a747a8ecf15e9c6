// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef WATCHEDAPPLICATION_H
#define WATCHEDAPPLICATION_H

#include <QCoreApplication>

/*! Measures for how long single events block the event loop. */
class WatchedApplication : public QCoreApplication
{
public:
    using QCoreApplication::QCoreApplication;
    bool notify(QObject *receiver, QEvent *event) override;

    double longest = 0; //!< ms of the thread's own time that the longest event has taken

private:
    bool m_isBusy = false;
};

#endif // WATCHEDAPPLICATION_H
