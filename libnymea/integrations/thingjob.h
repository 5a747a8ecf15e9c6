// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef THINGJOB_H
#define THINGJOB_H

#include "integrations/thing.h"

#include <chrono>

/*! Base of the daemon's jobs for a plugin. A job is passed to an operation of the plugin and finished once:
    by the plugin, within the operation or later, by the time limit, or by the daemon when its thing is
    removed.

    finish() returns at once. finished() is emitted from the event loop, and then the job deletes itself,
    which ends every connection whose context it is. Until then its parent owns it. A plugin that finishes a
    job later should make the job the context of the connection with which it waits, so that a late answer
    does not use a deleted job. */
class LIBNYMEA_EXPORT ThingJob : public QObject
{
    Q_OBJECT
public:
    /*! After \a timeout the job finishes with ThingErrorTimeout; 0 means no time limit. */
    explicit ThingJob(std::chrono::milliseconds timeout, QObject *parent);

    /*! True as soon as finish() has been called. Since the job is deleted only later, from the event loop, a
        plugin that waits for an answer checks this before it finishes the job. */
    bool isFinished() const { return m_finished; }
    /*! ThingErrorNoError until the job is finished. */
    Thing::ThingError status() const { return m_status; }
    QString displayMessage() const { return m_displayMessage; }

    /*! Finishes the job with the result \a status. \a displayMessage tells the user in a sentence what went
        wrong; it is empty on success. Refused with a warning if the job has already been finished. */
    void finish(Thing::ThingError status, const QString &displayMessage = QString());

Q_SIGNALS:
    /*! Emitted once, from the event loop. The job is valid until the handlers have returned. */
    void finished();

private:
    bool m_finished = false;
    Thing::ThingError m_status = Thing::ThingErrorNoError;
    QString m_displayMessage;
};

#endif // THINGJOB_H
