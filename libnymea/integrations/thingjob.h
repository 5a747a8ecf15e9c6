// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef THINGJOB_H
#define THINGJOB_H

#include "integrations/thing.h"

#include <chrono>

/*! What the daemon's jobs for a plugin share: they are finished once, by the plugin or by the time limit.

    finish() returns at once; finished() follows from the event loop, and after it the job deletes itself,
    ending every connection whose context it is. Owned by its parent until then. */
class LIBNYMEA_EXPORT ThingJob : public QObject
{
    Q_OBJECT
public:
    /*! A \a timeout of 0 means no limit. */
    explicit ThingJob(std::chrono::milliseconds timeout, QObject *parent);

    bool isFinished() const;
    Thing::ThingError status() const;
    QString displayMessage() const;

    /*! Ends the job. A second call is refused with a warning and changes nothing. */
    void finish(Thing::ThingError status, const QString &displayMessage = QString());

Q_SIGNALS:
    void finished();

private:
    bool m_finished = false;
    Thing::ThingError m_status = Thing::ThingErrorNoError;
    QString m_displayMessage;
};

#endif // THINGJOB_H
