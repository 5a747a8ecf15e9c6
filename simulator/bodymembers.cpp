// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "bodymembers.h"

#include <QStringList>

#include <cmath>

namespace {

/*! What \a value should be; empty if it is valid. */
QString expectation(const BodyMember &member, const QJsonValue &value)
{
    const double number = value.toDouble();
    if (member.kind == BodyMember::Text)
        return value.isString() ? QString() : QStringLiteral("a string");
    if (member.kind == BodyMember::Flag)
        return value.isBool() ? QString() : QStringLiteral("true or false");
    if (!value.isDouble() || number < member.least || number > member.most)
        return QStringLiteral("a number from %1 to %2").arg(member.least).arg(member.most);
    const bool isWrong = member.kind == BodyMember::WholeNumber && std::trunc(number) != number;
    return isWrong ? QStringLiteral("a whole number") : QString();
}

} // namespace

QString findMistake(const QJsonObject &body, const std::vector<BodyMember> &members)
{
    QStringList known;
    for (const BodyMember &member : members) {
        const QLatin1String name(member.name);
        const QString expected = body.contains(name) ? expectation(member, body.value(name)) : QString();
        if (!expected.isEmpty())
            return QStringLiteral("\"%1\" must be %2").arg(name, expected);
        known.append(name);
    }
    const QStringList names = body.keys();
    for (const QString &name : names) {
        if (!known.contains(name))
            return QStringLiteral("there is no member \"%1\" here; known: %2")
                .arg(name, known.isEmpty() ? QStringLiteral("none") : known.join(QLatin1String(", ")));
    }
    return {};
}
