// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef THINGJOB_H
#define THINGJOB_H

#include "integrations/thing.h"

#include <chrono>

/*! What the daemon's jobs for a plugin share. A job is passed to an operation of the plugin and finished
    once: by the plugin, within the operation or later, by the time limit, or by the daemon when its thing
    is removed.

    finish() returns at once; finished() follows from the event loop, and after it the job deletes itself,
    ending every connection whose context it is. Until then its parent owns it. A plugin that finishes a job
    later makes it the context of the connection by which it waits: then an answer that comes when the job
    has gone finds nobody. */
class LIBNYMEA_EXPORT ThingJob : public QObject
{
    Q_OBJECT
public:
    /*! A \a timeout of 0 means no limit; after any other the job finishes with ThingErrorTimeout. */
    explicit ThingJob(std::chrono::milliseconds timeout, QObject *parent);

    /*! True as soon as finish() has been called. The job still exists for one turn of the event loop, and a
        plugin that waits for an answer asks this before it finishes the job. */
    bool isFinished() const { return m_finished; }
    /*! ThingErrorNoError until the job is finished. */
    Thing::ThingError status() const { return m_status; }
    QString displayMessage() const { return m_displayMessage; }

    /*! Ends the job with the outcome \a status. \a displayMessage is for the user: a sentence that says
        what went wrong; empty on success. Refused with a warning, without a change, if the job is finished
        already. */
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
