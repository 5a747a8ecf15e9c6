// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef TYPELIST_H
#define TYPELIST_H

#include <QString>
#include <QVector>

#include <algorithm>

/*! A list of types that have an "id" and a "name", in the order of the metadata. Both searches return a copy
    of the first match. If there is none, they return a default-constructed type, whose id is null. */
template <typename Type, typename Id> class TypeList : public QVector<Type>
{
public:
    Type findById(const Id &id) const
    {
        return findFirst([&id](const Type &type) { return type.id == id; });
    }

    /*! Case-sensitive. */
    Type findByName(const QString &name) const
    {
        return findFirst([&name](const Type &type) { return type.name == name; });
    }

private:
    template <typename Predicate> Type findFirst(Predicate predicate) const
    {
        const auto it = std::find_if(this->cbegin(), this->cend(), predicate);
        return it == this->cend() ? Type() : *it;
    }
};

#endif // TYPELIST_H
