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
    double least = 0; //!< of numbers
    double most = 0;
};

/*! What is wrong with the members of \a body, in one sentence that says what would be right; empty if they
    are as \a members says. A member that is not listed there is wrong as well, so that no typo is ignored.
    None has to be there. */
QString findMistake(const QJsonObject &body, const std::vector<BodyMember> &members);

#endif // BODYMEMBERS_H
