// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef THINGLOOKUP_H
#define THINGLOOKUP_H

#include <integrations/thing.h>

/*! The thing that a user means, or the sentence that says why it is not clear. */
struct FoundThing
{
    Thing *thing = nullptr; //!< one of those searched
    QString error;
};
/*! Looks \a text up: a whole name or id first, then the beginning of either. Upper and lower case differ, as
    they do between wallboxes of a group. */
FoundThing findThing(const Things &things, const QString &text);

#endif // THINGLOOKUP_H
