// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef WATCHEDAPPLICATION_H
#define WATCHEDAPPLICATION_H

#include <QCoreApplication>

/*! Measures how much processor time single events take, which a busy machine does not change. */
class WatchedApplication : public QCoreApplication
{
public:
    using QCoreApplication::QCoreApplication;
    bool notify(QObject *receiver, QEvent *event) override;

    double longest = 0; //!< ms that the longest event has taken

private:
    bool m_isBusy = false;
};

#endif // WATCHEDAPPLICATION_H
