// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "values.h"

#include <QDateTime>

#include <cmath>
#include <limits>

namespace {

bool isNumber(const QVariant &value)
{
    const int type = value.userType();
    return type == QMetaType::Int || type == QMetaType::UInt || type == QMetaType::LongLong
        || type == QMetaType::ULongLong || type == QMetaType::Float || type == QMetaType::Double;
}

QString requirement(QMetaType::Type type)
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
    return fits ? QVariant::fromValue(Integer(number)) : QVariant();
}

/*! \a value as \a type, or an invalid QVariant where that would need more than another kind of number. */
QVariant typed(const QVariant &value, QMetaType::Type type)
{
    if (!isNumber(value))
        return value.userType() == type ? value : QVariant();
    const double number = value.toDouble();
    if (type == QMetaType::Int)
        return wholeNumber<int>(number);
    if (type == QMetaType::UInt)
        return wholeNumber<uint>(number);
    return type == QMetaType::Double && std::isfinite(number) ? QVariant(number) : QVariant();
}

/*! What is wrong with the number \a value; empty if nothing is. */
QString rangeError(const QVariant &value, const ParamType &rule)
{
    const bool hasMin = rule.minValue.isValid();
    const bool hasMax = rule.maxValue.isValid();
    const double number = value.toDouble();
    if ((!hasMin || number >= rule.minValue.toDouble()) && (!hasMax || number <= rule.maxValue.toDouble()))
        return QString();
    const QString min = valueText(rule.minValue, rule.unit);
    const QString max = valueText(rule.maxValue, rule.unit);
    if (hasMin && hasMax && rule.minValue.toDouble() > rule.maxValue.toDouble())
        return QStringLiteral("cannot be set now: its minimum, %1, is above its maximum, %2").arg(min, max);
    if (hasMin && hasMax)
        return QStringLiteral("must be from %1 to %2").arg(valueText(rule.minValue, Types::UnitNone), max);
    return hasMin ? QStringLiteral("must be at least %1").arg(min)
                  : QStringLiteral("must be at most %1").arg(max);
}

QString unitSuffix(Types::Unit unit)
{
    if (unit == Types::UnitWatt)
        return QStringLiteral(" W");
    if (unit == Types::UnitKiloWattHour)
        return QStringLiteral(" kWh");
    return unit == Types::UnitAmpere ? QStringLiteral(" A") : QString();
}

} // namespace

tl::expected<QVariant, QString> checkValue(const QVariant &value, const ParamType &rule)
{
    const QVariant result = typed(value, rule.type);
    const QString error = result.isValid() ? rangeError(result, rule) : requirement(rule.type);
    if (!error.isEmpty())
        return tl::unexpected(QStringLiteral("%1, not \"%2\"").arg(error, value.toString()));
    return result;
}

tl::expected<ParamList, QString> checkParams(const ParamList &params, const ParamTypes &types)
{
    ParamList result;
    for (const Param &param : params) {
        const ParamType type = types.findById(param.paramTypeId());
        if (type.id.isNull())
            return tl::unexpected(
                QStringLiteral("There is no parameter %1.").arg(param.paramTypeId().toString()));
        const auto value = checkValue(param.value(), type);
        if (!value)
            return tl::unexpected(QStringLiteral("Parameter %1 %2.").arg(type.name, value.error()));
        result.append(Param(type.id, *value));
    }
    return result;
}

QVariant typedValue(const QString &text, QMetaType::Type type)
{
    if (type == QMetaType::Bool && (text == QLatin1String("true") || text == QLatin1String("false")))
        return text == QLatin1String("true");
    bool isNumber = false;
    const double number = text.toDouble(&isNumber);
    return isNumber && type != QMetaType::QString && type != QMetaType::Bool ? QVariant(number)
                                                                             : QVariant(text);
}

QString valueText(const QVariant &value, Types::Unit unit)
{
    if (unit == Types::UnitUnixTime)
        return QDateTime::fromSecsSinceEpoch(value.toLongLong())
            .toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    // 15 digits hide the last bit's noise of a sum, as in 0.30000000000000004.
    const QString text =
        value.userType() == QMetaType::Double ? QString::number(value.toDouble(), 'g', 15) : value.toString();
    return text + unitSuffix(unit);
}
