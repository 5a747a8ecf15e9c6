// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include <integrations/integrationplugin.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QLibrary>
#include <QMetaMethod>
#include <QPluginLoader>
#include <QtTest>

#include <dlfcn.h>

namespace {

using Texts = QStringList;

/*! The values of \a keys in \a object as JSON, "-" for an absent one. */
QString row(const QJsonObject &object, const Texts &keys)
{
    Texts cells;
    for (const QString &key : keys) {
        const QByteArray json = QJsonDocument(QJsonArray{object.value(key)}).toJson(QJsonDocument::Compact);
        cells.append(object.contains(key) ? QString::fromUtf8(json.mid(1, json.size() - 2)) : "-");
    }
    return cells.join(" | ");
}

Texts rows(const QJsonValue &array, const Texts &keys)
{
    Texts result;
    const QJsonArray entries = array.toArray();
    for (const QJsonValue &entry : entries)
        result.append(row(entry.toObject(), keys));
    return result;
}

QString capitalised(const QString &name)
{
    return name.at(0).toUpper() + name.mid(1);
}

/*! Every constant that a thing class gives, as "NAME ID". */
Texts constantsOf(const QJsonObject &thingClass)
{
    const QString name = thingClass["name"].toString();
    Texts result{name + "ThingClassId " + thingClass["id"].toString()};
    const auto add = [&result](const QString &constant, const QJsonValue &entry) {
        result.append(constant + ' ' + entry["id"].toString());
    };
    const auto forEach = [&thingClass](const QString &key, const auto &visit) {
        const QJsonArray entries = thingClass[key].toArray();
        for (const QJsonValue &entry : entries)
            visit(entry, capitalised(entry["name"].toString()));
    };
    forEach("paramTypes", [&](const QJsonValue &entry, const QString &param) {
        add(name + "Thing" + param + "ParamTypeId", entry);
    });
    forEach("discoveryParamTypes", [&](const QJsonValue &entry, const QString &param) {
        add(name + "Discovery" + param + "ParamTypeId", entry);
    });
    forEach("stateTypes", [&](const QJsonValue &entry, const QString &state) {
        add(name + state + "StateTypeId", entry);
        if (entry["writable"].toBool()) {
            add(name + state + "ActionTypeId", entry);
            add(name + state + "Action" + state + "ParamTypeId", entry);
        }
    });
    return result;
}

} // namespace

class TestCatalogue : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void versionOutlivesTheLibrary();
    void head();
    void gateway();
    void wallboxes_data();
    void wallboxes();
    void idsNeverChange();
    void constantsAreExported();
    void entryPoints();
    void metaObject();
    void generatorSaysWhatIsWrong_data();
    void generatorSaysWhatIsWrong();
    void generatorNoticesAFullDisk_data();
    void generatorNoticesAFullDisk();

private:
    QPluginLoader m_loader{VELA_PLUGIN_FILE};
    QJsonObject m_document;
    QJsonObject m_vendor;
    QJsonArray m_classes;
    Texts m_ids; // "NAME ID" of every constant
};

