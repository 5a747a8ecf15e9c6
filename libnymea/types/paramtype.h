// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef PARAMTYPE_H
#define PARAMTYPE_H

#include "typeutils.h"

#include <QString>
#include <QVariant>
#include <QVector>

/*! Describes a parameter of a thing class, a discovery or an action. Plain data, read from metadata. */
struct ParamType
{
    ParamTypeId id;
    QString name; //!< unique among its siblings, lower camel case
    QString displayName;
    QMetaType::Type type = QMetaType::UnknownType;
    QVariant defaultValue; //!< of \a type
    QVariant minValue;     //!< invalid: no minimum
    QVariant maxValue;     //!< invalid: no maximum
    Types::Unit unit = Types::UnitNone;
    bool readOnly = false; //!< set when the thing is created, not by the user afterwards
};

class LIBNYMEA_EXPORT ParamTypes : public QVector<ParamType>
{
public:
    /*! The type of that id or name; one with a null id without it. */
    ParamType findById(const ParamTypeId &id) const;
    ParamType findByName(const QString &name) const;
};

#endif // PARAMTYPE_H
