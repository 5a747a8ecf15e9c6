// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "integrations/thingjob.h"

#include "loggingcategories.h"

#include <QTimer>

ThingJob::ThingJob(std::chrono::milliseconds timeout, QObject *parent)
    : QObject(parent)
{
    if (timeout.count() == 0)
        return;
    QTimer::singleShot(timeout, this, [this] {
        if (!m_finished)
            finish(Thing::ThingErrorTimeout, tr("The plugin did not answer in time."));
    });
}

void ThingJob::finish(Thing::ThingError status, const QString &displayMessage)
{
    if (m_finished) {
        qCWarning(dcThing) << metaObject()->className() << "has been finished already with" << m_status
                           << "and refuses" << status;
        return;
    }
    m_finished = true;
    m_status = status;
    m_displayMessage = displayMessage;
    // Not at once, because the caller may still use the job.
    QMetaObject::invokeMethod(
        this,
        [this] {
            emit finished();
            deleteLater();
        },
        Qt::QueuedConnection);
}
