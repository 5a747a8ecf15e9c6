// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "messages.h"

#include "thingjson.h"
#include "values.h"

#include <algorithm>

namespace {

/*! "(6 to 32 A, can be set)"; empty if there is nothing to say. */
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

Message thingEvent(const QString &event, const Thing *thing, const QString &line)
{
    const QJsonObject json{
        {QStringLiteral("event"), event             },
        {QStringLiteral("thing"), thingObject(thing)}
    };
    return {json, {line}};
}

} // namespace

Message thingAddedEvent(const Thing *thing)
{
    return thingEvent(
        QStringLiteral("thingAdded"), thing,
        QStringLiteral("+ %1 has been added (%2)").arg(thing->name(), thing->thingClass().displayName));
}

Message thingRemovedEvent(const Thing *thing)
{
    return thingEvent(QStringLiteral("thingRemoved"), thing,
                      QStringLiteral("- %1 has been removed").arg(thing->name()));
}

Message setupFinishedEvent(const ThingSetupInfo *info)
{
    const QJsonObject json{
        {QStringLiteral("event"),      QStringLiteral("setupFinished")},
        {QStringLiteral("thingId"),    idValue(info->thing()->id())   },
        {QStringLiteral("thingError"), errorName(info->status())      },
        {QStringLiteral("message"),    info->displayMessage()         }
    };
    const QString name = info->thing()->name();
    if (info->status() == Thing::ThingErrorNoError)
        return {json, {QStringLiteral("* %1 is set up").arg(name)}};
    return {json, {QStringLiteral("! set-up of %1 has failed: %2").arg(name, errorText(info))}};
}

Message stateChangedEvent(const Thing *thing, const StateTypeId &stateTypeId, const QVariant &value)
{
    const StateType type = thing->thingClass().stateTypes.findById(stateTypeId);
    const QJsonObject json{
        {QStringLiteral("event"),   QStringLiteral("stateChanged")},
        {QStringLiteral("thingId"), idValue(thing->id())          },
        {QStringLiteral("name"),    thing->name()                 },
        {QStringLiteral("state"),   type.name                     },
        {QStringLiteral("value"),   QJsonValue::fromVariant(value)}
    };
    if (!type.writable && type.type != QMetaType::Bool && type.type != QMetaType::QString)
        return {json, {}};
    return {json, {QStringLiteral("  %1: %2 %3").arg(thing->name(), type.name, valueText(value, type.unit))}};
}

QStringList aligned(const QVector<QStringList> &rows)
{
    QVector<int> widths;
    for (const QStringList &row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (int i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths.at(i), row.at(i).size());
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
    // In the order of ThingSetupStatus
    constexpr const char *texts[] = {"not set up", "set-up pending", "set up", "set-up failed"};
    return QLatin1String(texts[thing->setupStatus()]);
}

QString mainStates(const Thing *thing)
{
    const StateTypes types = thing->thingClass().stateTypes;
    QStringList texts;
    const auto add = [&](const StateType &type) {
        const QString value = valueText(thing->stateValue(type.id), type.unit);
        const bool isClear = type.type == QMetaType::QString || type.unit != Types::UnitNone;
        texts.append(isClear ? value : type.name + QLatin1Char(' ') + value);
    };
    for (const char *name : {"connected", "state", "power", "maxChargingCurrent", "currentPower"}) {
        const StateType type = types.findByName(QLatin1String(name));
        if (!type.id.isNull())
            add(type);
    }
    if (texts.isEmpty() && !types.isEmpty())
        add(types.constFirst());
    return texts.join(QStringLiteral(", "));
}

QStringList description(const Thing *thing, const Thing *parent)
{
    const ThingClass thingClass = thing->thingClass();
    QString setup = setupText(thing);
    if (!thing->setupDisplayMessage().isEmpty())
        setup += QStringLiteral(": ") + thing->setupDisplayMessage();
    const QVector<QStringList> facts{
        {QStringLiteral("name"),   thing->name()                                   },
        {QStringLiteral("id"),     idText(thing->id())                             },
        {QStringLiteral("class"),  thingClass.name                                 },
        {QStringLiteral("parent"), parent ? parent->name() : QStringLiteral("none")},
        {QStringLiteral("set-up"), setup                                           }
    };
    QVector<QStringList> values;
    for (const ParamType &type : thingClass.paramTypes)
        values.append(
            {QStringLiteral("parameter ") + type.name, valueText(thing->paramValue(type.id), type.unit)});
    for (const StateType &type : thingClass.stateTypes) {
        const State state = thing->state(type.id);
        values.append({QStringLiteral("state ") + type.name, valueText(state.value(), type.unit),
                       limitsText(state, type)});
    }
    return aligned(facts) + aligned(values);
}

QString errorText(const ThingJob *job)
{
    if (job->status() == Thing::ThingErrorNoError)
        return {};
    const QString text = job->displayMessage().isEmpty() ? errorName(job->status()) : job->displayMessage();
    const bool hasTimedOut = job->status() == Thing::ThingErrorTimeout;
    return hasTimedOut ? text + QLatin1String(" Warnings in the log may tell why.") : text;
}
