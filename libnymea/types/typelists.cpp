// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "types/actiontype.h"
#include "types/paramtype.h"
#include "types/statetype.h"
#include "types/thingclass.h"

#include <algorithm>

namespace {

template <typename List, typename Predicate>
typename List::value_type findFirst(const List &list, Predicate predicate)
{
    const auto it = std::find_if(list.cbegin(), list.cend(), predicate);
    return it == list.cend() ? typename List::value_type() : *it;
}

template <typename List, typename Id> typename List::value_type firstWithId(const List &list, const Id &id)
{
    return findFirst(list, [&id](const auto &entry) { return entry.id == id; });
}

template <typename List> typename List::value_type firstWithName(const List &list, const QString &name)
{
    return findFirst(list, [&name](const auto &entry) { return entry.name == name; });
}

} // namespace

ParamType ParamTypes::findById(const ParamTypeId &id) const
{
    return firstWithId(*this, id);
}

ParamType ParamTypes::findByName(const QString &name) const
{
    return firstWithName(*this, name);
}

StateType StateTypes::findById(const StateTypeId &id) const
{
    return firstWithId(*this, id);
}

StateType StateTypes::findByName(const QString &name) const
{
    return firstWithName(*this, name);
}

ActionType ActionTypes::findById(const ActionTypeId &id) const
{
    return firstWithId(*this, id);
}

ActionType ActionTypes::findByName(const QString &name) const
{
    return firstWithName(*this, name);
}

ThingClass ThingClasses::findById(const ThingClassId &id) const
{
    return firstWithId(*this, id);
}

ThingClass ThingClasses::findByName(const QString &name) const
{
    return firstWithName(*this, name);
}

bool ThingClasses::contains(const ThingClassId &id) const
{
    return std::any_of(cbegin(), cend(), [&id](const ThingClass &entry) { return entry.id == id; });
}
