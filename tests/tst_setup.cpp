// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "site.h"

#include <plugintimer.h>

#include <QSettings>
#include <QTimer>
#include <QtTest>

using Backend = ScriptedBackend;

class TestSetup : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void gatewayTellsItsStory();
    void gatewayWaitsForTheBackend_data();
    void gatewayWaitsForTheBackend();
    void gatewayUsesStoredCredentials();
    void laterAnswersDoNotFinishAgain();
    void wallboxMovesMaximumBeforeValue();
    void timersExistOnce();
    void restartRestoresEverything();
    void sameInfraIdTwice();
};

void TestSetup::gatewayTellsItsStory()
{
    Site site;
    const Job discovery = site.discover();
    QCOMPARE(Site::result(discovery), "NoError");
    site.log.clear();
    const Job setup = site.add(discovery->offers.first());
    const auto *job = site.daemon->findChild<ThingSetupInfo *>();
    QList<bool> finishedBefore;
    connect(site.daemon->plugin(), &IntegrationPlugin::autoThingsAppeared, this,
            [&finishedBefore, job] { finishedBefore.append(job->isFinished()); });
    QCOMPARE(Site::result(setup), "NoError");
    QCOMPARE(finishedBefore, QList<bool>{true}); // wallboxes are announced by a gateway that is set up
    QTRY_COMPARE(site.log.count("debug: Post Setup OCPP Plugin."), 2); // gateway and wallbox
    QCOMPARE(site.story(),
             (QStringList{"debug: Setup OCPP Plugin: Thing(Tavensolis VELA)",
                          "debug: Full URL is QUrl(\"URL\")", "debug: Get info about connected WBs.",
                          "debug: Send Post Request \"/vela/get_group_info/yard\"",
                          "debug: getConnectedInfra() - Received information about connected infrastructure.",
                          R"(debug: QJsonObject({"EVSE-01":{"max_charging_current":16}}))",
                          "debug: checkAutoCreate() called", "debug: Setup thing for \"EVSE-01\"",
                          "debug: Setup OCPP Plugin: Thing(EVSE-01)", "debug: Should setup wallbox",
                          "debug: OCPP: Setup nymea connections.", "debug: Post Setup OCPP Plugin.",
                          "debug: Post Setup OCPP Plugin."}));
}

void TestSetup::gatewayWaitsForTheBackend_data()
{
    QTest::addColumn<bool>("silent");
    QTest::newRow("silent") << true;
    QTest::newRow("failing") << false;
}

/*! It counts as connected nevertheless, before any contact, but nothing polls. */
void TestSetup::gatewayWaitsForTheBackend()
{
    QFETCH(bool, silent);
    Site site;
    const Job discovery = site.discover();
    QCOMPARE(Site::result(discovery), "NoError");
    site.backend.answer(Backend::GroupInfo, 500);
    if (silent)
        site.backend.hold(Backend::GroupInfo);
    const Job setup = site.add(discovery->offers.first());
    auto *gateway = site.daemon->findChild<Thing *>();
    QCOMPARE(gateway->stateValue("connected"), QVariant(true));
    QCOMPARE(site.backend.requests().size(), 1); // the discovery's: this one is still on its way
    QTRY_COMPARE(site.backend.requests().size(), 2);
    if (!silent)
        QTRY_COMPARE(site.log.warnings().size(), 1);
    QCoreApplication::processEvents();
    QCOMPARE(setup->text, "pending");
    QCOMPARE(site.pluginTimers().size() + site.chargeLimitTimers().size(), 0);
    QCOMPARE(site.infraIds(), QStringList());
    site.remove(gateway);
}

/*! The gateway's own parameter is for recognising it; the storage says where to go. */
void TestSetup::gatewayUsesStoredCredentials()
{
    Site site;
    QCOMPARE(site.addGateway(), QString());
    ScriptedBackend other;
    other.setWallbox("EVSE-01", 16);
    QSettings *storage = site.daemon->plugin()->pluginStorage();
    storage->beginGroup(site.gateway()->thingClassId().toString());
    storage->setValue("url", other.url());
    storage->remove("groupId"); // missing reads as empty
    storage->setValue("groupSecret", "0ther");
    storage->endGroup();
    QCOMPARE(Site::result(site.setup(site.gateway())), "NoError");
    QCOMPARE(other.requests().size(), 1);
    QCOMPARE(other.requests().constFirst().target, QByteArray("/vela/get_group_info/"));
    QCOMPARE(other.requests().constFirst().json()["secret"].toString(), "0ther");
}

void TestSetup::laterAnswersDoNotFinishAgain()
{
    Site site;
    QCOMPARE(site.addGateway(), QString());
    site.log.clear();
    QCOMPARE(Site::result(site.discover()), "NoError"); // its answer comes through the same client
    QCOMPARE(site.log.count("debug: checkAutoCreate() called"), 0);

    // Both answers may find the job; one ends it, and the other must not count.
    site.backend.hold(Backend::GroupInfo);
    const Job setup = site.setup(site.gateway());
    const Job discovery = site.discover();
    QTRY_COMPARE(site.backend.requests(Backend::GroupInfo).size(), 5);
    for (int answers = 0; answers < 2; ++answers)
        QVERIFY(site.backend.release(Backend::GroupInfo));
    QTRY_COMPARE(site.log.count("debug: getConnectedInfra() - Received"), 3);
    QCOMPARE(site.log.count("debug: checkAutoCreate() called"), 1);
    QCOMPARE(site.infraIds(), QStringList("EVSE-01"));
    QCOMPARE(Site::result(setup), "NoError");
}

