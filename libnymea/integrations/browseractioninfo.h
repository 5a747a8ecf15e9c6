// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef BROWSERACTIONINFO_H
#define BROWSERACTIONINFO_H

#include "integrations/thingjob.h"

/*! The job of executing an item that can be browsed.
    Only declared, for the signature of an operation of IntegrationPlugin: this stand-in never starts it. */
class LIBNYMEA_EXPORT BrowserActionInfo : public ThingJob
{
    Q_OBJECT
public:
    using ThingJob::ThingJob;
};

#endif // BROWSERACTIONINFO_H
