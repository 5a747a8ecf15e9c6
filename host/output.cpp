// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "output.h"

#include <QMetaEnum>

QString errorName(Thing::ThingError error)
{
    return QLatin1String(QMetaEnum::fromType<Thing::ThingError>().valueToKey(error));
}

QString setupStatusName(Thing::ThingSetupStatus status)
{
    return QLatin1String(QMetaEnum::fromType<Thing::ThingSetupStatus>().valueToKey(status));
}

QString errorText(const ThingJob *job)
{
    if (job->status() == Thing::ThingErrorNoError)
        return QString();
    const QString text = job->displayMessage().isEmpty() ? errorName(job->status()) : job->displayMessage();
    const bool hasTimedOut = job->status() == Thing::ThingErrorTimeout;
    return hasTimedOut ? text + QLatin1String(" Warnings in the log may tell why.") : text;
}
