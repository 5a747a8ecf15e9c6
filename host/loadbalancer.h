// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef LOADBALANCER_H
#define LOADBALANCER_H

#include "daemon.h"

/*! A small energy manager: shares the given power among the cars that charge or wait for it, by setting the
    currents of their wallboxes every 10 s. A full car, which may want more at any time, gets the least current
    only. A car for which less than that is left has to wait. A car that is plugged in waits for the next round,
    because wallboxes without a share are disabled. */
class LoadBalancer : public QObject
{
    Q_OBJECT
public:
    /*! \a daemon must outlive this object. */
    explicit LoadBalancer(Daemon *daemon);

    /*! Shares \a power, in W, from now on. */
    void start(double power);
    /*! Sets no more currents; those in force stay. */
    void stop() { m_timer.stop(); }

private:
    void balance();
    void share(Things cars, double left);

    Daemon *const m_daemon;
    double m_power = 0; // W
    QTimer m_timer;
};

#endif // LOADBALANCER_H
