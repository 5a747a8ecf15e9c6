// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "wallboxes.h"

#include <algorithm>

Things wallboxesOf(const Things &things)
{
    Things result;
    for (Thing *thing : things) {
        if (thing->thingClass().interfaces.contains(QLatin1String("evcharger")))
            result.append(thing);
    }
    std::sort(result.begin(), result.end(),
              [](const Thing *a, const Thing *b) { return a->name() < b->name(); });
    return result;
}

bool isInState(const Thing *wallbox, std::initializer_list<const char *> states)
{
    const QString current = wallbox->stateValue(QStringLiteral("state")).toString();
    const auto isCurrent = [&current](const char *state) { return current == QLatin1String(state); };
    return isOn(wallbox, "connected") && std::any_of(states.begin(), states.end(), isCurrent);
}

bool isOn(const Thing *wallbox, const char *state)
{
    return wallbox->stateValue(QLatin1String(state)).toBool();
}

double number(const Thing *wallbox, const char *state)
{
    return wallbox->stateValue(QLatin1String(state)).toDouble();
}
