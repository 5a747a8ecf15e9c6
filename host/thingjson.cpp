// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "thingjson.h"

#include "values.h"

#include <QJsonArray>
#include <QVariant>

#include <type_traits>

namespace {

QJsonObject paramsObject(const ParamList &params, const ParamTypes &types)
{
    QJsonObject result;
    for (const Param &param : params)
        result.insert(types.findById(param.paramTypeId()).name, QJsonValue::fromVariant(param.value()));
    return result;
}

/*! Parameter types or state types. */
template <typename Types> QJsonArray typesArray(const Types &types)
{
    QJsonArray result;
    for (const auto &type : types) {
        QJsonObject object{
            {QStringLiteral("name"),         type.name                                    },
            {QStringLiteral("displayName"),  type.displayName                             },
            {QStringLiteral("type"),         QLatin1String(QMetaType::typeName(type.type))},
            {QStringLiteral("defaultValue"), QJsonValue::fromVariant(type.defaultValue)   }
        };
        if (type.minValue.isValid())
            object.insert(QStringLiteral("minValue"), QJsonValue::fromVariant(type.minValue));
        if (type.maxValue.isValid())
            object.insert(QStringLiteral("maxValue"), QJsonValue::fromVariant(type.maxValue));
        if constexpr (std::is_same_v<Types, StateTypes>)
            object.insert(QStringLiteral("writable"), type.writable);
        result.append(object);
    }
    return result;
}

} // namespace

QJsonValue idValue(const QUuid &id)
{
    return id.isNull() ? QJsonValue() : QJsonValue(idText(id));
}

QString errorName(Thing::ThingError error)
{
    return QVariant::fromValue(error).toString();
}

QJsonObject thingObject(const Thing *thing)
{
    const ThingClass thingClass = thing->thingClass();
    QJsonObject states;
    for (const StateType &type : thingClass.stateTypes)
        states.insert(type.name, QJsonValue::fromVariant(thing->stateValue(type.id)));
    const QJsonObject params = paramsObject(thing->params(), thingClass.paramTypes);
    return {
        {QStringLiteral("id"),          idValue(thing->id())                                },
        {QStringLiteral("name"),        thing->name()                                       },
        {QStringLiteral("class"),       thingClass.name                                     },
        {QStringLiteral("parentId"),    idValue(thing->parentId())                          },
        {QStringLiteral("setupStatus"), QVariant::fromValue(thing->setupStatus()).toString()},
        {QStringLiteral("params"),      params                                              },
        {QStringLiteral("states"),      states                                              }
    };
}

QJsonObject classObject(const ThingClass &thingClass)
{
    return {
        {QStringLiteral("id"),              idValue(thingClass.id)                              },
        {QStringLiteral("name"),            thingClass.name                                     },
        {QStringLiteral("displayName"),     thingClass.displayName                              },
        {QStringLiteral("createMethods"),   QJsonArray::fromStringList(thingClass.createMethods)},
        {QStringLiteral("interfaces"),      QJsonArray::fromStringList(thingClass.interfaces)   },
        {QStringLiteral("discoveryParams"), typesArray(thingClass.discoveryParamTypes)          },
        {QStringLiteral("params"),          typesArray(thingClass.paramTypes)                   },
        {QStringLiteral("states"),          typesArray(thingClass.stateTypes)                   }
    };
}

QJsonObject offerObject(const ThingDescriptor &offer, const ThingClass &thingClass)
{
    const QJsonObject params = paramsObject(offer.params(), thingClass.paramTypes);
    return {
        {QStringLiteral("title"),       offer.title()           },
        {QStringLiteral("description"), offer.description()     },
        {QStringLiteral("class"),       thingClass.name         },
        {QStringLiteral("thingId"),     idValue(offer.thingId())},
        {QStringLiteral("params"),      params                  }
    };
}
