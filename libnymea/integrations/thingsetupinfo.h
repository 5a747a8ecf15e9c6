// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef THINGSETUPINFO_H
#define THINGSETUPINFO_H

#include "integrations/thingjob.h"

/*! The job of getting a thing to work: new, restored at a start, or reconfigured. A child of its thing. */
class LIBNYMEA_EXPORT ThingSetupInfo : public ThingJob
{
    Q_OBJECT
public:
    ThingSetupInfo(Thing *thing, std::chrono::milliseconds timeout);

    Thing *thing() const;

private:
    Thing *const m_thing; // our parent
};

#endif // THINGSETUPINFO_H
