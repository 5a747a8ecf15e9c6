// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "json.h"
#include "site.h"

#include <QSignalSpy>
#include <QtTest>

using Backend = ScriptedBackend;

namespace {

/*! Notes what the plugin announces: "+ID" appeared, "-ID" disappeared, "." the end of a run. */
class Announcements
{
public:
    explicit Announcements(const Site &site)
    {
        IntegrationPlugin *plugin = site.daemon->plugin();
        QObject::connect(plugin, &IntegrationPlugin::autoThingsAppeared, &m_context,
                         [this](const ThingDescriptors &descriptors) {
                             for (const ThingDescriptor &descriptor : descriptors)
                                 events.append('+' + descriptor.title());
                             appeared.append(descriptors);
                         });
        QObject::connect(plugin, &IntegrationPlugin::autoThingDisappeared, &m_context,
                         [this](const ThingId &id) { gone.append(id), events.append("-"); });
        // By name, as the daemon sees the plugin: its class is not known here.
        m_finished.reset(new QSignalSpy(plugin, SIGNAL(checkAutoCreateFinished())));
    }

    QStringList events;
    QList<ThingDescriptors> appeared;
    QList<ThingId> gone;
    int runs() const { return m_finished->count(); }

private:
    QObject m_context;
    QScopedPointer<QSignalSpy> m_finished;
};

/*! Sets the gateway up again and waits until that and all wallboxes are done; empty when well. */
QString refresh(Site &site)
{
    QString text = Site::result(site.setup(site.gateway()));
    if (text != "NoError")
        return text;
    const bool settled = QTest::qWaitFor([&site] {
        const Things things = site.daemon->configuredThings();
        return std::all_of(things.cbegin(), things.cend(), [](const Thing *thing) {
            return thing->setupStatus() == Thing::ThingSetupStatusComplete;
        });
    });
    return settled ? QString() : "unsettled";
}

/*! Lists "EVSE-01" up to \a count. */
void listWallboxes(Site &site, int count)
{
    for (int i = 1; i <= count; ++i)
        site.backend.setWallbox(QString("EVSE-%1").arg(i, 2, 10, QLatin1Char('0')), 16);
}

QSet<QString> classNames(const Site &site)
{
    QSet<QString> names;
    const Things things = site.wallboxes();
    for (const Thing *thing : things)
        names.insert(thing->thingClass().name);
    return names;
}

} // namespace

class TestAutoCreate : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void announcesEachWallboxByItself();
    void maxCurrent_data();
    void maxCurrent();
    void letterCaseMatters();
    void knownWallboxesAreLeftAlone();
    void vanishedWallboxesGo();
    void noClassIsFree();
    void removedByHandKeepsItsClass();
};

void TestAutoCreate::announcesEachWallboxByItself()
{
    Site site;
    site.backend.wallboxes = {};
    site.backend.setWallbox("b", 32); // announced in the order of their names
    site.backend.setWallbox("a", 16);
    const Announcements announced(site);
    QCOMPARE(site.addGateway(), QString());

    QCOMPARE(announced.events, (QStringList{"+a", "+b"}));
    QCOMPARE(announced.runs(), 1);
    for (const auto &[index, infraId, maxCurrent] : {
             std::tuple{0, "a", 16},
             {1, "b", 32}
    }) {
        QCOMPARE(announced.appeared[index].size(), 1);
        const ThingDescriptor descriptor = announced.appeared[index].first();
        const ThingClass thingClass = site.daemon->thingClasses().findById(descriptor.thingClassId());
        QCOMPARE(descriptor.parentId(), site.gateway()->id());
        QCOMPARE(descriptor.description(), QString());
        QVERIFY(descriptor.thingId().isNull());
        const ParamList params = descriptor.params();
        QCOMPARE(params.size(), 2);
        QCOMPARE(params[0].paramTypeId(), thingClass.paramTypes.findByName("infraID").id);
        QCOMPARE(params[0].value(), QVariant(infraId));
        QCOMPARE(params[1].paramTypeId(), thingClass.paramTypes.findByName("maxAllowedCurrent").id);
        QCOMPARE(params[1].value(), QVariant(maxCurrent));
        QCOMPARE(site.wallbox(infraId)->name(), infraId);
        QCOMPARE(site.wallbox(infraId)->parentId(), site.gateway()->id());
    }
    QCOMPARE(classNames(site).size(), 2);
}

void TestAutoCreate::maxCurrent_data()
{
    QTest::addColumn<QByteArray>("group");
    QTest::addColumn<int>("maxAllowedCurrent");
    const auto row = [](const char *name, const char *record, int maxAllowedCurrent) {
        QTest::newRow(name) << QByteArray(R"({"EVSE-01":)") + record + '}' << maxAllowedCurrent;
    };
    row("whole", R"({"max_charging_current": 16})", 16);
    row("whole, written as 16.0", R"({"max_charging_current": 16.0})", 16);
    row("with a fraction", R"({"max_charging_current": 16.5})", 0);
    row("far too great", R"({"max_charging_current": 1e308})", 0);
    row("as a text", R"({"max_charging_current": "16"})", 0);
    row("missing", R"({"name": "x"})", 0);
    row("no object", "16", 0);
    row("null", "null", 0);
}

