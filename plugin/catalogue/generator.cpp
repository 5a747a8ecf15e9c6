// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

// Generates the plugin's metadata document and the declarations and definitions of the id constants from
// catalogue.json. The catalogue describes one wallbox class, from which wallboxCount classes are made.

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTextStream>
#include <QUuid>

namespace {

struct Constant
{
    QString type;
    QString name;
    QString id;
};

/*! What a thing class has several of. */
constexpr struct ItemKind
{
    const char *key;         // in the description of the thing class
    const char *pathElement; // for newId()
    const char *prefix;      // of the constants' names, after the name of the thing class
    const char *type;        // of the constants
} itemKinds[] = {
    {"paramTypes",          "paramThing",     "Thing",     "ParamTypeId"},
    {"discoveryParamTypes", "paramDiscovery", "Discovery", "ParamTypeId"},
    {"stateTypes",          "state",          "",          "StateTypeId"},
};

QString upperFirst(const QString &name)
{
    return name.at(0).toUpper() + name.mid(1);
}

class Generator
{
public:
    explicit Generator(const QJsonObject &catalogue);

    QString metadata() const { return QString::fromUtf8(QJsonDocument(m_metadata).toJson()); }
    QString header() const;
    QString source() const;
    QString bounds() const;

private:
    QString newId(const QString &type, const QString &constant, const QString &path);
    QJsonObject thingClass(QJsonObject description);
    QJsonArray items(const QJsonArray &descriptions, const QString &className, const ItemKind &kind);

