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

QString upperFirst(const QString &name)
{
    return name.at(0).toUpper() + name.mid(1);
}

class Generator
{
public:
    explicit Generator(const QJsonObject &catalogue);

    QByteArray metadata() const { return QJsonDocument(m_metadata).toJson(); }
    QByteArray header() const;
    QByteArray source() const;
    QByteArray bounds() const;

private:
    QString newId(const QString &path) const;
    QJsonObject thingClass(QJsonObject description);
    QJsonArray params(const QJsonArray &descriptions, const QString &className, const QString &kind);
    QJsonArray states(const QJsonArray &descriptions, const QString &className);
    void addConstant(const QString &type, const QString &name, const QString &id)
    {
        m_constants.append({type, name, id});
    }

    const QUuid m_namespace;
    const int m_wallboxCount;
    QJsonObject m_metadata;
    QVector<Constant> m_constants;
    QMap<QString, int> m_bounds; // of the states that can be set, by the name of their constant
};

Generator::Generator(const QJsonObject &catalogue)
    : m_namespace(catalogue[QLatin1String("uuidNamespace")].toString())
    , m_wallboxCount(catalogue[QLatin1String("wallboxCount")].toInt())
{
    m_metadata = catalogue[QLatin1String("plugin")].toObject();
    const QString pluginId = newId(QStringLiteral("plugin"));
    m_metadata[QLatin1String("id")] = pluginId;
    addConstant(QStringLiteral("PluginId"), QStringLiteral("pluginId"), pluginId);

    QJsonObject vendor = catalogue[QLatin1String("vendor")].toObject();
    const QString vendorName = vendor[QLatin1String("name")].toString();
    const QString vendorId = newId(QStringLiteral("vendor/") + vendorName);
    vendor[QLatin1String("id")] = vendorId;
    addConstant(QStringLiteral("VendorId"), vendorName + QLatin1String("VendorId"), vendorId);

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

/*! The id of the item at \a path. Daemons store things under these ids, so neither the namespace nor the
    path of an item may ever change. */
QString Generator::newId(const QString &path) const
{
    return QUuid::createUuidV5(m_namespace, path).toString(QUuid::WithoutBraces);
}

QJsonObject Generator::thingClass(QJsonObject description)
{
    const QString name = description[QLatin1String("name")].toString();
    const QString id = newId(QStringLiteral("thingClass/") + name);
    description[QLatin1String("id")] = id;
    addConstant(QStringLiteral("ThingClassId"), name + QLatin1String("ThingClassId"), id);
    const auto replace = [&description](QLatin1String key, const QJsonArray &items) {
        if (!items.isEmpty())
            description[key] = items;
    };
    const QLatin1String paramTypes("paramTypes");
    const QLatin1String discoveryParamTypes("discoveryParamTypes");
    const QLatin1String stateTypes("stateTypes");
    replace(paramTypes, params(description.value(paramTypes).toArray(), name, QStringLiteral("Thing")));
    replace(discoveryParamTypes,
            params(description.value(discoveryParamTypes).toArray(), name, QStringLiteral("Discovery")));
    replace(stateTypes, states(description.value(stateTypes).toArray(), name));
    return description;
}

QJsonArray Generator::params(const QJsonArray &descriptions, const QString &className, const QString &kind)
{
    QJsonArray result;
    for (const QJsonValue &description : descriptions) {
        QJsonObject param = description.toObject();
        const QString name = param[QLatin1String("name")].toString();
        const QString id = newId(QStringLiteral("thingClass/%1/param%2/%3").arg(className, kind, name));
        param[QLatin1String("id")] = id;
        addConstant(QStringLiteral("ParamTypeId"),
                    className + kind + upperFirst(name) + QLatin1String("ParamTypeId"), id);
        result.append(param);
    }
    return result;
}

QJsonArray Generator::states(const QJsonArray &descriptions, const QString &className)
{
    QJsonArray result;
    for (const QJsonValue &description : descriptions) {
        QJsonObject state = description.toObject();
        const QString name = state[QLatin1String("name")].toString();
        const QString id = newId(QStringLiteral("thingClass/%1/state/%2").arg(className, name));
        const QString stem = className + upperFirst(name);
        state[QLatin1String("id")] = id;
        addConstant(QStringLiteral("StateTypeId"), stem + QLatin1String("StateTypeId"), id);
        if (state.value(QLatin1String("writable")).toBool()) {
            addConstant(QStringLiteral("ActionTypeId"), stem + QLatin1String("ActionTypeId"), id);
            addConstant(QStringLiteral("ParamTypeId"),
                        stem + QLatin1String("Action") + upperFirst(name) + QLatin1String("ParamTypeId"), id);
            for (const QString &bound : {QStringLiteral("minValue"), QStringLiteral("maxValue")}) {
                if (state.contains(bound))
                    m_bounds.insert(name + upperFirst(bound), state.value(bound).toInt());
            }
        }
        result.append(state);
    }
    return result;
}

QByteArray Generator::header() const
{
    QByteArray text;
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
    out.flush();
    return text;
}

QByteArray Generator::source() const
{
    QByteArray text;
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
    out.flush();
    return text;
}

QByteArray Generator::bounds() const
{
    QByteArray text =
        "// Generated from catalogue.json: the number of wallbox classes, and the bounds of the states that\n"
        "// can be set, in their units.\n\n#pragma once\n\n";
    text += "constexpr int wallboxCount = " + QByteArray::number(m_wallboxCount) + ";\n";
    for (auto it = m_bounds.begin(); it != m_bounds.end(); ++it)
        text += "constexpr int " + it.key().toLatin1() + " = " + QByteArray::number(it.value()) + ";\n";
    return text;
}

bool write(const QString &fileName, const QByteArray &content)
{
    QFile file(fileName);
    // If the disk is full, writing a short text fails only when it is flushed.
    if (file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.flush())
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
