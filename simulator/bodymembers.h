// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef BODYMEMBERS_H
#define BODYMEMBERS_H

#include <QJsonObject>

#include <vector>

/*! A member that a body may have. */
struct BodyMember
{
    enum Kind { Text, Flag, Number, WholeNumber };
    const char *name;
    Kind kind;
    double least = 0; //!< for numbers
    double most = 0;
};

/*! Returns the first mistake in \a body as a sentence that says what would be right; empty if there is none.
    All \a members are optional. A member that is not listed is a mistake, so that typing errors are noticed. */
QString findMistake(const QJsonObject &body, const std::vector<BodyMember> &members);

#endif // BODYMEMBERS_H