void TestAutoCreate::maxCurrent()
{
    QFETCH(QByteArray, group);
    Site site;
    site.backend.wallboxes = json(group);
    QCOMPARE(site.addGateway(), QString());
    QTEST(site.wallbox("EVSE-01")->paramValue("maxAllowedCurrent").toInt(), "maxAllowedCurrent");
}

void TestAutoCreate::letterCaseMatters()
{
    Site site;
    site.backend.wallboxes = {};
    site.backend.setWallbox("a1", 16);
    site.backend.setWallbox("A1", 32);
    QCOMPARE(site.addGateway(), QString());
    QCOMPARE(site.infraIds(), (QStringList{"A1", "a1"}));
    QCOMPARE(site.state("a1", "maxChargingCurrent"), QVariant(16U));

    site.backend.wallboxes.remove("a1");
    QCOMPARE(refresh(site), QString());
    QCOMPARE(site.infraIds(), QStringList("A1"));
}

void TestAutoCreate::knownWallboxesAreLeftAlone()
{
    Site site;
    QCOMPARE(site.addGateway(), QString());
    const Announcements announced(site);
    site.backend.setWallbox("EVSE-01", 32);
    QCOMPARE(refresh(site), QString());
    QCOMPARE(announced.events, QStringList());
    QCOMPARE(announced.runs(), 1);
    QCOMPARE(site.wallbox("EVSE-01")->paramValue("maxAllowedCurrent"), QVariant(16U));
}

void TestAutoCreate::vanishedWallboxesGo()
{
    Site site;
    site.backend.setWallbox("EVSE-02", 32);
    QCOMPARE(site.addGateway(), QString());
    const ThingId first = site.wallbox("EVSE-01")->id();
    const ThingId second = site.wallbox("EVSE-02")->id();
    const Announcements announced(site);
    site.backend.wallboxes.remove("EVSE-01");
    site.log.clear();
    QCOMPARE(refresh(site), QString());
    QCOMPARE(announced.gone, QList<ThingId>{first});
    QCOMPARE(announced.events, QStringList("-"));
    QCOMPARE(site.story({"debug: Wallbox", "debug: Freeing", "debug: Vela Plugin removed", "debug: check",
                         "debug: OCPP:"}),
             (QStringList{"debug: Wallbox \"EVSE-01\" is not connected anymore",
                          "debug: Freeing thing with classId ID", "debug: Vela Plugin removed",
                          "debug: checkAutoCreate() called", "debug: OCPP: Setup nymea connections."}));
    QCOMPARE(site.infraIds(), QStringList("EVSE-02"));

    // Listed again, it comes as a new thing; the other has been the same all the time.
    site.backend.setWallbox("EVSE-01", 16);
    QCOMPARE(refresh(site), QString());
    QCOMPARE(announced.events, (QStringList{"-", "+EVSE-01"}));
    QVERIFY(site.wallbox("EVSE-01") && site.wallbox("EVSE-01")->id() != first);
    QCOMPARE(site.wallbox("EVSE-02")->id(), second);
}

void TestAutoCreate::noClassIsFree()
{
    Site site;
    listWallboxes(site, 34);
    const Announcements announced(site);
    const Job discovery = site.discover();
    QCOMPARE(Site::result(discovery), "NoError");
    QCOMPARE(Site::result(site.add(discovery->offers.first())), "NoError");
    QTRY_COMPARE(site.wallboxes().size(), 32);
    QCOMPARE(classNames(site).size(), 32);
    QCOMPARE(announced.appeared.size(), 32); // nothing without a class
    QCOMPARE(announced.runs(), 1);
    const QString warning =
        "checkAutoCreate() - No thing for wallbox \"%1\" since all 32 wallbox classes are in use.";
    QCOMPARE(site.log.warnings(), (QStringList{warning.arg("EVSE-33"), warning.arg("EVSE-34")}));

    // One goes, and another takes its place in the same run, though it is the first on the list.
    const QString freed = site.wallbox("EVSE-05")->thingClass().name;
    site.backend.wallboxes.remove("EVSE-05");
    site.backend.setWallbox("EVSE-00", 16);
    site.log.clear();
    QCOMPARE(refresh(site), QString());
    QCOMPARE(site.wallbox("EVSE-00")->thingClass().name, freed);
    QCOMPARE(site.wallboxes().size(), 32);
    QCOMPARE(site.log.warnings(), (QStringList{warning.arg("EVSE-33"), warning.arg("EVSE-34")}));
}

void TestAutoCreate::removedByHandKeepsItsClass()
{
    Site site;
    listWallboxes(site, 32);
    QCOMPARE(site.addGateway(), QString());
    site.remove(site.wallbox("EVSE-07"));
    site.log.clear();
    QCOMPARE(refresh(site), QString()); // it is listed still, but no class is free
    QCOMPARE(site.wallboxes().size(), 31);
    QCOMPARE(site.log.warnings().size(), 1);
    QVERIFY(site.log.warnings().constFirst().contains("EVSE-07"));
}

QTEST_GUILESS_MAIN(TestAutoCreate)
#include "tst_autocreate.moc"
