// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "humantext.h"

#include "values.h"

#include <algorithm>

namespace {

QString stateText(const Thing *thing, const StateType &type)
{
    return QStringLiteral("%1 %2").arg(type.name, valueText(thing->stateValue(type.id), type.unit));
}

} // namespace

QStringList aligned(const QVector<QStringList> &rows)
{
    QVector<int> widths;
    for (const QStringList &row : rows) {
        for (int i = 0; i < row.size(); ++i) {
            if (i == widths.size())
                widths.append(0);
            widths[i] = std::max(widths.at(i), row.at(i).size());
        }
    }
    QStringList lines;
    for (const QStringList &row : rows) {
        QString line;
        for (int i = 0; i < row.size(); ++i)
            line += i + 1 < row.size() ? row.at(i).leftJustified(widths.at(i) + 2) : row.at(i);
        while (line.endsWith(QLatin1Char(' ')))
            line.chop(1);
        lines.append(line);
    }
    return lines;
}

QString setupText(const Thing *thing)
{
    switch (thing->setupStatus()) {
    case Thing::ThingSetupStatusComplete:
        return QStringLiteral("set up");
    case Thing::ThingSetupStatusInProgress:
        return QStringLiteral("set-up pending");
    case Thing::ThingSetupStatusFailed:
        return QStringLiteral("set-up failed");
    case Thing::ThingSetupStatusNone:
        break;
    }
    return QStringLiteral("not set up");
}

QString mainStates(const Thing *thing)
{
    QStringList texts;
    for (const char *name : {"connected", "state", "power", "maxChargingCurrent", "currentPower"}) {
        const StateType type = thing->thingClass().stateTypes.findByName(QLatin1String(name));
        if (!type.id.isNull())
            texts.append(stateText(thing, type));
    }
    const StateTypes types = thing->thingClass().stateTypes;
    for (int i = 0; texts.isEmpty() && i < types.size(); ++i)
        texts.append(stateText(thing, types.at(i)));
    return texts.join(QStringLiteral(", "));
}

QString limitsText(const State &state, const StateType &type)
{
    QStringList texts;
    if (state.minValue().isValid() && state.maxValue().isValid())
        texts.append(
            QStringLiteral("%1 to %2")
                .arg(valueText(state.minValue(), Types::UnitNone), valueText(state.maxValue(), type.unit)));
    if (type.writable)
        texts.append(QStringLiteral("can be set"));
    return texts.isEmpty() ? QString() : QStringLiteral("(%1)").arg(texts.join(QStringLiteral(", ")));
}
