// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "chargelimits.h"
#include "site.h"

#include <QJsonDocument>
#include <QtTest>

#include <limits>

using Backend = ScriptedBackend;

class TestLimits : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void silence_data();
    void silence();
    void actions_data();
    void actions();
    void limitOnTheWire();
    void onlyTheLastLimitIsSent();
    void renewalFollowsTheStates();
    void renewalEndsAfterThirtySeconds();
    void equalActionsAreSignsOfLife();
    void limitsAreNotRetried();
};

namespace {

/*! A site of two wallboxes, whose charging is enabled at their maximum of 16 A. */
QString prepare(Site &site)
{
    site.backend.setWallbox("EVSE-02", 16);
    QString error = site.addGateway();
    if (!error.isEmpty())
        return error;
    for (const char *infraId : {"EVSE-01", "EVSE-02"})
        site.wallbox(infraId)->setStateValue("power", true);
    return QString();
}

QStringList texts(const QList<QJsonObject> &limits)
{
    QStringList result;
    for (const QJsonObject &limit : limits)
        result.append(QJsonDocument(limit).toJson(QJsonDocument::Compact));
    return result;
}

} // namespace

void TestLimits::silence_data()
{
    QTest::addColumn<qint64>("lastAction");
    QTest::addColumn<qint64>("now");
    QTest::addColumn<bool>("silent");
    const qint64 now = 1714564800;
    QTest::newRow("no action yet") << qint64(0) << now << true;
    QTest::newRow("no action yet, clock at its beginning") << qint64(0) << qint64(10) << true;
    QTest::newRow("30 s ago") << now - 30 << now << false;
    QTest::newRow("31 s ago") << now - 31 << now << true;
    QTest::newRow("clock set back") << now + 3600 << now << false;
    QTest::newRow("more than 32 bits") << qint64(1) << std::numeric_limits<qint64>::max() << true;
}

void TestLimits::silence()
{
    QFETCH(qint64, lastAction);
    QFETCH(qint64, now);
    QTEST(isSilent(lastAction, now), "silent");
}

void TestLimits::actions_data()
{
    QTest::addColumn<bool>("power");
    QTest::addColumn<QString>("state");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QStringList>("changes");
    QTest::addColumn<QList<double>>("limits");
    using Limits = QList<double>;
    const auto row = [](const char *name, bool power, const char *state, const QVariant &value,
                        const QStringList &changes, const Limits &limits) {
        QTest::newRow(name) << power << state << value << changes << limits;
    };
    row("another current enables as well", false, "maxChargingCurrent", 16,
        {"maxChargingCurrent 16", "power true"}, {16});
    row("another current while enabled", true, "maxChargingCurrent", 16, {"maxChargingCurrent 16"}, {16});
    row("the same current does not enable", false, "maxChargingCurrent", 10, {}, {});
    row("disable", true, "power", false, {"power false"}, {0});
    row("disable what is disabled", false, "power", false, {}, {});
    row("enable: no limit yet", false, "power", true, {"power true"}, {});
    row("enable what is enabled", true, "power", true, {}, {});
}

void TestLimits::actions()
{
    QFETCH(bool, power);
    QFETCH(QString, state);
    QFETCH(QVariant, value);
    Site site;
    QCOMPARE(site.addGateway(), QString());
    Thing *wallbox = site.wallbox("EVSE-01");
    wallbox->setStateValue("power", power);
    wallbox->setStateValue("maxChargingCurrent", 10U);
    const StateWatch watch(wallbox);
    site.log.clear();
    const Job action = site.set("EVSE-01", state, value);
    QTEST(watch.changes, "changes"); // at once
    QCOMPARE(Site::result(action), "NoError");
    QStringList story{"debug: Executing action for Thing(EVSE-01)",
                      state == "power" ? "debug: executeAction() - Charging enabled action"
                                       : "debug: executeAction() - Set max chargeCurrent"};
    if (QTest::currentDataTag() == QString("disable"))
        story.append("debug: executeAction() -  Disable charging by setting charge current to 0");
    QCOMPARE(site.story(), story);
    QVERIFY(site.poll());
    QVERIFY(site.poll()); // a second poll sends nothing more
    QTEST(site.backend.limits("EVSE-01"), "limits");
}

void TestLimits::limitOnTheWire()
{
    Site site;
    QCOMPARE(prepare(site), QString());
    QCOMPARE(Site::result(site.set("EVSE-01", "maxChargingCurrent", 10)), "NoError");
    QCOMPARE(Site::result(site.set("EVSE-02", "power", false)), "NoError");
    site.log.clear();
    QVERIFY(site.poll());
    const QString limits = R"({"EVSE-01":{"unit":"A","value":10},"EVSE-02":{"unit":"A","value":0}})";
    QCOMPARE(texts(site.backend.limits()), QStringList(limits));
    QCOMPARE(site.story().mid(0, 5),
             (QStringList{"debug: Sending charge limits QJsonObject(" + limits + ')',
                          "debug: Setting profile charge power limit.",
                          R"(debug: Send Post Request "/vela/set_limits/yard")",
                          "debug: Update the values for all connected wallboxes.",
                          "debug: Get info EVSE values."}));
}

