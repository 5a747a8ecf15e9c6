// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef TYPEUTILS_H
#define TYPEUTILS_H

#include "libnymea.h"

#include <QMetaType>
#include <QObject>
#include <QUuid>

/*! Declares a separate type for each kind of id, so that a signature says which kind it takes; the compiler
    does not tell them apart, because an id converts from any UUID. It is null if it is default-constructed or
    made from a text that is not a UUID. create…Id() returns a new random one. It is hashed and compared like a
    QUuid. */
#define DECLARE_TYPE_ID(type)                                                                                \
    class type##Id : public QUuid                                                                            \
    {                                                                                                        \
    public:                                                                                                  \
        type##Id() = default;                                                                                \
        type##Id(const QUuid &uuid)                                                                          \
            : QUuid(uuid)                                                                                    \
        {                                                                                                    \
        }                                                                                                    \
        explicit type##Id(const QString &text)                                                               \
            : QUuid(text)                                                                                    \
        {                                                                                                    \
        }                                                                                                    \
        static type##Id create##type##Id() { return type##Id(QUuid::createUuid()); }                         \
    };                                                                                                       \
    Q_DECLARE_METATYPE(type##Id)

DECLARE_TYPE_ID(Plugin)
DECLARE_TYPE_ID(Vendor)
DECLARE_TYPE_ID(ThingClass)
DECLARE_TYPE_ID(Thing)
DECLARE_TYPE_ID(ParamType)
DECLARE_TYPE_ID(StateType)
DECLARE_TYPE_ID(ActionType)

/*! Value types that the metadata and the code share. */
class LIBNYMEA_EXPORT Types
{
    Q_GADGET
public:
    /*! Units of parameter and state values. The metadata contains the name without "Unit". A value is always
        in the unit of its type and is never converted. */
    enum Unit {
        UnitNone,         //!< a number without a unit, a text or a bool
        UnitWatt,         //!< power; positive when the thing consumes
        UnitKiloWattHour, //!< energy
        UnitAmpere,       //!< current of one phase
        UnitUnixTime      //!< seconds since 1970-01-01 00:00:00 UTC
    };
    Q_ENUM(Unit)
};

#endif // TYPEUTILS_H
