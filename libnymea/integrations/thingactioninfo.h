// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef THINGACTIONINFO_H
#define THINGACTIONINFO_H

#include "integrations/thingjob.h"
#include "types/action.h"

/*! The job of carrying out an action on a thing. A child of its thing, so it ends when the thing goes. The
    daemon starts it only for a thing that is set up, with parameters that fit. Setting the state is up to
    the plugin. */
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

    /*! Valid for as long as the job is. */
    Thing *thing() const { return m_thing; }
    Action action() const { return m_action; }

private:
    Thing *const m_thing; // our parent
    const Action m_action;
};

#endif // THINGACTIONINFO_H