void TestCatalogue::initTestCase()
{
    m_document = m_loader.metaData()["MetaData"].toObject();
    m_vendor = m_document["vendors"].toArray().first().toObject();
    m_classes = m_vendor["thingClasses"].toArray();
    QFile file(QFINDTESTDATA("data/ids.txt"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    m_ids = QString(file.readAll()).split('\n', Qt::SkipEmptyParts);
}

/*! A loader may unload the library and print the version afterwards. First, while nothing else holds it. */
void TestCatalogue::versionOutlivesTheLibrary()
{
    QLibrary library(VELA_PLUGIN_FILE);
    using Version = QString (*)();
    const auto version = reinterpret_cast<Version>(library.resolve("libnymea_api_version"));
    QVERIFY(version);
    const QString text = version();
    QVERIFY(library.unload());
    QVERIFY(!dlopen(VELA_PLUGIN_FILE, RTLD_LAZY | RTLD_NOLOAD)); // really gone
    QCOMPARE(text, "7.4.0");
}

void TestCatalogue::head()
{
    QCOMPARE(m_loader.metaData()["IID"].toString(), "io.nymea.IntegrationPlugin");
    QCOMPARE(m_loader.metaData()["className"].toString(), "IntegrationPluginVela");
    QCOMPARE(row(m_document, {"name", "displayName"}), R"("vela" | "VELA")");
    QCOMPARE(rows(m_document["vendors"], {"name", "displayName"}), Texts(R"("vela" | "Tavensolis")"));
    QCOMPARE(m_classes.size(), 33);
}

void TestCatalogue::gateway()
{
    const QJsonObject gateway = m_classes.first().toObject();
    QCOMPARE(
        row(gateway, {"name", "displayName", "createMethods", "interfaces", "providedInterfaces"}),
        R"("vela" | "Tavensolis VELA" | ["discovery"] | ["gateway"] | ["evcharger","smartmeterconsumer"])");
    const Texts paramKeys{"name", "displayName", "type", "defaultValue", "minValue", "readOnly"};
    QCOMPARE(rows(gateway["discoveryParamTypes"], paramKeys),
             (Texts{R"("backendUrl" | "Backend URL" | "QString" | "" | - | -)",
                    R"("groupId" | "VELA Group" | "QString" | "" | - | -)",
                    R"("groupSecret" | "VELA Secret" | "QString" | "" | - | -)"}));
    QCOMPARE(rows(gateway["paramTypes"], paramKeys),
             Texts(R"("backendUrl" | "Backend URL" | "QString" | "" | - | -)"));
    QCOMPARE(rows(gateway["stateTypes"],
                  {"name", "displayName", "displayNameEvent", "type", "defaultValue", "cached", "writable"}),
             Texts(R"("connected" | "Connected" | "Connected changed" | "bool" | false | false | -)"));
}

void TestCatalogue::wallboxes_data()
{
    QTest::addColumn<int>("number");
    for (int number = 1; number <= 32; ++number)
        QTest::addRow("wallbox%d", number) << number;
}

void TestCatalogue::wallboxes()
{
    QFETCH(int, number);
    const QJsonObject wallbox = m_classes.at(number).toObject();
    QCOMPARE(row(wallbox,
                 {"name", "displayName", "createMethods", "interfaces", "providedInterfaces",
                  "discoveryParamTypes"}),
             QString(R"("wallbox%1" | "Wallbox %1" | ["auto"] | ["evcharger","smartmeterconsumer"] | - | -)")
                 .arg(number));
    QCOMPARE(rows(wallbox["paramTypes"],
                  {"name", "displayName", "type", "defaultValue", "minValue", "maxValue", "readOnly"}),
             (Texts{R"("infraID" | "Infrastructur ID" | "QString" | "" | - | - | true)",
                    R"("maxAllowedCurrent" | "Max allowed current" | "uint" | 32 | 0 | 32 | true)"}));
    const Texts states = rows(wallbox["stateTypes"],
                              {"name", "displayName", "type", "unit", "defaultValue", "minValue", "maxValue",
                               "cached", "writable"});
    const Texts expected{
        R"("connected" | "Connected" | "bool" | - | false | - | - | false | -)",
        R"("pluggedIn" | "Plugged in" | "bool" | - | false | - | - | false | -)",
        R"("charging" | "Charging" | "bool" | - | false | - | - | false | -)",
        R"("phaseCount" | "Connected phases" | "uint" | - | 1 | 0 | 3 | false | -)",
        R"("currentPower" | "Active power" | "double" | "Watt" | 0 | - | - | false | -)",
        R"("totalEnergyConsumed" | "Total consumed energy" | "double" | "KiloWattHour" | 0 | - | - | true | -)",
        R"("power" | "Charging enabled" | "bool" | - | false | - | - | - | true)",
        R"("maxChargingCurrent" | "Maximum charging current" | "uint" | "Ampere" | 16 | 6 | 32 | - | true)",
        R"("sessionEnergy" | "Session energy" | "double" | "KiloWattHour" | 0 | - | - | false | -)",
        R"("state" | "State" | "QString" | - | "Available" | - | - | false | -)",
        R"("currentPhaseA" | "Current Phase A" | "double" | "Ampere" | 0 | - | - | false | -)",
        R"("currentPhaseB" | "Current Phase B" | "double" | "Ampere" | 0 | - | - | false | -)",
        R"("currentPhaseC" | "Current Phase C" | "double" | "Ampere" | 0 | - | - | false | -)",
        R"("timestamp" | "Timestamp" | "int" | "UnixTime" | "1970-01-01 00:00:00" | - | - | true | -)"};
    QCOMPARE(states, expected);
    Texts labels = rows(wallbox["stateTypes"], {"displayNameEvent", "displayNameAction"});
    labels.removeAll("- | -");
    QCOMPARE(labels,
             (Texts{R"("Connected changed" | -)", R"(- | "Set charging enabled")",
                    R"(- | "Set maximum charging current")"}));
}

/*! Users' things are stored under these ids: data/ids.txt is not to be changed, only added to. */
void TestCatalogue::idsNeverChange()
{
    Texts constants{"pluginId " + m_document["id"].toString(), "velaVendorId " + m_vendor["id"].toString()};
    for (const QJsonValue &thingClass : qAsConst(m_classes))
        constants += constantsOf(thingClass.toObject());
    QCOMPARE(constants, m_ids);
    QCOMPARE(constants.size(), 680);

    QSet<QString> ids;
    for (const QString &constant : qAsConst(constants))
        ids.insert(constant.section(' ', 1));
    QCOMPARE(ids.size(), 552); // an action and its parameter share the state's
}

void TestCatalogue::constantsAreExported()
{
    Texts exported;
    for (const QString &line : qAsConst(m_ids)) {
        const QString name = line.section(' ', 0, 0);
        const auto *id =
            reinterpret_cast<const QUuid *>(QLibrary::resolve(VELA_PLUGIN_FILE, qPrintable(name)));
        exported.append(name + ' ' + (id ? id->toString(QUuid::WithoutBraces) : "is missing"));
    }
    QCOMPARE(exported, m_ids);
}

void TestCatalogue::entryPoints()
{
    QVERIFY(QLibrary::resolve(VELA_PLUGIN_FILE, "qt_plugin_query_metadata"));
    using Instance = QObject *(*)();
    const auto instance =
        reinterpret_cast<Instance>(QLibrary::resolve(VELA_PLUGIN_FILE, "qt_plugin_instance"));
    QVERIFY(instance);
    const QPointer<QObject> first = instance();
    QVERIFY(first);
    QCOMPARE(instance(), first.data());
    delete first;
    const QScopedPointer<QObject> second(instance()); // as for a daemon that starts again
    QVERIFY(second);
    QCOMPARE(instance(), second.data());
}

void TestCatalogue::metaObject()
{
    const QScopedPointer<QObject> plugin(m_loader.instance());
    QVERIFY(qobject_cast<IntegrationPlugin *>(plugin.data()));
    for (const char *name : {"IntegrationPluginVela", "IntegrationPlugin", "io.nymea.IntegrationPlugin"})
        QCOMPARE(plugin->qt_metacast(name), static_cast<void *>(plugin.data()));
    for (const char *name : {"NetworkHandler", static_cast<const char *>(nullptr)})
        QCOMPARE(plugin->qt_metacast(name), nullptr);

    const QMetaObject *meta = plugin->metaObject();
    QCOMPARE(meta->superClass(), &IntegrationPlugin::staticMetaObject);
    Texts signatures;
    for (int i = meta->methodOffset(); i < meta->methodCount(); ++i) {
        QCOMPARE(meta->method(i).methodType(), QMetaMethod::Signal);
        signatures.append(meta->method(i).methodSignature());
    }
    QCOMPARE(signatures, (Texts{"checkAutoCreateFinished()", "missingBootNotification()"}));
    QCOMPARE(meta->propertyCount(), meta->propertyOffset());
    QCOMPARE(meta->enumeratorCount(), meta->enumeratorOffset());
}

void TestCatalogue::generatorSaysWhatIsWrong_data()
{
    QTest::addColumn<QByteArray>("catalogue"); // null: there is no such file
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("complaint");
    QTest::addColumn<int>("status");
    const auto row = [](const char *name, const char *catalogue, const char *folder, const char *complaint,
                        int status) {
        QTest::newRow(name) << QByteArray(catalogue) << folder << complaint << status;
    };
    row("no arguments", nullptr, "", "usage: ", 2);
    row("no catalogue", nullptr, "out", "No such file", 1);
    row("not JSON", "{", "out", " at byte 1", 1);
    row("no folder", "{}", "none", "cannot be written", 1);
}

void TestCatalogue::generatorSaysWhatIsWrong()
{
    QFETCH(QByteArray, catalogue);
    QFETCH(QString, folder);
    const QTemporaryDir work;
    QVERIFY(QDir(work.path()).mkdir("out"));
    QFile input(work.filePath("catalogue.json"));
    if (!catalogue.isNull())
        QVERIFY(input.open(QIODevice::WriteOnly) && input.write(catalogue) > 0 && input.flush());
    QProcess generator;
    generator.start(VELA_CATALOGUE_GENERATOR,
                    folder.isEmpty() ? QStringList() : QStringList{input.fileName(), work.filePath(folder)});
    QVERIFY(generator.waitForFinished());
    QTEST(generator.exitCode(), "status");
    QFETCH(QString, complaint);
    const QString said = generator.readAllStandardError();
    QVERIFY2(said.contains(complaint), qPrintable(said));
    QVERIFY(QDir(work.filePath("out")).isEmpty());
}

void TestCatalogue::generatorNoticesAFullDisk_data()
{
    QTest::addColumn<QString>("catalogue");
    QTest::addColumn<QString>("file");
    const QString whole = QFINDTESTDATA("../plugin/catalogue/catalogue.json");
    const QString small = QFINDTESTDATA("data/smallcatalogue.json"); // written in one piece, at the end
    for (const char *file :
         {"integrationpluginvela.json", "plugininfo.h", "plugininfo.cpp", "wallboxbounds.h"}) {
        QTest::addRow("%s", file) << whole << file;
        QTest::addRow("small %s", file) << small << file;
    }
}

void TestCatalogue::generatorNoticesAFullDisk()
{
    QFETCH(QString, catalogue);
    QFETCH(QString, file);
    const QTemporaryDir work;
    QVERIFY(QFile::link("/dev/full", work.filePath(file)));
    QProcess generator;
    generator.start(VELA_CATALOGUE_GENERATOR, {catalogue, work.path()});
    QVERIFY(generator.waitForFinished());
    QCOMPARE(generator.exitCode(), 1);
    QCOMPARE(QString(generator.readAllStandardError()),
             work.filePath(file) + ": cannot be written: No space left on device\n");
}

QTEST_GUILESS_MAIN(TestCatalogue)
#include "tst_catalogue.moc"
