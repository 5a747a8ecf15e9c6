// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef WALLBOXES_H
#define WALLBOXES_H

#include <integrations/thing.h>

#include <initializer_list>

/*! The wallboxes among \a things: those with the platform's interface "evcharger", by name. */
Things wallboxesOf(const Things &things);
/*! Whether \a wallbox is connected and its state "state" is one of \a states, which are those of
    ChargePointStatus of OCPP 1.6. */
bool isInState(const Thing *wallbox, std::initializer_list<const char *> states);
/*! The values of the state of that name. */
bool isOn(const Thing *wallbox, const char *state);
double number(const Thing *wallbox, const char *state);

#endif // WALLBOXES_H
