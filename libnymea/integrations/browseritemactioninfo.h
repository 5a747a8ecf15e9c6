// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef BROWSERITEMACTIONINFO_H
#define BROWSERITEMACTIONINFO_H

#include "integrations/thingjob.h"

/*! The job of executing one of the actions of an item that can be browsed.
    Only declared, for the signature of an operation of IntegrationPlugin: this stand-in never starts it. */
class LIBNYMEA_EXPORT BrowserItemActionInfo : public ThingJob
{
    Q_OBJECT
public:
    using ThingJob::ThingJob;
};

#endif // BROWSERITEMACTIONINFO_H
