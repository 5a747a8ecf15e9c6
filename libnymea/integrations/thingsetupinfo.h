// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef THINGSETUPINFO_H
#define THINGSETUPINFO_H

#include "integrations/thingjob.h"

/*! The job of getting a thing to work: a new one, one restored at a start, or one whose parameters have
    changed. A child of its thing, so it ends when the thing goes. A new thing is kept if its set-up
    succeeds, and then counts among the plugin's things; otherwise it is deleted. */
class LIBNYMEA_EXPORT ThingSetupInfo : public ThingJob
{
    Q_OBJECT
public:
    ThingSetupInfo(Thing *thing, std::chrono::milliseconds timeout)
        : ThingJob(timeout, thing)
        , m_thing(thing)
    {
    }

    /*! Valid for as long as the job is. */
    Thing *thing() const { return m_thing; }

private:
    Thing *const m_thing; // our parent
};

#endif // THINGSETUPINFO_H
