// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef BROWSERESULT_H
#define BROWSERESULT_H

#include "integrations/thingjob.h"

/*! The job of listing what can be browsed on a thing.
    Only declared, for the signature of an operation of IntegrationPlugin: this stand-in never starts it. */
class LIBNYMEA_EXPORT BrowseResult : public ThingJob
{
    Q_OBJECT
public:
    using ThingJob::ThingJob;
};

#endif // BROWSERESULT_H
