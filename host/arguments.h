// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef ARGUMENTS_H
#define ARGUMENTS_H

#include <integrations/thing.h>

#include <QStringList>

#include <chrono>
#include <tl/expected.hpp>

// Reads a line and a command's arguments. The error is a sentence that says what is wrong with them.

/*! Splits \a line as a shell does, without expanding anything: blanks separate, 'single' and "double" quotes
    and the backslash keep a word together, # at the start of a word begins a comment. */
tl::expected<QStringList, QString> splitWords(const QString &line);
/*! Reads NAME=VALUE texts, each naming another one of \a types. */
tl::expected<ParamList, QString> readAssignments(const QStringList &assignments, const ParamTypes &types);
/*! Reads a time in seconds, up to a day. */
tl::expected<std::chrono::milliseconds, QString> readSeconds(const QString &text);

/*! The thing that \a text stands for: a complete name or id takes precedence over the beginning of one.
    Case-sensitive, as the ids of wallboxes are. */
tl::expected<Thing *, QString> findThing(const Things &things, const QString &text);

/*! The names of the entries, in their order. */
template <typename List> QStringList nameList(const List &list)
{
    QStringList names;
    for (const auto &entry : list)
        names.append(entry.name);
    return names;
}

/*! The same for a sentence, as in "power, state"; "none" without any. */
template <typename List> QString namesOf(const List &list)
{
    return list.isEmpty() ? QStringLiteral("none") : nameList(list).join(QStringLiteral(", "));
}

#endif // ARGUMENTS_H
