// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef THINGCLASS_H
#define THINGCLASS_H

#include "types/actiontype.h"
#include "types/paramtype.h"
#include "types/statetype.h"

#include <QStringList>

/*! A kind of thing that a plugin offers. Plain data, read from metadata. */
struct ThingClass
{
    ThingClassId id;
    VendorId vendorId;
    QString name; //!< unique in the plugin
    QString displayName;
    QStringList createMethods; //!< "discovery", "auto" or "user"
    QStringList interfaces;
    QStringList providedInterfaces; //!< interfaces of the things that appear below one of this class
    ParamTypes paramTypes;
    ParamTypes discoveryParamTypes;
    StateTypes stateTypes;
    ActionTypes actionTypes;
};

class LIBNYMEA_EXPORT ThingClasses : public QVector<ThingClass>
{
public:
    /*! The class of that id or name; one with a null id without it. */
    ThingClass findById(const ThingClassId &id) const;
    ThingClass findByName(const QString &name) const;
    bool contains(const ThingClassId &id) const;
};

#endif // THINGCLASS_H
