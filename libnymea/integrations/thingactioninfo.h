// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef THINGACTIONINFO_H
#define THINGACTIONINFO_H

#include "integrations/thingjob.h"
#include "types/action.h"

/*! The job of executing an action of a thing. It is a child of its thing and is deleted with it. The daemon
    starts it only for a thing that is set up, with valid parameters. The plugin sets the state. */
class LIBNYMEA_EXPORT ThingActionInfo : public ThingJob
{
    Q_OBJECT
public:
    ThingActionInfo(Thing *thing, const Action &action, std::chrono::milliseconds timeout)
        : ThingJob(timeout, thing)
        , m_thing(thing)
        , m_action(action)
    {
    }

    /*! Never null. Valid as long as the job exists. */
    Thing *thing() const { return m_thing; }
    Action action() const { return m_action; }

private:
    Thing *const m_thing; // our parent
    const Action m_action;
};

#endif // THINGACTIONINFO_H
