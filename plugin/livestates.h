// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef LIVESTATES_H
#define LIVESTATES_H

class Thing;
struct LiveValues;

/*! Writes \a values to the states of the wallbox \a thing, and adds to its total what the session has drawn
    since the last values. */
void writeLiveStates(Thing *thing, const LiveValues &values);

#endif // LIVESTATES_H
