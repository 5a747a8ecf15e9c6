// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

// Metadata documents of plugins, and the things that they describe.

#include "fuzzing.h"

#include <integrations/pluginmetadata.h>
#include <integrations/thing.h>

#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>

namespace {

/*! Ids and values of one class of a valid document; a class's state and its action share their id. */
void checkClass(const ThingClass &thingClass, QSet<QUuid> *ids)
{
    const auto isFresh = [ids](const QUuid &id) {
        const int before = ids->size();
        ids->insert(id);
        return !id.isNull() && ids->size() > before;
    };
    require(isFresh(thingClass.id), "a class's id is its own");
    const QVector<ParamType> paramTypes = thingClass.paramTypes + thingClass.discoveryParamTypes;
    for (const ParamType &type : paramTypes)
        require(isFresh(type.id) && !type.name.isEmpty(), "a parameter has an id of its own and a name");
    int writable = 0;
    for (const StateType &type : thingClass.stateTypes) {
        require(isFresh(type.id) && !type.name.isEmpty(), "a state has an id of its own and a name");
        for (const QVariant &value : {type.defaultValue, type.minValue, type.maxValue})
            require(!value.isValid() || value.userType() == type.type, "values are of their state's type");
        writable += type.writable ? 1 : 0;
    }
    require(thingClass.actionTypes.size() == writable, "each writable state has its action");
}

/*! A thing of the class holds what its types say, even if the document is invalid. */
void useThing(const ThingClass &thingClass)
{
    Thing thing(thingClass);
    for (const ParamType &type : thingClass.paramTypes)
        thing.setParamValue(type.id, type.maxValue);
    for (const StateType &type : thingClass.stateTypes) {
        thing.setStateMaxValue(type.id, type.minValue);
        thing.setStateValue(type.name, "17");
        thing.setStateValue(type.name, type.defaultValue);
    }
    require(thing.params().size() == thingClass.paramTypes.size(), "each parameter type has its parameter");
    require(thing.states().size() == thingClass.stateTypes.size(), "each state type has its state");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const PluginMetadata metadata(QJsonDocument::fromJson(inputBytes(data, size)).object());
    QSet<QUuid> ids;
    const ThingClasses thingClasses = metadata.thingClasses();
    for (const ThingClass &thingClass : thingClasses) {
        if (metadata.isValid())
            checkClass(thingClass, &ids);
        useThing(thingClass);
    }
    return 0;
}
