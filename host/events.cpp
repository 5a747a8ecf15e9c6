// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "events.h"

#include "humantext.h"
#include "thingjson.h"
#include "values.h"

Message thingAddedEvent(const Thing *thing)
{
    const QJsonObject json{
        {QStringLiteral("event"), QStringLiteral("thingAdded")},
        {QStringLiteral("thing"), thingObject(thing)          }
    };
    return {json,
            {QStringLiteral("+ %1 has been added (%2)").arg(thing->name(), thing->thingClass().displayName)}};
}

Message thingRemovedEvent(const Thing *thing)
{
    const QJsonObject json{
        {QStringLiteral("event"), QStringLiteral("thingRemoved")},
        {QStringLiteral("thing"), thingObject(thing)            }
    };
    return {json, {QStringLiteral("- %1 has been removed").arg(thing->name())}};
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