    const QUuid m_namespace;
    const int m_wallboxCount;
    QJsonObject m_metadata;
    QVector<Constant> m_constants;
    QMap<QString, int> m_bounds; // of the states that can be set and of the number of wallboxes, by constant
};

Generator::Generator(const QJsonObject &catalogue)
    : m_namespace(catalogue[QLatin1String("uuidNamespace")].toString())
    , m_wallboxCount(catalogue[QLatin1String("wallboxCount")].toInt())
{
    m_bounds.insert(QStringLiteral("wallboxCount"), m_wallboxCount);
    m_metadata = catalogue[QLatin1String("plugin")].toObject();
    m_metadata[QLatin1String("id")] =
        newId(QStringLiteral("PluginId"), QStringLiteral("pluginId"), QStringLiteral("plugin"));

    QJsonObject vendor = catalogue[QLatin1String("vendor")].toObject();
    const QString vendorName = vendor[QLatin1String("name")].toString();
    vendor[QLatin1String("id")] = newId(QStringLiteral("VendorId"), vendorName + QLatin1String("VendorId"),
                                        QStringLiteral("vendor/") + vendorName);

    QJsonArray thingClasses{thingClass(catalogue[QLatin1String("gateway")].toObject())};
    for (int number = 1; number <= m_wallboxCount; ++number) {
        QJsonObject wallbox = catalogue[QLatin1String("wallbox")].toObject();
        for (const QLatin1String key : {QLatin1String("name"), QLatin1String("displayName")})
            wallbox[key] = wallbox[key].toString().arg(number);
        thingClasses.append(thingClass(wallbox));
    }
    vendor[QLatin1String("thingClasses")] = thingClasses;
    m_metadata[QLatin1String("vendors")] = QJsonArray{vendor};
}

/*! The id of the item at \a path, which gets a \a constant of that \a type. Daemons store things under these
    ids, so neither the namespace nor the path of an item may ever change. */
QString Generator::newId(const QString &type, const QString &constant, const QString &path)
{
    QString id = QUuid::createUuidV5(m_namespace, path).toString(QUuid::WithoutBraces);
    m_constants.append({type, constant, id});
    return id;
}

QJsonObject Generator::thingClass(QJsonObject description)
{
    const QString name = description[QLatin1String("name")].toString();
    description[QLatin1String("id")] =
        newId(QStringLiteral("ThingClassId"), name + QLatin1String("ThingClassId"),
              QStringLiteral("thingClass/") + name);
    for (const ItemKind &kind : itemKinds) {
        const QLatin1String key(kind.key);
        if (description.contains(key))
            description[key] = items(description.value(key).toArray(), name, kind);
    }
    return description;
}

/*! The \a descriptions of a thing class's items with their ids. */
QJsonArray Generator::items(const QJsonArray &descriptions, const QString &className, const ItemKind &kind)
{
    QJsonArray result;
    for (const QJsonValue &description : descriptions) {
        QJsonObject item = description.toObject();
        const QString name = item[QLatin1String("name")].toString();
        const QString stem = className + QLatin1String(kind.prefix) + upperFirst(name);
        const QString id = newId(
            QLatin1String(kind.type), stem + QLatin1String(kind.type),
            QStringLiteral("thingClass/%1/%2/%3").arg(className, QLatin1String(kind.pathElement), name));
        item[QLatin1String("id")] = id;
        if (item.value(QLatin1String("writable")).toBool()) {
            const QString param = stem + QLatin1String("Action") + upperFirst(name);
            m_constants.append({QStringLiteral("ActionTypeId"), stem + QLatin1String("ActionTypeId"), id});
            m_constants.append({QStringLiteral("ParamTypeId"), param + QLatin1String("ParamTypeId"), id});
            for (const QString &bound : {QStringLiteral("minValue"), QStringLiteral("maxValue")}) {
                if (item.contains(bound))
                    m_bounds.insert(name + upperFirst(bound), item.value(bound).toInt());
            }
        }
        result.append(item);
    }
    return result;
}

QString Generator::header() const
{
    QString text;
    QTextStream out(&text);
    out << "// Generated from catalogue.json: the ids of everything in the plugin's metadata.\n\n"
           "#ifndef PLUGININFO_H\n#define PLUGININFO_H\n\n#include <typeutils.h>\n\n#include <array>\n\n";
    for (const Constant &constant : m_constants)
        out << "extern Q_DECL_EXPORT const " << constant.type << ' ' << constant.name << ";\n";
    out << "\n/*! One of the interchangeable wallbox classes with its own parameter types. */\n"
           "struct WallboxClass {\n    ThingClassId thingClassId;\n    ParamTypeId infraIdParamTypeId;\n"
           "    ParamTypeId maxAllowedCurrentParamTypeId;\n};\n\n/*! In the order of their numbers. */\n"
        << "extern const std::array<WallboxClass, " << m_wallboxCount
        << "> wallboxClasses;\n\n#endif // PLUGININFO_H\n";
    return text;
}

QString Generator::source() const
{
    QString text;
    QTextStream out(&text);
    out << "// Generated from catalogue.json.\n\n#include \"plugininfo.h\"\n\n";
    for (const Constant &constant : m_constants)
        out << "const " << constant.type << ' ' << constant.name << "(QUuid(\"{" << constant.id << "}\"));\n";
    out << "\n// Below the constants, which this copies while the library is loaded.\n"
        << "const std::array<WallboxClass, " << m_wallboxCount << "> wallboxClasses { {\n";
    for (int number = 1; number <= m_wallboxCount; ++number)
        out << QStringLiteral("    { wallbox%1ThingClassId, wallbox%1ThingInfraIDParamTypeId, "
                              "wallbox%1ThingMaxAllowedCurrentParamTypeId },\n")
                   .arg(number);
    out << "} };\n";
    return text;
}

QString Generator::bounds() const
{
    QString text = QStringLiteral(
        "// Generated from catalogue.json: the number of wallbox classes, and the bounds of the "
        "states that\n// can be set, in their units.\n\n#pragma once\n\n");
    for (auto it = m_bounds.begin(); it != m_bounds.end(); ++it)
        text += QStringLiteral("constexpr int %1 = %2;\n").arg(it.key()).arg(it.value());
    return text;
}

bool write(const QString &fileName, const QString &content)
{
    QFile file(fileName);
    const QByteArray bytes = content.toUtf8();
    // If the disk is full, writing a short text fails only when it is flushed.
    if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush())
        return true;
    QTextStream(stderr) << fileName << ": cannot be written: " << file.errorString() << '\n';
    return false;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    QTextStream err(stderr);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 3) {
        err << "usage: vela-catalogue CATALOGUE.json OUTPUT-FOLDER\n";
        return 2;
    }
    QFile input(arguments.at(1));
    if (!input.open(QIODevice::ReadOnly)) {
        err << input.fileName() << ": " << input.errorString() << '\n';
        return 1;
    }
    QJsonParseError error;
    const QJsonDocument catalogue = QJsonDocument::fromJson(input.readAll(), &error);
    if (!catalogue.isObject()) {
        err << input.fileName() << ": " << error.errorString() << " at byte " << error.offset << '\n';
        return 1;
    }
    const Generator generator(catalogue.object());
    const QDir folder(arguments.at(2));
    const bool written =
        write(folder.filePath(QStringLiteral("integrationpluginvela.json")), generator.metadata())
        && write(folder.filePath(QStringLiteral("plugininfo.h")), generator.header())
        && write(folder.filePath(QStringLiteral("plugininfo.cpp")), generator.source())
        && write(folder.filePath(QStringLiteral("wallboxbounds.h")), generator.bounds());
    return written ? 0 : 1;
}
