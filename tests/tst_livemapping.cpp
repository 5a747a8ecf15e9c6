// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "json.h"
#include "site.h"

#include <QtTest>

namespace {

QJsonObject charging()
{
    return json(R"({"timestamp": "2024-05-01T12:00:00.500Z", "status": "Charging", "meter_value": 2500,
        "phase_1": 0.99, "phase_2": 1.0, "phase_3": 16})");
}

/*! \a record with another member. */
QJsonObject with(QJsonObject record, const QString &key, const QJsonValue &value)
{
    record.insert(key, value);
    return record;
}

} // namespace

class TestLiveMapping : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void writesStatesInOrder();
    void absentWallboxesComeFirst();
    void absentWallboxKeepsItsStates();
    void listenersMayRemoveTheWallbox();
    void listenersMayChangeWhatWasWritten_data();
    void listenersMayChangeWhatWasWritten();
    void unknownIdsAreSkipped();
    void timestampOnlyWhenReadable();
    void energyAcrossSessions();
    void repliesAppliedAgainCountOnce();
};

void TestLiveMapping::writesStatesInOrder()
{
    Site site;
    QCOMPARE(site.addGateway(), QString());
    site.backend.values["EVSE-01"] = charging();
    QCOMPARE(site.state("EVSE-01", "timestamp"), QVariant(0)); // its default, a date, is no number
    const StateWatch watch(site.wallbox("EVSE-01"));
    site.log.clear();
    QVERIFY(site.poll());
    QCOMPARE(watch.changes,
             (QStringList{"timestamp 1714564800", "sessionEnergy 2.5", "state Charging", "pluggedIn true",
                          "charging true", "currentPower 3910", "currentPhaseB 1", "currentPhaseC 16",
                          "phaseCount 2"}));
    QStringList story = site.story();
    story.erase(story.begin(), story.begin() + story.indexOf("debug: setupConnects() - valuesReceived"));
    QCOMPARE(story.size(), 5);
    QCOMPARE(story[1], R"(debug: Values for device "EVSE-01")");
    QVERIFY(story[2].startsWith("debug: Received values QJsonObject({\"meter_value\":2500,"));
    QCOMPARE(story[3], R"(debug: Time STR "2024-05-01T12:00:00.500Z")");
    QCOMPARE(story[4], "debug: Time STR 1714564800");
}

/*! "EVSE-02" is missing: it is marked before "EVSE-01" gets its values. */
void TestLiveMapping::absentWallboxesComeFirst()
{
    Site site;
    site.backend.setWallbox("EVSE-02", 16);
    QCOMPARE(site.addGateway(), QString());
    site.backend.setStatus("EVSE-01", "Preparing");
    QStringList order;
    for (const char *infraId : {"EVSE-01", "EVSE-02"}) {
        connect(site.wallbox(infraId), &Thing::stateValueChanged, this,
                [&order, infraId](const StateTypeId &, const QVariant &value) {
                    order.append(QString(infraId) + ' ' + value.toString());
                });
    }
    QVERIFY(site.poll());
    QCOMPARE(order, (QStringList{"EVSE-02 false", "EVSE-01 Preparing", "EVSE-01 true"}));
}

void TestLiveMapping::absentWallboxKeepsItsStates()
{
    Site site;
    QCOMPARE(site.addGateway(), QString());
    site.backend.values["EVSE-01"] = charging();
    QVERIFY(site.poll());
    const StateWatch watch(site.wallbox("EVSE-01"));
    site.backend.values = with({}, "evse-01", charging()); // another letter case is another wallbox
    QVERIFY(site.poll());
    site.backend.values["EVSE-01"] = charging();
    QVERIFY(site.poll());
    site.backend.answer(ScriptedBackend::Values, 200, R"({"success":true})"); // no values at all
    QVERIFY(site.poll());
    site.backend.answer(ScriptedBackend::Values, 503); // says nothing about wallboxes
    site.wallbox("EVSE-01")->setStateValue("connected", true);
    QVERIFY(site.poll());
    QCOMPARE(site.log.warnings().size(), 1);
    QCOMPARE(watch.changes,
             (QStringList{"connected false", "connected true", "connected false", "connected true"}));
}

/*! Whoever hears that one wallbox is not connected may remove any of them. */
void TestLiveMapping::listenersMayRemoveTheWallbox()
{
    Site site;
    for (const char *infraId : {"EVSE-02", "EVSE-03"})
        site.backend.setWallbox(infraId, 16);
    QCOMPARE(site.addGateway(), QString());
    const QObject listener;
    const Things wallboxes = site.wallboxes();
    for (Thing *wallbox : wallboxes) {
        connect(wallbox, &Thing::stateValueChanged, &listener, [site = &site] {
            while (site->wallboxes().size() > 1)
                site->remove(site->wallboxes().constFirst());
        });
    }
    QVERIFY(site.poll());
    QCOMPARE(site.wallboxes().size(), 1);
    QCOMPARE(site.wallboxes().constFirst()->stateValue("connected"), QVariant(false));
}

void TestLiveMapping::listenersMayChangeWhatWasWritten_data()
{
    QTest::addColumn<QString>("status");
    QTest::addColumn<QString>("changed"); // the state that a listener changes as soon as it is written
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<double>("power");
    QTest::addColumn<QList<double>>("currents");
    QTest::addColumn<int>("phases");
    using Currents = QList<double>;
    QTest::newRow("charging ends") << "Charging"
                                   << "state" << QVariant("Faulted") << 0.0 << Currents{0, 0, 0} << 1;
    QTest::newRow("charging begins") << "Preparing"
                                     << "state" << QVariant("Charging") << 4140.0 << Currents{2, 6, 10} << 3;
    for (int phase = 0; phase < 3; ++phase) {
        Currents currents{2, 6, 10};
        currents[phase] = 0;
        const QString state = QString("currentPhase") + QChar('A' + phase);
        QTest::newRow(qPrintable(state)) << "Charging" << state << QVariant(0) << 4140.0 << currents << 2;
    }
}

