// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "jsonoutput.h"

#include "printable.h"

#include <QJsonArray>

#include <cstdio>

namespace {

void write(const QJsonObject &object)
{
    const QByteArray line = printableJson(object) + '\n';
    std::fwrite(line.constData(), 1, static_cast<size_t>(line.size()), stdout);
    std::fflush(stdout);
}

QJsonValue idValue(const QUuid &id)
{
    return id.isNull() ? QJsonValue() : QJsonValue(id.toString(QUuid::WithoutBraces));
}

QJsonObject paramsObject(const ParamList &params, const ParamTypes &types)
{
    QJsonObject result;
    for (const Param &param : params)
        result.insert(types.findById(param.paramTypeId()).name, QJsonValue::fromVariant(param.value()));
    return result;
}

QJsonObject thingObject(const Thing *thing)
{
    QJsonObject states;
    const StateTypes stateTypes = thing->thingClass().stateTypes;
    for (const StateType &type : stateTypes)
        states.insert(type.name, QJsonValue::fromVariant(thing->stateValue(type.id)));

    QJsonObject result;
    result[QLatin1String("id")] = idValue(thing->id());
    result[QLatin1String("name")] = thing->name();
    result[QLatin1String("class")] = thing->thingClass().name;
    result[QLatin1String("parentId")] = idValue(thing->parentId());
    result[QLatin1String("setupStatus")] = setupStatusName(thing->setupStatus());
    result[QLatin1String("params")] = paramsObject(thing->params(), thing->thingClass().paramTypes);
    result[QLatin1String("states")] = states;
    return result;
}

template <typename Type> QJsonObject typeObject(const Type &type)
{
    QJsonObject result;
    result[QLatin1String("name")] = type.name;
    result[QLatin1String("displayName")] = type.displayName;
    result[QLatin1String("type")] = QLatin1String(QMetaType::typeName(type.type));
    result[QLatin1String("defaultValue")] = QJsonValue::fromVariant(type.defaultValue);
    if (type.minValue.isValid())
        result[QLatin1String("minValue")] = QJsonValue::fromVariant(type.minValue);
    if (type.maxValue.isValid())
        result[QLatin1String("maxValue")] = QJsonValue::fromVariant(type.maxValue);
    return result;
}

QJsonArray paramTypesArray(const ParamTypes &types)
{
    QJsonArray result;
    for (const ParamType &type : types)
        result.append(typeObject(type));
    return result;
}

QJsonArray stateTypesArray(const StateTypes &types)
{
    QJsonArray result;
    for (const StateType &type : types) {
        QJsonObject object = typeObject(type);
        object[QLatin1String("writable")] = type.writable;
        result.append(object);
    }
    return result;
}

QJsonObject classObject(const ThingClass &thingClass)
{
    QJsonObject result;
    result[QLatin1String("id")] = idValue(thingClass.id);
    result[QLatin1String("name")] = thingClass.name;
    result[QLatin1String("displayName")] = thingClass.displayName;
    result[QLatin1String("createMethods")] = QJsonArray::fromStringList(thingClass.createMethods);
    result[QLatin1String("interfaces")] = QJsonArray::fromStringList(thingClass.interfaces);
    result[QLatin1String("discoveryParams")] = paramTypesArray(thingClass.discoveryParamTypes);
    result[QLatin1String("params")] = paramTypesArray(thingClass.paramTypes);
    result[QLatin1String("states")] = stateTypesArray(thingClass.stateTypes);
    return result;
}

QJsonObject offerObject(const ThingDescriptor &offer, const ThingClass &thingClass)
{
    QJsonObject result;
    result[QLatin1String("title")] = offer.title();
    result[QLatin1String("description")] = offer.description();
    result[QLatin1String("class")] = thingClass.name;
    result[QLatin1String("thingId")] = idValue(offer.thingId());
    result[QLatin1String("params")] = paramsObject(offer.params(), thingClass.paramTypes);
    return result;
}

QJsonObject answer(const QString &command, const QString &error = QString())
{
    QJsonObject result;
    result[QLatin1String("answer")] = command;
    result[QLatin1String("ok")] = error.isEmpty();
    if (!error.isEmpty())
        result[QLatin1String("error")] = error;
    return result;
}

QJsonObject event(const char *name)
{
    QJsonObject result;
    result[QLatin1String("event")] = QLatin1String(name);
    return result;
}

/*! The commands that run a job: all their answers have the same members, also when no job began. */
QStringList jobCommands()
{
    return {QStringLiteral("discover"), QStringLiteral("add"), QStringLiteral("set"),
            QStringLiteral("setup")};
}

QJsonObject jobAnswer(const QString &command, const ThingJob *job)
{
    QJsonObject result = answer(command, errorText(job));
    result[QLatin1String("thingError")] = errorName(job->status());
    result[QLatin1String("message")] = job->displayMessage();
    return result;
}

void writeThings(const QString &command, const QJsonArray &things)
{
    QJsonObject object = answer(command);
    object[QLatin1String("things")] = things;
    write(object);
}

void writeThingEvent(const char *name, const Thing *thing)
{
    QJsonObject object = event(name);
    object[QLatin1String("thing")] = thingObject(thing);
    write(object);
}

} // namespace

