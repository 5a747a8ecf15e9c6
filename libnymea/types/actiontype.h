// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef ACTIONTYPE_H
#define ACTIONTYPE_H

#include "types/paramtype.h"

/*! Describes an action of a thing class. Plain data, which the daemon derives from the metadata: a writable
    state yields an action whose id, name and single parameter are the state's own. */
struct ActionType
{
    ActionTypeId id;
    QString name;
    QString displayName; //!< the state's displayNameAction
    /*! One. Its limits are those of the metadata; the state of a thing may have others. */
    ParamTypes paramTypes;
};

/*! The actions of a thing class: one for each writable state, with the state's id. */
class LIBNYMEA_EXPORT ActionTypes : public TypeList<ActionType, ActionTypeId>
{
};

#endif // ACTIONTYPE_H