/*! Power and currents go by the state that the thing has, and the phases by its currents. */
void TestLiveMapping::listenersMayChangeWhatWasWritten()
{
    QFETCH(QString, changed);
    QFETCH(QVariant, value);
    Site site;
    QCOMPARE(site.addGateway(), QString());
    Thing *wallbox = site.wallbox("EVSE-01");
    const QObject listener;
    connect(wallbox, &Thing::stateValueChanged, &listener, [wallbox, changed, value](const StateTypeId &id) {
        if (wallbox->thingClass().stateTypes.findById(id).name == changed)
            wallbox->setStateValue(changed, value);
    });
    QFETCH(QString, status);
    site.backend.values["EVSE-01"] = QJsonObject{
        {"status",  status},
        {"phase_1", 2     },
        {"phase_2", 6     },
        {"phase_3", 10    }
    };
    QVERIFY(site.poll());
    QTEST(wallbox->stateValue("currentPower").toDouble(), "power");
    const QList<double> currents{wallbox->stateValue("currentPhaseA").toDouble(),
                                 wallbox->stateValue("currentPhaseB").toDouble(),
                                 wallbox->stateValue("currentPhaseC").toDouble()};
    QTEST(currents, "currents");
    QTEST(wallbox->stateValue("phaseCount").toInt(), "phases");
}

void TestLiveMapping::unknownIdsAreSkipped()
{
    Site site;
    QCOMPARE(site.addGateway(), QString());
    for (const char *infraId : {"", "A-stranger", "EVSE-01"})
        site.backend.values[infraId] = charging();
    site.log.clear();
    QVERIFY(site.poll());
    QCOMPARE(site.story({"debug: Values for device"}),
             (QStringList{R"(debug: Values for device "")", R"(debug: Values for device "A-stranger")",
                          R"(debug: Values for device "EVSE-01")"}));
    QCOMPARE(site.state("EVSE-01", "state"), QVariant("Charging"));
    QCOMPARE(site.infraIds(), QStringList("EVSE-01")); // who has joined waits for the next set-up
}

void TestLiveMapping::timestampOnlyWhenReadable()
{
    Site site;
    QCOMPARE(site.addGateway(), QString());
    const StateWatch watch(site.wallbox("EVSE-01"));
    site.log.clear();
    for (const QJsonValue &timestamp : {QJsonValue("2024-05-01T12:00:00Z"), QJsonValue(""), QJsonValue(17),
                                        QJsonValue("yesterday"), QJsonValue("2024-05-01T14:00:01+02:00")}) {
        site.backend.values["EVSE-01"] = with({}, "timestamp", timestamp);
        QVERIFY(site.poll());
    }
    QCOMPARE(watch.changes.filter("timestamp"),
             (QStringList{"timestamp 1714564800", "timestamp 1714564801"}));
    QCOMPARE(site.story({"debug: Time STR \""}),
             (QStringList{R"(debug: Time STR "2024-05-01T12:00:00Z")", R"(debug: Time STR "yesterday")",
                          R"(debug: Time STR "2024-05-01T14:00:01+02:00")"}));
    QCOMPARE(site.log.count("debug: Time STR"), 6); // each text, and the second that Qt makes of it
}

void TestLiveMapping::energyAcrossSessions()
{
    Site site;
    QCOMPARE(site.addGateway(), QString());
    double total = 0;
    // Readings of the session's meter in Wh, and what each adds to the total in kWh.
    for (const auto &[meter, drawn] : {
             std::pair{2500, 0.0      }, // where the session stood is not known
             {3500, 1.0      },
             {3500, 0.0      },
             {200,  0.0      }, // a new session
             {900,  0.9 - 0.2},
             {0,    0.0      },
             {400,  0.0      }, // nor from 0, which is what a restart looks like
             {500,  0.5 - 0.4}
    }) {
        site.backend.values["EVSE-01"] = with({}, "meter_value", meter);
        QVERIFY(site.poll());
        total += drawn;
        QCOMPARE(site.state("EVSE-01", "sessionEnergy").toDouble(), meter / 1000.0);
        QCOMPARE(site.state("EVSE-01", "totalEnergyConsumed").toDouble(), total);
    }
}

/*! Each gateway, and each set-up of one, applies every reply. */
void TestLiveMapping::repliesAppliedAgainCountOnce()
{
    Site site;
    QCOMPARE(site.addGateway(), QString());
    QCOMPARE(site.addGateway(), QString());
    QCOMPARE(Site::result(site.setup(site.gateway())), "NoError");
    QCOMPARE(site.gateways().size(), 2);
    for (const int meter : {1000, 3000}) {
        site.backend.values["EVSE-01"] = with(charging(), "meter_value", meter);
        site.log.clear();
        QVERIFY(site.poll());
        QCOMPARE(site.log.count("debug: setupConnects() - valuesReceived"), 3);
    }
    QCOMPARE(site.state("EVSE-01", "totalEnergyConsumed").toDouble(), 2.0);
}

QTEST_GUILESS_MAIN(TestLiveMapping)
#include "tst_livemapping.moc"
