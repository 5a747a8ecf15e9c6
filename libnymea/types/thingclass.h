// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef THINGCLASS_H
#define THINGCLASS_H

#include "types/actiontype.h"
#include "types/paramtype.h"
#include "types/statetype.h"

#include <QStringList>

/*! Describes a kind of thing that a plugin supports. Plain data, read from the metadata. */
struct ThingClass
{
    ThingClassId id;
    VendorId vendorId;
    QString name; //!< unique in the plugin
    QString displayName;
    QStringList createMethods;      //!< "discovery", "auto" (the plugin announces its things) or "user"
    QStringList interfaces;         //!< standard sets of states and actions, such as "evcharger"
    QStringList providedInterfaces; //!< interfaces of the children of such a thing
    ParamTypes paramTypes;          //!< identify and configure a thing
    ParamTypes discoveryParamTypes; //!< what the user enters for a discovery
    StateTypes stateTypes;
    ActionTypes actionTypes; //!< one for each writable state
};

/*! The thing classes of a plugin, in the order of the metadata. */
class LIBNYMEA_EXPORT ThingClasses : public TypeList<ThingClass, ThingClassId>
{
public:
    bool contains(const ThingClassId &id) const
    {
        return std::any_of(cbegin(), cend(), [&id](const ThingClass &type) { return type.id == id; });
    }
};

#endif // THINGCLASS_H
