// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef VALUES_H
#define VALUES_H

#include <types/param.h>
#include <types/paramtype.h>

#include <tl/expected.hpp>

/*! \a value as \a rule's type, within its limits. Takes a number for a number, a text for a text, true or
    false for a bool, and converts nothing else. The error continues a sentence that begins with the value's
    name, such as "must be a whole number from 6 to 32 A". */
tl::expected<QVariant, QString> checkValue(const QVariant &value, const ParamType &rule);

/*! \a params with values of their types, or the sentence that says what is wrong with the first bad one.
    Parameters that are not given are not added. */
tl::expected<ParamList, QString> checkParams(const ParamList &params, const ParamTypes &types);

/*! What a user has typed: a number or a bool if \a type needs one and \a text is one, else the text. */
QVariant typedValue(const QString &text, QMetaType::Type type);

/*! \a id without braces. */
QString idText(const QUuid &id);

/*! The value as people read it, to 0.001 and with its unit; a Unix time as local date and time. */
QString valueText(const QVariant &value, Types::Unit unit);

#endif // VALUES_H
