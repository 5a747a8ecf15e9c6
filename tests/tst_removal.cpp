// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "site.h"

#include <QtTest>

using Backend = ScriptedBackend;

class TestRemoval : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void oneOfTwoWallboxes();
    void limitOfARemovedWallboxIsSent();
    void lastThingReleasesEverything();
    void nothingToRelease();
    void requestsUnderWay();
    void oneOfTwoGateways();
    void comesBack();
    void strayWallboxGoesWhileTheGatewayIsNew();
    void oneDisappearanceTakesAnotherAlong();
};

void TestRemoval::oneOfTwoWallboxes()
{
    Site site;
    site.backend.setWallbox("EVSE-02", 16);
    QCOMPARE(site.addGateway(), QString());
    site.log.clear();
    site.remove(site.wallbox("EVSE-01"));
    QCOMPARE(site.story(), QStringList("debug: Vela Plugin removed"));
    QVERIFY(site.poll());
    QCOMPARE(site.polledIds(), QStringList("EVSE-02"));
    QCOMPARE(site.pluginTimers().size(), 1);
    QCOMPARE(site.chargeLimitTimers().size(), 1);
}

void TestRemoval::limitOfARemovedWallboxIsSent()
{
    Site site;
    site.backend.setWallbox("EVSE-02", 16);
    QCOMPARE(site.addGateway(), QString());
    QCOMPARE(Site::result(site.set("EVSE-01", "maxChargingCurrent", 8)), "NoError");
    site.remove(site.wallbox("EVSE-01"));
    QVERIFY(site.poll());
    site.fireChargeLimitTimer(); // the renewal has forgotten it
    QVERIFY(site.poll());
    QCOMPARE(site.backend.limits("EVSE-01"), QList<double>{8});
    QCOMPARE(site.backend.limits("EVSE-02"), QList<double>{0});
}

void TestRemoval::lastThingReleasesEverything()
{
    Site site;
    QCOMPARE(site.addGateway(), QString());
    QVERIFY(site.poll());
    site.log.clear();
    site.remove(site.gateway()); // the wallbox under it goes first
    QCOMPARE(site.story(),
             (QStringList{"debug: Vela Plugin removed", "debug: Vela Plugin removed",
                          "debug: thingRemoved() - Stopping chargeLimit Timer.",
                          "debug: thingRemoved() - Stopping update timer.",
                          "debug: thingRemoved() - Deleting networkHandler."}));
    QCOMPARE(site.chargeLimitTimers().size(), 0);
    QTRY_COMPARE(site.pluginTimers().size(), 0);
    QTRY_COMPARE(site.backend.openConnections(), 0);
    site.log.clear();
    site.tick();
    site.fireChargeLimitTimer();
    QCOMPARE(site.log.lines(), QStringList()); // nothing is asked or sent any more
}

/*! A gateway that never got past its set-up has a client, but no timers. */
void TestRemoval::nothingToRelease()
{
    Site site;
    const Job discovery = site.discover();
    QCOMPARE(Site::result(discovery), "NoError");
    site.backend.hold(Backend::GroupInfo);
    const Job setup = site.add(discovery->offers.first());
    QTRY_COMPARE(site.backend.requests().size(), 2);
    site.remove(site.daemon->findChild<Thing *>());
    QCOMPARE(site.story({"debug: Vela Plugin removed", "debug: thingRemoved()"}),
             (QStringList{"debug: Vela Plugin removed", "debug: thingRemoved() - Deleting networkHandler."}));
    QTRY_COMPARE(site.backend.openConnections(), 0);
    QVERIFY(setup->text != "NoError");
}

void TestRemoval::requestsUnderWay()
{
    Site site;
    QCOMPARE(site.addGateway(), QString());
    for (const Backend::Operation operation : {Backend::Values, Backend::Limits, Backend::GroupInfo})
        site.backend.hold(operation);
    const Job action = site.set("EVSE-01", "maxChargingCurrent", 8);
    site.tick();
    const Job discovery = site.discover();
    QTRY_COMPARE(site.backend.requests().size(), 5);
    site.remove(site.gateway());
    site.log.clear();
    QTRY_COMPARE(site.backend.openConnections(), 0);
    QCOMPARE(site.log.lines(), QStringList()); // no outcome of any request
    // Nor does the client that comes after it answer for the old one.
    site.backend.answerNormally(Backend::GroupInfo);
    QCOMPARE(site.addGateway(), QString());
    QCOMPARE(discovery->text, "pending");
}

