// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef PARAM_H
#define PARAM_H

#include "typeutils.h"

#include <QList>
#include <QVariant>

/*! The value of one parameter of a thing, a discovery or an action. Plain data. A parameter is named by its
    type's id; the type also says in which unit the value is. */
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
    /*! Takes any \a value: whoever receives the parameter checks it against the type. */
    void setValue(const QVariant &value) { m_value = value; }

private:
    ParamTypeId m_paramTypeId;
    QVariant m_value;
};

/*! Parameters in no particular order. Where a type occurs twice, the first one counts. */
class LIBNYMEA_EXPORT ParamList : public QList<Param>
{
public:
    ParamList() = default;
    ParamList(const QList<Param> &other);

    bool hasParam(const ParamTypeId &paramTypeId) const;

    /*! An invalid QVariant if the list has no such parameter, which is how a field that the user left out
        of a discovery reads. */
    QVariant paramValue(const ParamTypeId &paramTypeId) const;

    /*! Replaces the value of a parameter. Refused, with false and without a change, if the list has no such
        parameter: nothing is appended. */
    bool setParamValue(const ParamTypeId &paramTypeId, const QVariant &value);
};

#endif // PARAM_H
