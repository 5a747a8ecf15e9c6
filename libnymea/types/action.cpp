// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "types/action.h"

Action::Action(const ActionTypeId &actionTypeId, const ThingId &thingId, const ParamList &params)
    : m_actionTypeId(actionTypeId)
    , m_thingId(thingId)
    , m_params(params)
{
}

ActionTypeId Action::actionTypeId() const
{
    return m_actionTypeId;
}

ThingId Action::thingId() const
{
    return m_thingId;
}

ParamList Action::params() const
{
    return m_params;
}
