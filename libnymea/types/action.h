// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef ACTION_H
#define ACTION_H

#include "types/param.h"

/*! The wish that a thing does something: an action type with its parameters. Plain data. */
class LIBNYMEA_EXPORT Action
{
public:
    explicit Action(const ActionTypeId &actionTypeId = ActionTypeId(), const ThingId &thingId = ThingId(),
                    const ParamList &params = ParamList());

    ActionTypeId actionTypeId() const;
    ThingId thingId() const;
    ParamList params() const;

private:
    ActionTypeId m_actionTypeId;
    ThingId m_thingId;
    ParamList m_params;
};

#endif // ACTION_H
