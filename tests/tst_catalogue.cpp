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

/*! A line for the class itself, for each parameter and for each state. */
Texts linesOf(const QJsonObject &thingClass)
{
    const Texts names{"name", "displayName"};
    const Texts type{"type", "unit", "defaultValue", "minValue", "maxValue"};
    const Texts param = names + type + Texts{"readOnly"};
    return Texts(row(thingClass, names + Texts{"createMethods", "interfaces", "providedInterfaces"}))
        + rows(thingClass["discoveryParamTypes"], param) + rows(thingClass["paramTypes"], param)
        + rows(thingClass["stateTypes"],
               names + type + Texts{"cached", "writable", "displayNameEvent", "displayNameAction"});
}

Texts linesOf(const QString &fileName)
{
    QFile file(QFINDTESTDATA(fileName));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("Cannot read %s.", qPrintable(fileName));
    return QString(file.readAll()).split('\n', Qt::SkipEmptyParts);
}

QString capitalised(const QString &name)
{
    return name.at(0).toUpper() + name.mid(1);
}

/*! Every constant of a thing class, as "NAME ID". */
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
    void thingClasses();
    void idsNeverChange();
    void constantsAreExported();
    void entryPoints();
    void metaObject();

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
    m_ids = linesOf("data/ids.txt");
}

/*! A loader may unload the library and print the version afterwards. Tested first, while nothing else has
    loaded it. */
void TestCatalogue::versionOutlivesTheLibrary()
{
    QLibrary library(VELA_PLUGIN_FILE);
    using Version = QString (*)();
    const auto version = reinterpret_cast<Version>(library.resolve("libnymea_api_version"));
    QVERIFY(version);
    const QString text = version();
    QVERIFY(library.unload());
    QVERIFY(!dlopen(VELA_PLUGIN_FILE, RTLD_LAZY | RTLD_NOLOAD)); // it is unloaded
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

/*! data/thingclasses.txt shows the gateway's class and the first wallbox class; the others differ in the
    number. */
void TestCatalogue::thingClasses()
{
    const Texts expected = linesOf("data/thingclasses.txt");
    Texts lines = linesOf(m_classes.at(0).toObject());
    const Texts first = linesOf(m_classes.at(1).toObject());
    QCOMPARE(lines + first, expected);
    for (int number = 2; number <= 32; ++number) {
        Texts wallbox = first;
        wallbox[0].replace("wallbox1", QString("wallbox%1").arg(number));
        wallbox[0].replace("Wallbox 1", QString("Wallbox %1").arg(number));
        QCOMPARE(linesOf(m_classes.at(number).toObject()), wallbox);
    }
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

QTEST_GUILESS_MAIN(TestCatalogue)
#include "tst_catalogue.moc"
