// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "values.h"

#include <QDateTime>

#include <cmath>
#include <limits>

namespace {

bool isNumber(const QVariant &value)
{
    switch (value.userType()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Float:
    case QMetaType::Double:
        return true;
    default:
        return false;
    }
}

QString wanted(QMetaType::Type type)
{
    switch (type) {
    case QMetaType::Bool:
        return QStringLiteral("must be true or false");
    case QMetaType::Int:
        return QStringLiteral("must be a whole number");
    case QMetaType::UInt:
        return QStringLiteral("must be a whole number, 0 or more");
    case QMetaType::Double:
        return QStringLiteral("must be a number");
    default:
        return QStringLiteral("must be a text");
    }
}

template <typename Integer> QVariant wholeNumber(double number)
{
    const bool fits = number == std::floor(number) && number >= std::numeric_limits<Integer>::min()
        && number <= std::numeric_limits<Integer>::max();
    return fits ? QVariant::fromValue(static_cast<Integer>(number)) : QVariant();
}

/*! \a value as \a type, or an invalid QVariant where that would need more than another kind of number. */
QVariant typed(const QVariant &value, QMetaType::Type type)
{
    if (value.userType() == type)
        return type == QMetaType::Double && !std::isfinite(value.toDouble()) ? QVariant() : value;
    if (!isNumber(value) || !std::isfinite(value.toDouble()))
        return QVariant();
    switch (type) {
    case QMetaType::Int:
        return wholeNumber<int>(value.toDouble());
    case QMetaType::UInt:
        return wholeNumber<uint>(value.toDouble());
    case QMetaType::Double:
        return value.toDouble();
    default:
        return QVariant();
    }
}

QString rangeError(const QVariant &value, const ValueRule &rule)
{
    const bool hasMin = rule.minValue.isValid();
    const bool hasMax = rule.maxValue.isValid();
    const double number = value.toDouble();
    if ((!hasMin || number >= rule.minValue.toDouble()) && (!hasMax || number <= rule.maxValue.toDouble()))
        return QString();
    const QString max = valueText(rule.maxValue, rule.unit);
    if (hasMin && hasMax && rule.minValue.toDouble() > rule.maxValue.toDouble())
        return QStringLiteral("takes no value at present: at least %1 and at most %2")
            .arg(valueText(rule.minValue, rule.unit), max);
    if (hasMin && hasMax)
        return QStringLiteral("must be from %1 to %2").arg(valueText(rule.minValue, Types::UnitNone), max);
    return hasMin ? QStringLiteral("must be at least %1").arg(valueText(rule.minValue, rule.unit))
                  : QStringLiteral("must be at most %1").arg(max);
}

} // namespace

ValueRule ruleFor(const ParamType &paramType)
{
    return {paramType.type, paramType.minValue, paramType.maxValue, paramType.unit};
}

CheckedValue checkValue(const QVariant &value, const ValueRule &rule)
{
    const QVariant result = typed(value, rule.type);
    const QString error = result.isValid() ? rangeError(result, rule) : wanted(rule.type);
    if (error.isEmpty())
        return {result, QString()};
    return {QVariant(), QStringLiteral("%1, not \"%2\"").arg(error, value.toString())};
}

CheckedValue parseValue(const QString &text, const ValueRule &rule)
{
    if (rule.type == QMetaType::Bool && (text == QLatin1String("true") || text == QLatin1String("false")))
        return checkValue(text == QLatin1String("true"), rule);
    bool isNumber = false;
    const double number = text.toDouble(&isNumber);
    if (isNumber && rule.type != QMetaType::QString && rule.type != QMetaType::Bool)
        return checkValue(number, rule);
    return checkValue(text, rule);
}

CheckedParams checkParams(const ParamList &params, const ParamTypes &paramTypes)
{
    CheckedParams result;
    for (const Param &param : params) {
        const ParamType type = paramTypes.findById(param.paramTypeId());
        if (type.id.isNull())
            return {{}, QStringLiteral("There is no parameter %1.").arg(param.paramTypeId().toString())};
        const CheckedValue checked = checkValue(param.value(), ruleFor(type));
        if (!checked.error.isEmpty())
            return {{}, QStringLiteral("Parameter %1 %2.").arg(type.name, checked.error)};
        result.params.append(Param(type.id, checked.value));
    }
    return result;
}

CheckedParams checkAction(const Thing *thing, const Action &action)
{
    const ActionType type = thing->thingClass().actionTypes.findById(action.actionTypeId());
    if (type.id.isNull())
        return {{}, QStringLiteral("%1 has no such action.").arg(thing->name())};
    ParamTypes paramTypes = type.paramTypes;
    for (ParamType &paramType : paramTypes) {
        if (!action.params().hasParam(paramType.id))
            return {{}, QStringLiteral("Parameter %1 is missing.").arg(paramType.name)};
        const State state = thing->state(StateTypeId(paramType.id));
        if (state.stateTypeId().isNull())
            continue;
        // The metadata's limits are where the state's own began; the plugin may have moved them.
        paramType.minValue = state.minValue();
        paramType.maxValue = state.maxValue();
    }
    return checkParams(action.params(), paramTypes);
}

QString unitSymbol(Types::Unit unit)
{
    switch (unit) {
    case Types::UnitWatt:
        return QStringLiteral("W");
    case Types::UnitKiloWattHour:
        return QStringLiteral("kWh");
    case Types::UnitAmpere:
        return QStringLiteral("A");
    case Types::UnitNone:
    case Types::UnitUnixTime:
        break;
    }
    return QString();
}

QString valueText(const QVariant &value, Types::Unit unit)
{
    if (unit == Types::UnitUnixTime)
        return QDateTime::fromSecsSinceEpoch(value.toLongLong())
            .toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    // 15 digits hide the last bit's noise of a sum, as in 0.30000000000000004.
    const QString text =
        value.userType() == QMetaType::Double ? QString::number(value.toDouble(), 'g', 15) : value.toString();
    const QString symbol = unitSymbol(unit);
    return symbol.isEmpty() ? text : text + QLatin1Char(' ') + symbol;
}
