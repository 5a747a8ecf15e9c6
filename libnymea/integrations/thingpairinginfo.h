// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef THINGPAIRINGINFO_H
#define THINGPAIRINGINFO_H

#include "integrations/thingjob.h"

/*! The job of pairing a device with the daemon, in one or two steps.
    Only declared, for the signature of an operation of IntegrationPlugin: this stand-in never starts it. */
class LIBNYMEA_EXPORT ThingPairingInfo : public ThingJob
{
    Q_OBJECT
public:
    using ThingJob::ThingJob;
};

#endif // THINGPAIRINGINFO_H
