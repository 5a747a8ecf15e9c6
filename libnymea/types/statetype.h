// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef STATETYPE_H
#define STATETYPE_H

#include "typeutils.h"

#include <QString>
#include <QVariant>
#include <QVector>

/*! Describes a state of a thing class. Plain data, read from metadata. */
struct StateType
{
    StateTypeId id;
    QString name; //!< unique in its class, lower camel case
    QString displayName;
    QString displayNameEvent;  //!< empty where the metadata gives none
    QString displayNameAction; //!< empty unless writable
    QMetaType::Type type = QMetaType::UnknownType;
    QVariant defaultValue; //!< of \a type
    QVariant minValue;     //!< invalid: no minimum
    QVariant maxValue;     //!< invalid: no maximum
    Types::Unit unit = Types::UnitNone;
    bool cached = true;    //!< kept by the daemon over a restart
    bool writable = false; //!< then an action type of the same id sets it
};

class LIBNYMEA_EXPORT StateTypes : public QVector<StateType>
{
public:
    /*! The type of that id or name; one with a null id without it. */
    StateType findById(const StateTypeId &id) const;
    StateType findByName(const QString &name) const;
};

#endif // STATETYPE_H
