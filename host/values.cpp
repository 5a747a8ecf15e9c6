// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "values.h"

#include "printable.h"

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

QString kindName(QMetaType::Type type)
{
    switch (type) {
    case QMetaType::Bool:
        return QStringLiteral("true or false");
    case QMetaType::Int:
    case QMetaType::UInt:
        return QStringLiteral("a whole number");
    case QMetaType::Double:
        return QStringLiteral("a number");
    default:
        return QStringLiteral("a text");
    }
}

template <typename Integer> QVariant wholeNumber(double number)
{
    const bool fits = number == std::floor(number) && number >= std::numeric_limits<Integer>::min()
        && number <= std::numeric_limits<Integer>::max();
    return fits ? QVariant::fromValue(Integer(number)) : QVariant();
}

/*! \a value as \a type, or an invalid QVariant. Only numbers are converted, and only without a loss. */
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

bool isWithinLimits(const QVariant &value, const ParamType &rule)
{
    const double number = value.toDouble();
    return (!rule.minValue.isValid() || number >= rule.minValue.toDouble())
        && (!rule.maxValue.isValid() || number <= rule.maxValue.toDouble());
}

QString unitSuffix(Types::Unit unit)
{
    if (unit == Types::UnitWatt)
        return QStringLiteral(" W");
    if (unit == Types::UnitKiloWattHour)
        return QStringLiteral(" kWh");
    return unit == Types::UnitAmpere ? QStringLiteral(" A") : QString();
}

/*! What a value must be, as in "a whole number from 6 to 32 A". */
QString requirement(const ParamType &rule)
{
    const bool hasMin = rule.minValue.isValid() || rule.type == QMetaType::UInt;
    const bool hasMax = rule.maxValue.isValid();
    const QString min = valueText(rule.minValue.isValid() ? rule.minValue : 0, Types::UnitNone);
    const QString max = valueText(rule.maxValue, rule.unit);
    const QString kind = kindName(rule.type);
    if (hasMin && hasMax)
        return QStringLiteral("%1 from %2 to %3").arg(kind, min, max);
    if (hasMin)
        return QStringLiteral("%1, %2 or more").arg(kind, min + unitSuffix(rule.unit));
    return hasMax ? QStringLiteral("%1, %2 or less").arg(kind, max) : kind;
}

} // namespace

tl::expected<QVariant, QString> checkValue(const QVariant &value, const ParamType &rule)
{
    if (rule.minValue.isValid() && rule.maxValue.isValid()
        && rule.minValue.toDouble() > rule.maxValue.toDouble())
        return tl::unexpected(
            QStringLiteral("cannot be set now: its minimum, %1, is above its maximum, %2")
                .arg(valueText(rule.minValue, rule.unit), valueText(rule.maxValue, rule.unit)));
    const QVariant result = typed(value, rule.type);
    if (!result.isValid() || !isWithinLimits(result, rule))
        return tl::unexpected(
            QStringLiteral("must be %1, not \"%2\"").arg(requirement(rule), value.toString()));
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

QString idText(const QUuid &id)
{
    return id.toString(QUuid::WithoutBraces);
}

QString valueText(const QVariant &value, Types::Unit unit)
{
    if (unit == Types::UnitUnixTime)
        return QDateTime::fromSecsSinceEpoch(value.toLongLong())
            .toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    if (value.userType() != QMetaType::Double)
        return value.toString() + unitSuffix(unit);
    return numberText(value.toDouble()) + unitSuffix(unit);
}
