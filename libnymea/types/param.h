// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef PARAM_H
#define PARAM_H

#include "typeutils.h"

#include <QList>
#include <QVariant>

/*! The value of one parameter of a thing, a discovery or an action. Plain data. The id of its type
    identifies the parameter, and the type defines the unit of the value. */
class LIBNYMEA_EXPORT Param
{
public:
    explicit Param(const ParamTypeId &paramTypeId = ParamTypeId(), const QVariant &value = QVariant())
        : m_paramTypeId(paramTypeId)
        , m_value(value)
    {
    }

    ParamTypeId paramTypeId() const { return m_paramTypeId; }

    QVariant value() const { return m_value; }
    /*! Accepts any \a value: the receiver of the parameter checks it against the type. */
    void setValue(const QVariant &value) { m_value = value; }

private:
    ParamTypeId m_paramTypeId;
    QVariant m_value;
};

/*! Parameters in no particular order. If a type occurs twice, the first one is used. */
class LIBNYMEA_EXPORT ParamList : public QList<Param>
{
public:
    ParamList() = default;
    ParamList(const QList<Param> &other);

    bool hasParam(const ParamTypeId &paramTypeId) const;

    /*! An invalid QVariant if the list has no such parameter, for example for a discovery field that the user
        left out. */
    QVariant paramValue(const ParamTypeId &paramTypeId) const;

    /*! Replaces the value of a parameter. If the list has no such parameter, it returns false and changes
        nothing. */
    bool setParamValue(const ParamTypeId &paramTypeId, const QVariant &value);
};

#endif // PARAM_H
