// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "types/param.h"

#include <algorithm>

namespace {

template <typename List> auto find(List &list, const ParamTypeId &paramTypeId)
{
    return std::find_if(list.begin(), list.end(),
                        [&paramTypeId](const Param &param) { return param.paramTypeId() == paramTypeId; });
}

} // namespace

ParamList::ParamList(const QList<Param> &other)
    : QList<Param>(other)
{
}

bool ParamList::hasParam(const ParamTypeId &paramTypeId) const
{
    return find(*this, paramTypeId) != end();
}

QVariant ParamList::paramValue(const ParamTypeId &paramTypeId) const
{
    const auto it = find(*this, paramTypeId);
    return it == end() ? QVariant() : it->value();
}

bool ParamList::setParamValue(const ParamTypeId &paramTypeId, const QVariant &value)
{
    const auto it = find(*this, paramTypeId);
    if (it == end())
        return false;
    it->setValue(value);
    return true;
}
