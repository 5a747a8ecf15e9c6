// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef BROWSERITEMRESULT_H
#define BROWSERITEMRESULT_H

#include "integrations/thingjob.h"

/*! The job of describing one item that can be browsed on a thing.
    Only declared, for the signature of an operation of IntegrationPlugin: this stand-in never starts it. */
class LIBNYMEA_EXPORT BrowserItemResult : public ThingJob
{
    Q_OBJECT
public:
    using ThingJob::ThingJob;
};

#endif // BROWSERITEMRESULT_H
