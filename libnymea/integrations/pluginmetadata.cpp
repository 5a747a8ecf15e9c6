// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "integrations/pluginmetadata.h"

#include <QJsonArray>
#include <QMetaEnum>
#include <QSet>

namespace {

/*! Reads the members of one metadata document and collects the errors in it. */
class Reader
{
public:
    QStringList errors;

    QUuid id(const QJsonObject &object, const QString &where);
    QString text(const QJsonObject &object, const char *key, const QString &where);
    ParamType paramType(const QJsonObject &object, const QString &where);
    ParamTypes paramTypes(const QJsonValue &array, const QString &where);
    StateType stateType(const QJsonObject &object, const QString &where);
    ThingClass thingClass(const QJsonObject &object, const VendorId &vendorId);

private:
    QMetaType::Type type(const QJsonObject &object, const QString &where);
    QVariant value(const QJsonObject &object, const char *key, QMetaType::Type type, const QString &where);
    Types::Unit unit(const QJsonObject &object, const QString &where);
    void addError(const QString &where, const QString &what);

    QSet<QUuid> m_ids;
};

void Reader::addError(const QString &where, const QString &what)
{
    errors.append(QStringLiteral("%1: %2").arg(where, what));
}

QUuid Reader::id(const QJsonObject &object, const QString &where)
{
    const QUuid id(object.value(QLatin1String("id")).toString());
    if (id.isNull())
        addError(where, QStringLiteral("\"id\" is not a UUID"));
    else if (m_ids.contains(id))
        addError(where, QStringLiteral("\"id\" %1 is used twice").arg(id.toString()));
    m_ids.insert(id);
    return id;
}

QString Reader::text(const QJsonObject &object, const char *key, const QString &where)
{
    QString text = object.value(QLatin1String(key)).toString();
    if (text.isEmpty())
        addError(where, QStringLiteral("\"%1\" is missing, empty or not a string").arg(QLatin1String(key)));
    return text;
}

QMetaType::Type Reader::type(const QJsonObject &object, const QString &where)
{
    const QString name = text(object, "type", where);
    const auto type = static_cast<QMetaType::Type>(QMetaType::type(name.toLatin1()));
    switch (type) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Double:
    case QMetaType::QString:
        return type;
    default:
        addError(where, QStringLiteral("type \"%1\" is not supported").arg(name));
        return QMetaType::UnknownType;
    }
}

QVariant Reader::value(const QJsonObject &object, const char *key, QMetaType::Type type, const QString &where)
{
    const QJsonValue json = object.value(QLatin1String(key));
    if (json.isUndefined())
        return QVariant();
    QVariant value = json.toVariant();
    // A text that is not a number becomes the default of the type, for example a date given for a Unix time.
    if (!value.convert(type) && !json.isString())
        addError(where, QStringLiteral("\"%1\" does not fit the type").arg(QLatin1String(key)));
    return value;
}

Types::Unit Reader::unit(const QJsonObject &object, const QString &where)
{
    const QString name = object.value(QLatin1String("unit")).toString(QStringLiteral("None"));
    bool known = false;
    const int unit =
        QMetaEnum::fromType<Types::Unit>().keyToValue(("Unit" + name.toLatin1()).constData(), &known);
    if (!known)
        addError(where, QStringLiteral("unit \"%1\" is not known").arg(name));
    return known ? static_cast<Types::Unit>(unit) : Types::UnitNone;
}

ParamType Reader::paramType(const QJsonObject &object, const QString &where)
{
    ParamType result;
    result.name = text(object, "name", where);
    const QString here = where + QLatin1Char('.') + result.name;
    result.id = id(object, here);
    result.displayName = text(object, "displayName", here);
    result.type = type(object, here);
    result.defaultValue = value(object, "defaultValue", result.type, here);
    result.minValue = value(object, "minValue", result.type, here);
    result.maxValue = value(object, "maxValue", result.type, here);
    result.unit = unit(object, here);
    result.readOnly = object.value(QLatin1String("readOnly")).toBool();
    return result;
}