/*! The wallboxes of the one that stays go on being polled, and the values reach them. */
void TestRemoval::oneOfTwoGateways()
{
    Site site;
    QCOMPARE(site.addGateway(), QString());
    QCOMPARE(site.addGateway(), QString());
    site.log.clear();
    site.remove(site.gateways().constLast());
    QCOMPARE(site.story(), QStringList("debug: Vela Plugin removed"));
    site.backend.setStatus("EVSE-01", "Charging");
    QVERIFY(site.poll());
    QCOMPARE(site.log.count("debug: setupConnects() - valuesReceived"), 1);
    QCOMPARE(site.state("EVSE-01", "state").toString(), "Charging");
}

void TestRemoval::comesBack()
{
    Site site;
    QCOMPARE(site.addGateway(), QString());
    QCOMPARE(Site::result(site.set("EVSE-01", "maxChargingCurrent", 8)), "NoError");
    site.remove(site.gateway());
    QCOMPARE(site.addGateway(), QString());
    QTRY_COMPARE(site.pluginTimers().size(), 1);
    QCOMPARE(site.chargeLimitTimers().size(), 1);
    QVERIFY(site.poll());
    QCOMPARE(site.backend.limits("EVSE-01"), QList<double>{8}); // has waited in the queue all the time
    site.fireChargeLimitTimer();                                // and the action still counts as recent
    QVERIFY(site.poll());
    QCOMPARE(site.backend.limits("EVSE-01"), (QList<double>{8, 0}));
}

/*! The client's own answer takes the only kept thing away, and with it the client. */
void TestRemoval::strayWallboxGoesWhileTheGatewayIsNew()
{
    Site site;
    const ThingClass thingClass = site.daemon->thingClasses().findByName("wallbox7");
    ThingDescriptor stray(thingClass.id, "Stray");
    ParamList params;
    params.append(Param(thingClass.paramTypes.findByName("infraID").id, "EVSE-99"));
    stray.setParams(params);
    QCOMPARE(Site::result(site.add(stray)), "NoError");
    QCOMPARE(site.addGateway(), QString());
    QCOMPARE(site.story({"debug: Vela Plugin removed", "debug: thingRemoved()"}),
             (QStringList{"debug: Vela Plugin removed", "debug: thingRemoved() - Deleting networkHandler."}));
    QCOMPARE(
        site.log.warnings(),
        QStringList("setupConnects() - Nothing is polled or sent for this gateway, since the last thing was "
                    "removed and the backend client with it. Set up the gateway again."));
    site.tick();
    QCOMPARE(site.log.count("debug: Get info EVSE values."), 0);
    // A discovery brings the polls back, but nobody applies their values.
    site.backend.setStatus("EVSE-01", "Charging");
    QCOMPARE(Site::result(site.discover()), "NoError");
    site.tick();
    QTRY_COMPARE(site.log.count("debug: values"), 1);
    QCOMPARE(site.state("EVSE-01", "state").toString(), "Available");
    // Set up again, the gateway works.
    QCOMPARE(Site::result(site.setup(site.gateway())), "NoError");
    QVERIFY(site.poll());
    QCOMPARE(site.polledIds(), QStringList("EVSE-01"));
    QCOMPARE(site.state("EVSE-01", "state").toString(), "Charging");
}

/*! Whoever hears that a wallbox is gone may remove others, which the plugin then must not look for. */
void TestRemoval::oneDisappearanceTakesAnotherAlong()
{
    Site site;
    site.backend.setWallbox("EVSE-02", 16);
    QCOMPARE(site.addGateway(), QString());
    QStringList announced;
    connect(site.daemon->plugin(), &IntegrationPlugin::autoThingDisappeared, this, [&site, &announced] {
        announced.append("one");
        const Things wallboxes = site.wallboxes();
        for (Thing *wallbox : wallboxes)
            site.remove(wallbox);
    });
    site.backend.wallboxes = {};
    site.backend.setWallbox("EVSE-03", 16);
    QCOMPARE(Site::result(site.setup(site.gateway())), "NoError");
    QCOMPARE(announced, QStringList("one"));
    QTRY_COMPARE(site.infraIds(), QStringList("EVSE-03"));
}

QTEST_GUILESS_MAIN(TestRemoval)
#include "tst_removal.moc"
