// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef THINGACTIONINFO_H
#define THINGACTIONINFO_H

#include "integrations/thingjob.h"
#include "types/action.h"

/*! The job of carrying out an action on a thing. A child of its thing. */
class LIBNYMEA_EXPORT ThingActionInfo : public ThingJob
{
    Q_OBJECT
public:
    ThingActionInfo(Thing *thing, const Action &action, std::chrono::milliseconds timeout);

    Thing *thing() const;
    Action action() const;

private:
    Thing *const m_thing; // our parent
    const Action m_action;
};

#endif // THINGACTIONINFO_H
