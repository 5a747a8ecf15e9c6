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
    QString name; //!< unique in its class, lower camel case; what Thing::setStateValue() takes
    QString displayName;
    QString displayNameEvent;                      //!< empty if the metadata gives none
    QString displayNameAction;                     //!< empty unless writable
    QMetaType::Type type = QMetaType::UnknownType; //!< Bool, Int, UInt, Double or QString
    QVariant defaultValue;                         //!< of \a type; what a new thing shows
    QVariant minValue;                             //!< of \a type, in \a unit; invalid if there is no minimum
    QVariant maxValue;                             //!< of \a type, in \a unit; invalid if there is no maximum
    Types::Unit unit = Types::UnitNone;
    bool cached = true;    //!< the daemon restores the last value after a restart; else the default
    bool writable = false; //!< an action type of the same id sets it
};

class LIBNYMEA_EXPORT StateTypes : public TypeList<StateType, StateTypeId>
{
};

#endif // STATETYPE_H
