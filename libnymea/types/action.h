// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef ACTION_H
#define ACTION_H

#include "types/param.h"

/*! A request that a thing does something: an action type with its parameters. Plain data, which a plugin
    reads from ThingActionInfo::action(). The daemon has checked the parameters against their types and
    against the limits of the states that they set. */
class LIBNYMEA_EXPORT Action
{
public:
    explicit Action(const ActionTypeId &actionTypeId = ActionTypeId(), const ThingId &thingId = ThingId(),
                    const ParamList &params = ParamList())
        : m_actionTypeId(actionTypeId)
        , m_thingId(thingId)
        , m_params(params)
    {
    }

    /*! For an action that sets a writable state this is that state's id. */
    ActionTypeId actionTypeId() const { return m_actionTypeId; }
    ThingId thingId() const { return m_thingId; }
    /*! Converted to the types of the parameters, in the units that these name. */
    ParamList params() const { return m_params; }

private:
    ActionTypeId m_actionTypeId;
    ThingId m_thingId;
    ParamList m_params;
};

#endif // ACTION_H