void TestLimits::onlyTheLastLimitIsSent()
{
    Site site;
    QCOMPARE(site.addGateway(), QString());
    for (const int ampere : {8, 10, 12})
        QCOMPARE(Site::result(site.set("EVSE-01", "maxChargingCurrent", ampere)), "NoError");
    QVERIFY(site.poll());
    QCOMPARE(Site::result(site.set("EVSE-01", "power", false)), "NoError");
    QCOMPARE(Site::result(site.set("EVSE-01", "maxChargingCurrent", 6)), "NoError");
    QVERIFY(site.poll());
    QCOMPARE(site.backend.limits("EVSE-01"), (QList<double>{12, 6}));
}

void TestLimits::renewalFollowsTheStates()
{
    Site site;
    QCOMPARE(prepare(site), QString());
    QCOMPARE(Site::result(site.set("EVSE-01", "maxChargingCurrent", 10)), "NoError");
    QCOMPARE(Site::result(site.set("EVSE-02", "power", false)), "NoError");
    QVERIFY(site.poll());
    site.log.clear();
    site.fireChargeLimitTimer(); // by itself sends nothing
    QStringList story = site.story();
    story.sort(); // wallboxes in no particular order
    QCOMPARE(story,
             (QStringList{"debug: postSetupThing() - Set charge power limit again. \"EVSE-01\"",
                          "debug: postSetupThing() - Set charge power limit again. \"EVSE-02\"",
                          "debug: postSetupThing() - m_chargeLimitTimer timeout."}));
    QVERIFY(site.poll());
    QVERIFY(site.poll());
    const QString limits = R"({"EVSE-01":{"unit":"A","value":10},"EVSE-02":{"unit":"A","value":0}})";
    QCOMPARE(texts(site.backend.limits()), (QStringList{limits, limits}));
}

void TestLimits::renewalEndsAfterThirtySeconds()
{
    Site site;
    QCOMPARE(prepare(site), QString());
    const QStringList silent{"debug: postSetupThing() - m_chargeLimitTimer timeout.",
                             "debug: Have not heard from Holvex for more than 30s; do not send any signals"};
    site.log.clear();
    site.fireChargeLimitTimer(); // no action yet
    QCOMPARE(site.story(), silent);

    QCOMPARE(Site::result(site.set("EVSE-01", "maxChargingCurrent", 10)), "NoError");
    Site::moveClock(30);
    site.fireChargeLimitTimer();
    QVERIFY(site.poll());
    Site::moveClock(1);
    site.log.clear();
    site.fireChargeLimitTimer();
    QCOMPARE(site.story(), silent);
    QVERIFY(site.poll());
    // What an action queues is sent nevertheless; it is the fence as well.
    QCOMPARE(Site::result(site.set("EVSE-01", "maxChargingCurrent", 12)), "NoError");
    QVERIFY(site.poll());
    QCOMPARE(site.backend.limits("EVSE-01"), (QList<double>{10, 12}));
    QCOMPARE(site.backend.limits("EVSE-02"), QList<double>{16});
}

void TestLimits::equalActionsAreSignsOfLife()
{
    Site site;
    QCOMPARE(prepare(site), QString());
    QCOMPARE(Site::result(site.set("EVSE-01", "maxChargingCurrent", 16)), "NoError"); // as it is already
    Site::moveClock(25);
    QCOMPARE(Site::result(site.set("EVSE-02", "power", true)), "NoError"); // likewise
    Site::moveClock(25);
    site.fireChargeLimitTimer();
    QVERIFY(site.poll());
    QCOMPARE(site.backend.limits("EVSE-01"), QList<double>{16});
}

void TestLimits::limitsAreNotRetried()
{
    Site site;
    QCOMPARE(site.addGateway(), QString());
    site.backend.answer(Backend::Limits, 400);
    QCOMPARE(Site::result(site.set("EVSE-01", "maxChargingCurrent", 10)), "NoError");
    QVERIFY(site.poll());
    QCOMPARE(site.log.warnings().size(), 1);
    QCOMPARE(site.state("EVSE-01", "maxChargingCurrent"), QVariant(10U)); // the setting stays
    QVERIFY(site.poll());
    QCOMPARE(Site::result(site.set("EVSE-01", "maxChargingCurrent", 12)), "NoError");
    QVERIFY(site.poll());
    QCOMPARE(site.backend.limits("EVSE-01"), (QList<double>{10, 12}));
}

QTEST_GUILESS_MAIN(TestLimits)
#include "tst_limits.moc"
