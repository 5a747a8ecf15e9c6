// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "statechanges.h"

#include <algorithm>

void StateChanges::watch(Thing *thing)
{
    const States states = thing->states();
    for (const State &state : states)
        m_values[thing].insert(state.stateTypeId(), state.value());
    connect(thing, &Thing::stateValueChanged, this,
            [this, thing](const StateTypeId &stateTypeId, const QVariant &value) {
                QVariant &last = m_values[thing][stateTypeId];
                if (last == value)
                    return;
                last = value;
                m_changes.append({thing, stateTypeId, value});
                if (m_changes.size() == 1)
                    emit available();
            });
}

void StateChanges::forget(Thing *thing)
{
    thing->disconnect(this);
    m_values.remove(thing);
    m_changes.erase(std::remove_if(m_changes.begin(), m_changes.end(),
                                   [thing](const StateChange &change) { return change.thing == thing; }),
                    m_changes.end());
}
