// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef ACTIONTYPE_H
#define ACTIONTYPE_H

#include "types/paramtype.h"

/*! Describes an action of a thing class. A writable state yields one whose id, name and single
    parameter are the state's own. */
struct ActionType
{
    ActionTypeId id;
    QString name;
    QString displayName;
    ParamTypes paramTypes;
};

class LIBNYMEA_EXPORT ActionTypes : public QVector<ActionType>
{
public:
    /*! The type of that id or name; one with a null id without it. */
    ActionType findById(const ActionTypeId &id) const;
    ActionType findByName(const QString &name) const;
};

#endif // ACTIONTYPE_H
