// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef PARAM_H
#define PARAM_H

#include "typeutils.h"

#include <QList>
#include <QVariant>

/*! One value of a parameter, named by the parameter's type. */
class LIBNYMEA_EXPORT Param
{
public:
    explicit Param(const ParamTypeId &paramTypeId = ParamTypeId(), const QVariant &value = QVariant());

    ParamTypeId paramTypeId() const;

    QVariant value() const;
    void setValue(const QVariant &value);

private:
    ParamTypeId m_paramTypeId;
    QVariant m_value;
};

class LIBNYMEA_EXPORT ParamList : public QList<Param>
{
public:
    ParamList() = default;
    ParamList(const QList<Param> &other);

    bool hasParam(const ParamTypeId &paramTypeId) const;

    /*! The value of the first parameter of type \a paramTypeId, or an invalid QVariant without one. */
    QVariant paramValue(const ParamTypeId &paramTypeId) const;

    /*! Replaces the parameter's value; false, changing nothing, when the list has no such parameter. */
    bool setParamValue(const ParamTypeId &paramTypeId, const QVariant &value);
};

#endif // PARAM_H
