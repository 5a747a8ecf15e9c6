// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef ARGUMENTS_H
#define ARGUMENTS_H

#include <types/param.h>
#include <types/paramtype.h>

#include <QStringList>

#include <chrono>
#include <type_traits>

// What a command's arguments mean. Each function returns the sentence that says what is wrong, empty if
// nothing is.

/*! Reads NAME=VALUE texts, each naming another one of \a types. */
[[nodiscard]] QString readAssignments(const QStringList &assignments, const ParamTypes &types,
                                      ParamList *params);
/*! Reads a time in seconds, up to a day. */
[[nodiscard]] QString readSeconds(const QString &text, std::chrono::milliseconds *time);

/*! The names of whatever has a name, as in "power, state"; "none" without any. */
template <typename List> QString namesOf(const List &list)
{
    QStringList names;
    for (const auto &entry : list) {
        if constexpr (std::is_convertible_v<decltype(entry.name), QString>)
            names.append(entry.name);
        else
            names.append(QLatin1String(entry.name));
    }
    return names.isEmpty() ? QStringLiteral("none") : names.join(QStringLiteral(", "));
}

#endif // ARGUMENTS_H
