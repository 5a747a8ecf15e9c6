// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef THINGSETUPINFO_H
#define THINGSETUPINFO_H

#include "integrations/thingjob.h"

/*! The job of setting up a thing that is new, that was restored at a start, or whose parameters have changed.
    It is a child of its thing and is deleted with it. If the set-up of a new thing succeeds, the thing is
    kept and becomes one of the plugin's things; otherwise it is deleted. */
class LIBNYMEA_EXPORT ThingSetupInfo : public ThingJob
{
    Q_OBJECT
public:
    ThingSetupInfo(Thing *thing, std::chrono::milliseconds timeout)
        : ThingJob(timeout, thing)
        , m_thing(thing)
    {
    }

    /*! Never null for a plugin. Valid as long as the job exists. */
    Thing *thing() const { return m_thing; }

private:
    Thing *const m_thing; // our parent
};

#endif // THINGSETUPINFO_H
