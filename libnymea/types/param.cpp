// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "types/param.h"

#include <algorithm>

Param::Param(const ParamTypeId &paramTypeId, const QVariant &value)
    : m_paramTypeId(paramTypeId)
    , m_value(value)
{
}

ParamTypeId Param::paramTypeId() const
{
    return m_paramTypeId;
}

QVariant Param::value() const
{
    return m_value;
}

void Param::setValue(const QVariant &value)
{
    m_value = value;
}

ParamList::ParamList(const QList<Param> &other)
    : QList<Param>(other)
{
}

bool ParamList::hasParam(const ParamTypeId &paramTypeId) const
{
    return std::any_of(cbegin(), cend(),
                       [&paramTypeId](const Param &param) { return param.paramTypeId() == paramTypeId; });
}

QVariant ParamList::paramValue(const ParamTypeId &paramTypeId) const
{
    for (const Param &param : *this) {
        if (param.paramTypeId() == paramTypeId)
            return param.value();
    }
    return QVariant();
}

bool ParamList::setParamValue(const ParamTypeId &paramTypeId, const QVariant &value)
{
    for (Param &param : *this) {
        if (param.paramTypeId() == paramTypeId) {
            param.setValue(value);
            return true;
        }
    }
    return false;
}