ParamTypes Reader::paramTypes(const QJsonValue &array, const QString &where)
{
    ParamTypes result;
    const QJsonArray entries = array.toArray();
    for (const QJsonValue &entry : entries)
        result.append(paramType(entry.toObject(), where));
    return result;
}

StateType Reader::stateType(const QJsonObject &object, const QString &where)
{
    const ParamType common = paramType(object, where);
    StateType result;
    result.id = StateTypeId(common.id);
    result.name = common.name;
    result.displayName = common.displayName;
    result.displayNameEvent = object.value(QLatin1String("displayNameEvent")).toString();
    result.displayNameAction = object.value(QLatin1String("displayNameAction")).toString();
    result.type = common.type;
    result.defaultValue = common.defaultValue;
    result.minValue = common.minValue;
    result.maxValue = common.maxValue;
    result.unit = common.unit;
    result.cached = object.value(QLatin1String("cached")).toBool(true);
    result.writable = object.value(QLatin1String("writable")).toBool();
    return result;
}

/*! The action that sets a writable state. The action and its only parameter have the state's id and name. */
ActionType actionTypeFor(const StateType &stateType)
{
    ParamType paramType;
    paramType.id = ParamTypeId(stateType.id);
    paramType.name = stateType.name;
    paramType.displayName = stateType.displayName;
    paramType.type = stateType.type;
    paramType.defaultValue = stateType.defaultValue;
    paramType.minValue = stateType.minValue;
    paramType.maxValue = stateType.maxValue;
    paramType.unit = stateType.unit;

    ActionType result;
    result.id = ActionTypeId(stateType.id);
    result.name = stateType.name;
    result.displayName = stateType.displayNameAction;
    result.paramTypes.append(paramType);
    return result;
}

QStringList texts(const QJsonValue &array)
{
    QStringList result;
    const QJsonArray entries = array.toArray();
    for (const QJsonValue &entry : entries)
        result.append(entry.toString());
    return result;
}

ThingClass Reader::thingClass(const QJsonObject &object, const VendorId &vendorId)
{
    ThingClass result;
    result.name = text(object, "name", QStringLiteral("thing class"));
    result.id = id(object, result.name);
    result.vendorId = vendorId;
    result.displayName = text(object, "displayName", result.name);
    result.createMethods = texts(object.value(QLatin1String("createMethods")));
    result.interfaces = texts(object.value(QLatin1String("interfaces")));
    result.providedInterfaces = texts(object.value(QLatin1String("providedInterfaces")));
    result.paramTypes = paramTypes(object.value(QLatin1String("paramTypes")), result.name);
    result.discoveryParamTypes = paramTypes(object.value(QLatin1String("discoveryParamTypes")), result.name);
    const QJsonArray stateTypes = object.value(QLatin1String("stateTypes")).toArray();
    for (const QJsonValue &entry : stateTypes) {
        result.stateTypes.append(stateType(entry.toObject(), result.name));
        if (result.stateTypes.constLast().writable)
            result.actionTypes.append(actionTypeFor(result.stateTypes.constLast()));
    }
    return result;
}

} // namespace

PluginMetadata::PluginMetadata(const QJsonObject &document)
{
    Reader reader;
    const QString where = QStringLiteral("plugin");
    reader.text(document, "name", where);
    reader.text(document, "displayName", where);
    m_pluginId = reader.id(document, where);
    const QJsonArray vendors = document.value(QLatin1String("vendors")).toArray();
    for (const QJsonValue &entry : vendors) {
        const QJsonObject vendor = entry.toObject();
        const QString name = reader.text(vendor, "name", QStringLiteral("vendor"));
        const VendorId id = reader.id(vendor, name);
        reader.text(vendor, "displayName", name);
        const QJsonArray thingClasses = vendor.value(QLatin1String("thingClasses")).toArray();
        for (const QJsonValue &thingClass : thingClasses)
            m_thingClasses.append(reader.thingClass(thingClass.toObject(), id));
    }
    m_validationErrors = reader.errors;
}
