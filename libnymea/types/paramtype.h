// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef PARAMTYPE_H
#define PARAMTYPE_H

#include "types/typelist.h"
#include "typeutils.h"

#include <QVariant>

/*! Describes a parameter of a thing class, a discovery or an action. Plain data, read from the metadata. */
struct ParamType
{
    ParamTypeId id;
    QString name; //!< unique within its list, lower camel case
    QString displayName;
    QMetaType::Type type = QMetaType::UnknownType; //!< Bool, Int, UInt, Double or QString
    QVariant defaultValue;                         //!< of \a type; invalid if the metadata has none
    QVariant minValue;                             //!< of \a type, in \a unit; invalid if there is no minimum
    QVariant maxValue;                             //!< of \a type, in \a unit; invalid if there is no maximum
    Types::Unit unit = Types::UnitNone;
    bool readOnly = false; //!< only set when the thing is created; not enforced here
};

/*! The parameters of a thing class or an action, in the order of the metadata. */
class LIBNYMEA_EXPORT ParamTypes : public TypeList<ParamType, ParamTypeId>
{
};

#endif // PARAMTYPE_H
