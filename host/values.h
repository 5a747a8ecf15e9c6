// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef VALUES_H
#define VALUES_H

#include <integrations/thing.h>
#include <types/action.h>
#include <types/param.h>
#include <types/paramtype.h>
#include <types/statetype.h>

/*! What a value of a parameter, state or action must be. */
struct ValueRule
{
    QMetaType::Type type = QMetaType::UnknownType;
    QVariant minValue; //!< invalid: no minimum
    QVariant maxValue; //!< invalid: no maximum
    Types::Unit unit = Types::UnitNone;
};
ValueRule ruleFor(const ParamType &paramType);

/*! A value of the rule's type, or the reason why there is none. */
struct CheckedValue
{
    QVariant value;
    QString error; //!< continues a sentence that begins with the value's name, as "must be from 6 to 32 A"
};
/*! Takes a number for a number, a text for a text, true or false for a bool; converts nothing else. */
CheckedValue checkValue(const QVariant &value, const ValueRule &rule);
/*! The same for what a user has typed. */
CheckedValue parseValue(const QString &text, const ValueRule &rule);

/*! The parameters with values of their types, or the sentence that says what is wrong with the first bad one.
    Parameters that are not given are not added. */
struct CheckedParams
{
    ParamList params;
    QString error;
};
CheckedParams checkParams(const ParamList &params, const ParamTypes &paramTypes);
/*! The parameters of \a action on \a thing, checked against the limits in force for the states of the same
 * ids. */
CheckedParams checkAction(const Thing *thing, const Action &action);

/*! "kWh"; empty for a value without a unit. */
QString unitSymbol(Types::Unit unit);
/*! The value as people read it, with its unit; a Unix time as local date and time. */
QString valueText(const QVariant &value, Types::Unit unit);

#endif // VALUES_H
