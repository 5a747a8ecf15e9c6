// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "arguments.h"

#include "values.h"

QString readAssignments(const QStringList &assignments, const ParamTypes &types, ParamList *params)
{
    for (const QString &assignment : assignments) {
        const QString name = assignment.section(QLatin1Char('='), 0, 0);
        const ParamType type = types.findByName(name);
        if (!assignment.contains(QLatin1Char('=')))
            return QStringLiteral("\"%1\" must read PARAM=VALUE.").arg(assignment);
        if (type.id.isNull())
            return QStringLiteral("There is no parameter \"%1\"; there are %2.").arg(name, namesOf(types));
        if (params->hasParam(type.id))
            return QStringLiteral("Parameter %1 is given twice.").arg(name);
        const CheckedValue value = parseValue(assignment.section(QLatin1Char('='), 1), ruleFor(type));
        if (!value.error.isEmpty())
            return QStringLiteral("Parameter %1 %2.").arg(name, value.error);
        params->append(Param(type.id, value.value));
    }
    return QString();
}

QString readSeconds(const QString &text, std::chrono::milliseconds *time)
{
    constexpr double longest = 86400;
    bool isNumber = false;
    const double seconds = text.toDouble(&isNumber);
    if (!isNumber || !(seconds >= 0 && seconds <= longest))
        return QStringLiteral("SECONDS must be a number from 0 to %1, not \"%2\".").arg(longest).arg(text);
    *time = std::chrono::milliseconds(qRound64(seconds * 1000));
    return QString();
}