void TestSetup::wallboxMovesMaximumBeforeValue()
{
    Site site;
    site.backend.wallboxes = {};
    site.backend.setWallbox("EVSE-01", 20);
    QCOMPARE(site.addGateway(), QString());
    Thing *wallbox = site.wallbox("EVSE-01");
    QCOMPARE(wallbox->stateValue("connected"), QVariant(true));
    QCOMPARE(wallbox->stateValue("maxChargingCurrent"), QVariant(20U));
    QCOMPARE(wallbox->state("maxChargingCurrent").maxValue(), QVariant(20U));
    // Set up again, it goes back to the allowed maximum.
    QCOMPARE(Site::result(site.set("EVSE-01", "maxChargingCurrent", 8)), "NoError");
    wallbox->setStateValue("connected", false);
    wallbox->setParamValue(wallbox->thingClass().paramTypes.findByName("maxAllowedCurrent").id, 12);
    const StateWatch watch(wallbox);
    QCOMPARE(Site::result(site.setup(wallbox)), "NoError");
    QCOMPARE(watch.changes,
             (QStringList{"connected true", "maxChargingCurrent max 12", "maxChargingCurrent 12"}));
}

void TestSetup::timersExistOnce()
{
    Site site;
    QCOMPARE(site.addGateway(), QString());
    QCOMPARE(Site::result(site.setup(site.gateway())), "NoError"); // post-set-up runs a second time
    site.daemon->plugin()->postSetupThing(site.gateway());         // and a third
    QCOMPARE(site.pluginTimers().size(), 1);
    QCOMPARE(site.pluginTimers().constFirst()->interval(), 2);
    QVERIFY(site.pluginTimers().constFirst()->running());
    QCOMPARE(site.chargeLimitTimers().size(), 1);
    const QTimer *timer = site.chargeLimitTimers().constFirst();
    QCOMPARE(timer->interval(), 20000);
    QVERIFY(timer->isActive() && !timer->isSingleShot());

    site.log.clear();
    site.fireChargeLimitTimer();
    site.tick();
    QCOMPARE(site.log.count("debug: postSetupThing() - m_chargeLimitTimer timeout."), 1);
    QCOMPARE(site.log.count("debug: Update the values for all connected wallboxes."), 1);
}

void TestSetup::restartRestoresEverything()
{
    Site site;
    site.backend.setWallbox("EVSE-02", 32);
    QCOMPARE(site.addGateway(), QString());
    const ThingId id = site.wallbox("EVSE-02")->id();
    QCOMPARE(Site::result(site.set("EVSE-02", "maxChargingCurrent", 10)), "NoError");

    site.backend.hold(Backend::GroupInfo);
    site.log.clear();
    site.restart();
    QTRY_COMPARE(site.log.count("debug: Post Setup OCPP Plugin."), 2); // the wallboxes; the gateway waits
    QCOMPARE(site.wallbox("EVSE-02")->id(), id);
    QCOMPARE(site.state("EVSE-02", "maxChargingCurrent"), QVariant(32U)); // not the 10 of before
    QCOMPARE(site.state("EVSE-02", "power"), QVariant(true));             // cached
    QCOMPARE(site.gateway()->stateValue("connected"), QVariant(true));
    QCOMPARE(site.pluginTimers().size(), 0);

    QTRY_COMPARE(site.backend.requests(Backend::GroupInfo).size(), 3);
    QVERIFY(site.backend.release(Backend::GroupInfo));
    QTRY_COMPARE(site.pluginTimers().size(), 1);
    QCOMPARE(site.log.count("debug: Setup thing for"), 0); // all are known
    QVERIFY(site.poll());
    QCOMPARE(site.polledIds(), (QStringList{"EVSE-01", "EVSE-02"}));
}

/*! The one set up last has the values, and either one's removal takes the entry. */
void TestSetup::sameInfraIdTwice()
{
    Site site;
    QCOMPARE(site.addGateway(), QString());
    Thing *first = site.wallbox("EVSE-01");
    ThingDescriptor twin(first->thingClassId(), "Twin", QString(), site.gateway()->id());
    twin.setParams(first->params());
    QCOMPARE(Site::result(site.add(twin)), "NoError");
    Thing *second = site.wallboxes().constLast();
    QVERIFY(second != first);
    site.backend.setStatus("EVSE-01", "Charging");
    QVERIFY(site.poll());
    QCOMPARE(first->stateValue("state").toString(), "Available");
    QCOMPARE(second->stateValue("state").toString(), "Charging");

    site.remove(first);
    QVERIFY(site.poll());
    QCOMPARE(site.polledIds(), QStringList());
}

QTEST_GUILESS_MAIN(TestSetup)
#include "tst_setup.moc"
