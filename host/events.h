// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef EVENTS_H
#define EVENTS_H

#include "message.h"

#include <integrations/thingsetupinfo.h>

// What the daemon reports, as the host prints it.

Message thingAddedEvent(const Thing *thing);
Message thingRemovedEvent(const Thing *thing);
Message setupFinishedEvent(const ThingSetupInfo *info);
/*! Has no lines for measured values, which change all the time: "watch" shows those. */
Message stateChangedEvent(const Thing *thing, const StateTypeId &stateTypeId, const QVariant &value);

#endif // EVENTS_H
