// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef OTHERJOBS_H
#define OTHERJOBS_H

#include "integrations/thingjob.h"

// Pairing and browsing: declared for IntegrationPlugin's virtual operations, whose base behaviour finishes
// these jobs as unsupported. They carry nothing more.

class LIBNYMEA_EXPORT ThingPairingInfo : public ThingJob
{
    Q_OBJECT
public:
    using ThingJob::ThingJob;
};

class LIBNYMEA_EXPORT BrowseResult : public ThingJob
{
    Q_OBJECT
public:
    using ThingJob::ThingJob;
};

class LIBNYMEA_EXPORT BrowserItemResult : public ThingJob
{
    Q_OBJECT
public:
    using ThingJob::ThingJob;
};

class LIBNYMEA_EXPORT BrowserActionInfo : public ThingJob
{
    Q_OBJECT
public:
    using ThingJob::ThingJob;
};

class LIBNYMEA_EXPORT BrowserItemActionInfo : public ThingJob
{
    Q_OBJECT
public:
    using ThingJob::ThingJob;
};

#endif // OTHERJOBS_H
