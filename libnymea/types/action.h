// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef ACTION_H
#define ACTION_H

#include "types/param.h"

/*! A request to execute an action: its type with the parameters. Plain data, which a plugin gets from
    ThingActionInfo::action(). The daemon has checked the parameters against their types and against the
    limits of the states that they set. */
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

    /*! For an action that sets a writable state, this is the state's id. */
    ActionTypeId actionTypeId() const { return m_actionTypeId; }
    ThingId thingId() const { return m_thingId; }
    /*! The values are converted to the parameters' types and are in their units. */
    ParamList params() const { return m_params; }

private:
    ActionTypeId m_actionTypeId;
    ThingId m_thingId;
    ParamList m_params;
};

#endif // ACTION_H