void JsonOutput::refused(const QString &command, const QString &reason)
{
    QJsonObject object = answer(command, reason);
    if (jobCommands().contains(command)) {
        object[QLatin1String("thingError")] = errorName(Thing::ThingErrorInvalidParameter);
        object[QLatin1String("message")] = reason;
    }
    write(object);
}

void JsonOutput::done(const QString &command)
{
    write(answer(command));
}

void JsonOutput::help(const QVector<CommandHelp> &commands)
{
    QJsonArray entries;
    for (const CommandHelp &command : commands) {
        QJsonObject entry;
        entry[QLatin1String("usage")] = command.usage;
        entry[QLatin1String("summary")] = command.summary;
        entries.append(entry);
    }
    QJsonObject object = answer(QStringLiteral("help"));
    object[QLatin1String("commands")] = entries;
    write(object);
}

void JsonOutput::classes(const ThingClasses &classes)
{
    QJsonArray entries;
    for (const ThingClass &thingClass : classes)
        entries.append(classObject(thingClass));
    QJsonObject object = answer(QStringLiteral("classes"));
    object[QLatin1String("classes")] = entries;
    write(object);
}

void JsonOutput::discovered(const ThingDiscoveryInfo *info, const ThingClasses &classes)
{
    QJsonArray offers;
    const ThingDescriptors descriptors = info->thingDescriptors();
    for (const ThingDescriptor &descriptor : descriptors)
        offers.append(offerObject(descriptor, classes.findById(descriptor.thingClassId())));
    QJsonObject object = jobAnswer(QStringLiteral("discover"), info);
    object[QLatin1String("offers")] = offers;
    write(object);
}

void JsonOutput::jobDone(const QString &command, const ThingJob *job, const Thing *thing)
{
    QJsonObject object = jobAnswer(command, job);
    if (command == QLatin1String("add"))
        object[QLatin1String("thingId")] = idValue(thing ? thing->id() : ThingId());
    write(object);
}

void JsonOutput::things(const Things &things)
{
    QJsonArray entries;
    for (const Thing *thing : things)
        entries.append(thingObject(thing));
    writeThings(QStringLiteral("things"), entries);
}

void JsonOutput::thing(const Thing *thing, const Thing *)
{
    writeThings(QStringLiteral("show"), QJsonArray{thingObject(thing)});
}

void JsonOutput::thingAdded(const Thing *thing)
{
    writeThingEvent("thingAdded", thing);
}

void JsonOutput::thingRemoved(const Thing *thing)
{
    writeThingEvent("thingRemoved", thing);
}

void JsonOutput::setupFinished(const ThingSetupInfo *info)
{
    QJsonObject object = event("setupFinished");
    object[QLatin1String("thingId")] = idValue(info->thing()->id());
    object[QLatin1String("thingError")] = errorName(info->status());
    object[QLatin1String("message")] = info->displayMessage();
    write(object);
}

void JsonOutput::stateChanged(const Thing *thing, const StateType &stateType, const QVariant &value)
{
    QJsonObject object = event("stateChanged");
    object[QLatin1String("thingId")] = idValue(thing->id());
    object[QLatin1String("name")] = thing->name();
    object[QLatin1String("state")] = stateType.name;
    object[QLatin1String("value")] = QJsonValue::fromVariant(value);
    write(object);
}

void JsonOutput::watched(const Things &) { }
