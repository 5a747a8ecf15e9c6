// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "json.h"
#include "logrecorder.h"
#include "waiting.h"

#include <hardwaremanager.h>
#include <integrations/pluginmetadata.h>
#include <integrations/thingdiscoveryinfo.h>
#include <plugintimer.h>

#include <QJsonArray>
#include <QSignalSpy>
#include <QtTest>

#include <chrono>

using namespace std::chrono_literals;

namespace {

QJsonObject merged(QJsonObject object, const QJsonObject &other)
{
    for (auto it = other.constBegin(); it != other.constEnd(); ++it)
        object[it.key()] = it.value();
    return object;
}

/*! The metadata of one thing class, "box", with states like these, each named after its type. */
PluginMetadata metadata(const QVector<QJsonObject> &states)
{
    int ids = 0;
    const auto item = [&ids](const QString &name) {
        const QString text =
            R"({"name": "%1", "displayName": "%1", "id": "00000000-0000-0000-0000-00000000000%2"})";
        return json(text.arg(name).arg(++ids).toUtf8());
    };
    QJsonObject plugin = item("plugin");
    QJsonObject vendor = item("vendor");
    QJsonObject box = item("box");
    QJsonArray stateTypes;
    for (const QJsonObject &state : states)
        stateTypes.append(merged(item(state["type"].toString()), state));
    box["stateTypes"] = stateTypes;
    vendor["thingClasses"] = QJsonArray{box};
    plugin["vendors"] = QJsonArray{vendor};
    return PluginMetadata(plugin);
}

ThingClass thingClass()
{
    const QJsonObject limited = json(R"({"type": "uint", "defaultValue": 16, "maxValue": 32})");
    return metadata({json(R"({"type": "bool"})"), limited, json(R"({"type": "double"})"),
                     json(R"({"type": "QString"})")})
        .thingClasses()
        .constFirst();
}

} // namespace

class TestLibnymea : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void stateConversion_data();
    void stateConversion();
    void jobFinishesOnce();
    void jobTakesItsConnectionsAlong();
    void pluginTimers();
    void metadataErrors_data();
    void metadataErrors();

private:
    QStringList m_ticks;
};

void TestLibnymea::stateConversion_data()
{
    QTest::addColumn<QString>("state");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QVariant>("held"); // invalid: refused
    QTest::newRow("text to bool") << "bool" << QVariant("true") << QVariant(true);
    QTest::newRow("double to uint") << "uint" << QVariant(10.0) << QVariant(10U);
    QTest::newRow("beyond the maximum, by the plugin") << "uint" << QVariant(63U) << QVariant(63U);
    QTest::newRow("int to double") << "double" << QVariant(7) << QVariant(7.0);
    QTest::newRow("number to text") << "QString" << QVariant(7) << QVariant("7");
    QTest::newRow("word to uint") << "uint" << QVariant("many") << QVariant();
    QTest::newRow("unknown state") << "voltage" << QVariant(230) << QVariant();
}

void TestLibnymea::stateConversion()
{
    QFETCH(QString, state);
    QFETCH(QVariant, value);
    QFETCH(QVariant, held);
    LogRecorder log("Thing");
    Thing thing(thingClass());
    const QVariant before = thing.stateValue(state);
    thing.setStateValue(state, value);
    const QVariant after = thing.stateValue(state);
    QCOMPARE(after, held.isValid() ? held : before);
    QCOMPARE(after.type(), held.isValid() ? held.type() : before.type());
    QCOMPARE(log.count("warning: "), held.isValid() ? 0 : 1);
}

void TestLibnymea::jobFinishesOnce()
{
    LogRecorder log("Thing");
    QPointer<ThingJob> job = new ThingDiscoveryInfo({}, {}, 0ms, this);
    QSignalSpy spy(job.data(), &ThingJob::finished);
    job->finish(Thing::ThingErrorSetupFailed, "first");
    QCOMPARE(spy.count(), 0); // not while the plugin may still use the job
    job->finish(Thing::ThingErrorNoError, "second");
    QCOMPARE(job->status(), Thing::ThingErrorSetupFailed);
    QCOMPARE(job->displayMessage(), "first");
    QCOMPARE(log.count("warning: "), 1);
    QVERIFY(waitFor([&job] { return !job; }));
    QCOMPARE(spy.count(), 1);
}

void TestLibnymea::jobTakesItsConnectionsAlong()
{
    Thing sender(thingClass());
    QPointer<ThingJob> job = new ThingDiscoveryInfo({}, {}, 0ms, this);
    int calls = 0;
    connect(&sender, &Thing::setupStatusChanged, job.data(), [&calls] { ++calls; });
    job->finish(Thing::ThingErrorNoError);
    sender.setSetupStatus(Thing::ThingSetupStatusFailed);
    QCOMPARE(calls, 1); // the job is deleted later, not in finish()
    QVERIFY(waitFor([&job] { return !job; }));
    sender.setSetupStatus(Thing::ThingSetupStatusComplete);
    QCOMPARE(calls, 1);
}

void TestLibnymea::pluginTimers()
{
    LogRecorder log("Thing");
    HardwareManager hardware;
    PluginTimerManager *manager = hardware.pluginTimerManager();
    manager->findChild<QTimer *>()->stop(); // a second passes when the test says so
    PluginTimer *two = manager->registerTimer(2);
    PluginTimer *three = manager->registerTimer(3);
    QVERIFY(two->running());
    m_ticks.clear();
    connect(two, &PluginTimer::timeout, this, [this] { m_ticks.append("two"); });
    connect(three, &PluginTimer::timeout, this, [this, manager, two] {
        m_ticks.append("three");
        manager->unregisterTimer(two); // in the middle of a tick
    });
    for (int second = 1; second <= 6; ++second) {
        manager->tick();
        m_ticks.append(QString::number(second));
    }
    QCOMPARE(m_ticks, (QStringList{"1", "two", "2", "three", "3", "4", "5", "three", "6"}));
    QCOMPARE(log.count("warning: "), 1); // the second unregistering
}

void TestLibnymea::metadataErrors_data()
{
    QTest::addColumn<QString>("key"); // of a sound state
    QTest::addColumn<QJsonValue>("value");
    QTest::addColumn<QStringList>("errors");
    const auto row = [](const char *name, const char *key, const QJsonValue &value, const char *error) {
        QTest::newRow(name) << key << value << QString(error).split('\n', Qt::SkipEmptyParts);
    };
    row("sound", "type", "uint", "");
    row("no id", "id", "7", "box.uint: \"id\" is not a UUID");
    row("id of another item", "id", "00000000-0000-0000-0000-000000000003",
        "box.uint: \"id\" {00000000-0000-0000-0000-000000000003} is used twice");
    row("type", "type", "number", "box.number: type \"number\" is not supported");
    row("unit", "unit", "Furlong", "box.uint: unit \"Furlong\" is not known");
    row("default", "defaultValue", QJsonArray(), "box.uint: \"defaultValue\" does not fit the type");
    row("no display name", "displayName", "", "box.uint: \"displayName\" is missing, empty or not a string");
}

void TestLibnymea::metadataErrors()
{
    QFETCH(QString, key);
    QFETCH(QJsonValue, value);
    QFETCH(QStringList, errors);
    QJsonObject state = json(R"({"type": "uint"})");
    state[key] = value;
    const PluginMetadata metadata = ::metadata({state});
    QCOMPARE(metadata.validationErrors(), errors);
    QCOMPARE(metadata.isValid(), errors.isEmpty());
}

QTEST_GUILESS_MAIN(TestLibnymea)
#include "tst_libnymea.moc"
