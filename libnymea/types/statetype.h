// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef STATETYPE_H
#define STATETYPE_H

#include "types/typelist.h"
#include "typeutils.h"

#include <QVariant>

/*! Describes a state of a thing class. Plain data, read from the metadata. */
struct StateType
{
    StateTypeId id;
    QString name; //!< unique in its class, lower camel case; for Thing::setStateValue()
    QString displayName;
    QString displayNameEvent;                      //!< empty if the metadata has none
    QString displayNameAction;                     //!< of its action; empty if there is none
    QMetaType::Type type = QMetaType::UnknownType; //!< Bool, Int, UInt, Double or QString
    QVariant defaultValue; //!< of \a type, the value of a new thing; invalid if the metadata has none
    QVariant minValue;     //!< of \a type, in \a unit; invalid if there is no minimum
    QVariant maxValue;     //!< of \a type, in \a unit; invalid if there is no maximum
    Types::Unit unit = Types::UnitNone;
    bool cached = true;    //!< whether a restart restores the last value, not the default
    bool writable = false; //!< whether there is an action with the same id, which sets it
};

/*! The states of a thing class, in the order of the metadata. */
class LIBNYMEA_EXPORT StateTypes : public TypeList<StateType, StateTypeId>
{
};

#endif // STATETYPE_H
