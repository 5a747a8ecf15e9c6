// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include <daemon.h>
#include <plugintimer.h>

#include <QtTest>

using namespace std::chrono_literals;

namespace {

constexpr char timeout[] = "ThingErrorTimeout: The plugin did not answer in time.";

/*! A daemon with the fake plugin, and its reports as lines. */
class Fixture
{
public:
    explicit Fixture(std::chrono::milliseconds jobTimeout = 0ms)
        : m_jobTimeout(jobTimeout)
    {
        start();
    }
    ~Fixture() { daemon.reset(); } // which stores its things, before their folder goes
    Q_DISABLE_COPY(Fixture)

    void start()
    {
        daemon.reset();
        reports.clear();
        daemon = std::make_unique<Daemon>(Daemon::Options{FAKE_PLUGIN, m_folder.path(), m_jobTimeout});
        record();
        error = daemon->load();
    }

    Thing *thing(const QString &name) const
    {
        const Things things = daemon->configuredThings();
        for (Thing *thing : things) {
            if (thing->name() == name)
                return thing;
        }
        return nullptr;
    }

    QStringList names() const
    {
        QStringList names;
        const Things things = daemon->configuredThings();
        for (const Thing *thing : things)
            names.append(thing->name());
        return names;
    }

    /*! What a discovery of the bridge A offers, set up as told. */
    ThingDescriptor offer(const QString &setup, int children = 0) const
    {
        const ParamTypes types = bridgeClass().discoveryParamTypes;
        ParamList params;
        params.append(Param(types.findByName("address").id, "A"));
        params.append(Param(types.findByName("setup").id, setup));
        params.append(Param(types.findByName("children").id, children));
        const ThingDiscoveryInfo *info = daemon->discover(bridgeClass().id, params);
        return info->thingDescriptors().value(0);
    }

    /*! Adds the bridge A and waits for its set-up; returns "ok" or the job's error. */
    QString addBridge(const QString &setup, int children = 0) const
    {
        return outcome(daemon->add(offer(setup, children)));
    }

    /*! "ok", or the error with which the job ends. */
    static QString outcome(ThingJob *job)
    {
        const auto result = std::make_shared<QString>();
        QObject::connect(job, &ThingJob::finished, job, [job, result] {
            *result = job->status() == Thing::ThingErrorNoError
                ? "ok"
                : QString::fromLatin1(QMetaEnum::fromType<Thing::ThingError>().valueToKey(job->status()))
                    + ": " + job->displayMessage();
        });
        [[maybe_unused]] const bool finished = QTest::qWaitFor([result] { return !result->isEmpty(); });
        return *result;
    }

    void reportAnswer(ThingJob *job)
    {
        QObject::connect(job, &ThingJob::finished, daemon.get(),
                         [this, job] { reports << "answered " + job->displayMessage(); });
    }

    ThingClass bridgeClass() const { return daemon->thingClasses().findByName("bridge"); }

    QString error;
    QStringList reports;
    std::unique_ptr<Daemon> daemon;

private:
    void record()
    {
        QObject::connect(daemon.get(), &Daemon::thingAdded, daemon.get(),
                         [this](const Thing *thing) { reports << "added " + thing->name(); });
        QObject::connect(daemon.get(), &Daemon::thingRemoved, daemon.get(),
                         [this](const Thing *thing) { reports << "removed " + thing->name(); });
        QObject::connect(daemon.get(), &Daemon::setupFinished, daemon.get(),
                         [this](const ThingSetupInfo *info) {
                             reports << (info->status() == Thing::ThingErrorNoError ? "set up " : "failed ")
                                     + info->thing()->name();
                         });
        QObject::connect(daemon.get(), &Daemon::stateChanged, daemon.get(),
                         [this](const Thing *thing, const StateTypeId &id, const QVariant &value) {
                             const QString state = thing->thingClass().stateTypes.findById(id).name;
                             reports << thing->name() + " " + state + " " + value.toString();
                         });
    }

    QTemporaryDir m_folder;
    const std::chrono::milliseconds m_jobTimeout;
};

} // namespace

/*! The rules by which the daemon is played, seen from its own interface. */
class TestHostDaemon : public QObject
{
    Q_OBJECT
private slots:
    void announcedWhileTheParentIsPending();
    void firstSetupFails_data();
    void firstSetupFails();
    void nonsenseIsRefused();
    void restartSetsUpParentsFirst();
    void restoredThingStaysWhenItsSetupFails();
    void reconfiguresTheLivingThing();
    void pendingSetupRefusesAnother();
    void removesChildrenFirst();
    void removalAnswersPendingJobs();
    void disappearedIsRemovedAtOnce();
    void actionValues_data();
    void actionValues();
    void everyChangeIsReportedInOrder();
};

void TestHostDaemon::announcedWhileTheParentIsPending()
{
    Fixture fixture;
    QCOMPARE(fixture.error, QString());
    ThingSetupInfo *info = fixture.daemon->add(fixture.offer("announces", 2));
    // The lamps are set up, but like their bridge not yet kept: that comes from the event loop.
    QCOMPARE(fixture.names(), QStringList());
    QCOMPARE(Fixture::outcome(info), QString("ok"));
    QTRY_COMPARE(fixture.names(), QStringList({"Bridge A", "Lamp 1", "Lamp 2"}));
    QTRY_COMPARE(fixture.reports,
                 QStringList({"added Bridge A", "set up Bridge A", "Bridge A postSetups 1", "added Lamp 1",
                              "set up Lamp 1", "added Lamp 2", "set up Lamp 2"}));
    QCOMPARE(fixture.thing("Lamp 2")->parentId(), fixture.thing("Bridge A")->id());
    QCOMPARE(fixture.thing("Lamp 2")->paramValue("number"), QVariant(2u));
}

void TestHostDaemon::firstSetupFails_data()
{
    QTest::addColumn<QString>("setup");
    QTest::addColumn<QString>("error");
    const QString error = "ThingErrorHardwareNotAvailable: The bridge does not answer.";
    QTest::newRow("by itself") << "fails" << error;
    QTest::newRow("with children already announced") << "announces and fails" << error;
    QTest::newRow("for want of an answer") << "hangs" << timeout;
}

void TestHostDaemon::firstSetupFails()
{
    QFETCH(QString, setup);
    Fixture fixture(50ms);
    QTEST(fixture.addBridge(setup, 2), "error");
    QCOMPARE(fixture.addBridge("succeeds"), QString("ok")); // the fence
    QCOMPARE(fixture.reports.mid(0, 3),
             QStringList({"failed Bridge A", "added Bridge A", "set up Bridge A"}));
    QCOMPARE(fixture.names(), QStringList("Bridge A"));
    fixture.start();
    QCOMPARE(fixture.names(), QStringList("Bridge A"));
}

void TestHostDaemon::nonsenseIsRefused()
{
    Fixture fixture;
    for (const char *refusal : {"too much is refused: Parameter number must be at most 8, not \"9\"",
                                "no number is refused: Parameter number must be a whole number, 0 or more",
                                "no class is refused: The plugin has no such thing class",
                                "no parent is refused: The parent thing does not exist",
                                "A thing that is not there is said to have disappeared"})
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(refusal));
    QCOMPARE(fixture.addBridge("announces nonsense"), QString("ok"));
    QCOMPARE(fixture.addBridge("succeeds", 9),
             QString("ThingErrorInvalidParameter: Parameter children must be from 0 to 8, not \"9\"."));
    QCOMPARE(
        fixture.addBridge("succeeds", -1),
        QString(
            "ThingErrorInvalidParameter: Parameter children must be a whole number, 0 or more, not \"-1\"."));
    QCOMPARE(fixture.names(), QStringList("Bridge A"));
}

void TestHostDaemon::restartSetsUpParentsFirst()
{
    Fixture fixture;
    QCOMPARE(fixture.addBridge("announces", 2), QString("ok"));
    QTRY_COMPARE(fixture.names().size(), 3);
    fixture.daemon->add(fixture.offer("hangs"));
    fixture.start();
    // All are there from the start, and the lamps do not wait for the bridge.
    QCOMPARE(fixture.names(), QStringList({"Bridge A", "Lamp 1", "Lamp 2"}));
    QTRY_COMPARE(fixture.reports, QStringList({"Bridge A setups 3", "set up Lamp 1", "set up Lamp 2"}));
    QCOMPARE(fixture.thing("Bridge A")->setupStatus(), Thing::ThingSetupStatusInProgress);
}

void TestHostDaemon::restoredThingStaysWhenItsSetupFails()
{
    Fixture fixture(50ms);
    QCOMPARE(fixture.addBridge("succeeds"), QString("ok"));
    QCOMPARE(fixture.addBridge("hangs"), QString(timeout));
    fixture.start();
    QTRY_COMPARE(fixture.reports, QStringList({"Bridge A setups 3", "failed Bridge A"}));
    Thing *bridge = fixture.thing("Bridge A");
    QVERIFY(bridge);
    QCOMPARE(bridge->setupStatus(), Thing::ThingSetupStatusFailed);
    QCOMPARE(bridge->setupError(), Thing::ThingErrorTimeout);
    QCOMPARE(Fixture::outcome(fixture.daemon->setup(bridge)), QString(timeout));
    QCOMPARE(fixture.addBridge("succeeds"), QString("ok"));
    QCOMPARE(fixture.thing("Bridge A"), bridge);
    QCOMPARE(bridge->stateValue("setups"), QVariant(5u));
}

void TestHostDaemon::reconfiguresTheLivingThing()
{
    Fixture fixture;
    QCOMPARE(fixture.addBridge("succeeds"), QString("ok"));
    Thing *bridge = fixture.thing("Bridge A");
    QCOMPARE(fixture.addBridge("announces", 3), QString("ok"));
    QCOMPARE(fixture.thing("Bridge A"), bridge);
    QCOMPARE(bridge->paramValue("children"), QVariant(3u));
    QTRY_COMPARE(fixture.names().size(), 4);
    QTRY_COMPARE(bridge->stateValue("postSetups"), QVariant(2u));
    QCOMPARE(fixture.reports.count("added Bridge A"), 1);
    QCOMPARE(fixture.reports.count("set up Bridge A"), 2);
}

void TestHostDaemon::pendingSetupRefusesAnother()
{
    Fixture fixture;
    QCOMPARE(fixture.addBridge("succeeds"), QString("ok"));
    Thing *bridge = fixture.thing("Bridge A");
    const ThingDescriptor other = fixture.offer("fails");
    fixture.daemon->add(fixture.offer("hangs"));
    const QString refusal =
        "ThingErrorThingInUse: A set-up of Bridge A is pending; wait until it has finished.";
    QCOMPARE(Fixture::outcome(fixture.daemon->setup(bridge)), refusal);
    QCOMPARE(Fixture::outcome(fixture.daemon->add(other)), refusal);
    QCOMPARE(bridge->paramValue("setup"), QVariant("hangs"));
    QCOMPARE(bridge->stateValue("setups"), QVariant(2u));
}

void TestHostDaemon::removesChildrenFirst()
{
    Fixture fixture;
    QCOMPARE(fixture.addBridge("announces", 2), QString("ok"));
    QTRY_COMPARE(fixture.names().size(), 3);
    fixture.reports.clear();
    QTest::ignoreMessage(QtDebugMsg, "removed \"Lamp 1\" of 3");
    QTest::ignoreMessage(QtDebugMsg, "removed \"Lamp 2\" of 2");
    QTest::ignoreMessage(QtDebugMsg, "removed \"Bridge A\" of 1");
    fixture.daemon->remove(fixture.thing("Bridge A"));
    QCOMPARE(fixture.reports.filter("removed"),
             QStringList({"removed Lamp 1", "removed Lamp 2", "removed Bridge A"}));
    fixture.start();
    QCOMPARE(fixture.names(), QStringList());
}

void TestHostDaemon::removalAnswersPendingJobs()
{
    Fixture fixture;
    QCOMPARE(fixture.addBridge("announces", 1), QString("ok"));
    QTRY_VERIFY(fixture.thing("Lamp 1"));
    Thing *bridge = fixture.thing("Bridge A");
    ThingJob *action = fixture.daemon->execute(fixture.thing("Lamp 1"), "order", "hang");
    ThingJob *setup = fixture.daemon->add(fixture.offer("hangs"));
    fixture.reports.clear();
    fixture.reportAnswer(action);
    fixture.reportAnswer(setup);
    fixture.daemon->remove(bridge);
    QTRY_COMPARE(fixture.reports.filter("removed"),
                 QStringList({"removed Lamp 1", "removed Bridge A", "answered Lamp 1 has been removed.",
                              "answered Bridge A has been removed."}));
}

void TestHostDaemon::disappearedIsRemovedAtOnce()
{
    Fixture fixture;
    QCOMPARE(fixture.addBridge("announces", 2), QString("ok"));
    QTRY_COMPARE(fixture.names().size(), 3);
    bool wasStored = false;
    connect(fixture.daemon.get(), &Daemon::thingRemoved, this, [&fixture, &wasStored] {
        QFile storage(fixture.daemon->plugin()->pluginStorage()->fileName());
        wasStored = storage.open(QIODevice::ReadOnly) && storage.readAll().contains("vanished");
    });
    ThingJob *job = fixture.daemon->execute(fixture.thing("Lamp 1"), "order", "vanish");
    QVERIFY(wasStored);
    QCOMPARE(fixture.names(), QStringList({"Bridge A", "Lamp 2"}));
    QCOMPARE(fixture.reports.last(), QString("removed Lamp 1"));
    QCOMPARE(Fixture::outcome(job), QString("ThingErrorThingNotFound: Lamp 1 has been removed."));
}

void TestHostDaemon::actionValues_data()
{
    QTest::addColumn<QString>("state");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("outcome");
    const QString range = "must be from 1 to 6, not \"%1\".";
    const QString whole = "must be a whole number, 0 or more, not \"%1\".";
    const QString invalid = "ThingErrorInvalidParameter: Parameter %1 ";
    const QString brightness = invalid.arg("brightness");
    QTest::newRow("greatest at present") << "brightness" << QVariant(6) << "ok";
    QTest::newRow("number of another kind") << "brightness" << QVariant(2.0) << "ok";
    QTest::newRow("above the limit at present") << "brightness" << QVariant(7) << brightness + range.arg(7);
    QTest::newRow("below the least") << "brightness" << QVariant(0) << brightness + range.arg(0);
    QTest::newRow("negative") << "brightness" << QVariant(-1) << brightness + whole.arg(-1);
    QTest::newRow("fraction") << "brightness" << QVariant(2.5) << brightness + whole.arg(2.5);
    QTest::newRow("text for a number") << "brightness" << QVariant("2") << brightness + whole.arg(2);
    QTest::newRow("bool") << "power" << QVariant(true) << "ok";
    QTest::newRow("number for a bool")
        << "power" << QVariant(1) << invalid.arg("power") + "must be true or false, not \"1\".";
    QTest::newRow("number for a text")
        << "order" << QVariant(1) << invalid.arg("order") + "must be a text, not \"1\".";
    QTest::newRow("the plugin's refusal")
        << "order" << QVariant("fail") << "ThingErrorHardwareFailure: The lamp is broken.";
    QTest::newRow("no answer") << "order" << QVariant("hang") << timeout;
    QTest::newRow("not writable") << "burnt" << QVariant(1)
                                  << "ThingErrorInvalidParameter: Lamp 1 has no such action.";
}

void TestHostDaemon::actionValues()
{
    QFETCH(QString, state);
    QFETCH(QVariant, value);
    QFETCH(QString, outcome);
    Fixture fixture(50ms);
    QCOMPARE(fixture.addBridge("announces", 1), QString("ok"));
    QTRY_VERIFY(fixture.thing("Lamp 1"));
    Thing *lamp = fixture.thing("Lamp 1");
    QCOMPARE(Fixture::outcome(fixture.daemon->execute(lamp, "maxBrightness", 6)), QString("ok"));
    const QVariant before = lamp->stateValue(state);
    QCOMPARE(Fixture::outcome(fixture.daemon->execute(lamp, state, value)), outcome);
    QCOMPARE(lamp->stateValue(state), outcome == "ok" ? value : before);
}

void TestHostDaemon::everyChangeIsReportedInOrder()
{
    Fixture fixture;
    QCOMPARE(fixture.addBridge("announces", 1), QString("ok"));
    QTRY_VERIFY(fixture.thing("Lamp 1"));
    Thing *lamp = fixture.thing("Lamp 1");
    fixture.daemon->commit();
    fixture.reports.clear();
    ThingJob *job = fixture.daemon->execute(lamp, "order", "blink");
    QCOMPARE(fixture.reports, QStringList()); // together, once the plugin is done
    fixture.reportAnswer(job);
    // A limit alone is no change of the value.
    lamp->setStateMaxValue("brightness", 3);
    QTRY_COMPARE(fixture.reports,
                 QStringList({"Lamp 1 power true", "Lamp 1 power false", "Lamp 1 power true",
                              "Lamp 1 power false", "answered "}));
}

QTEST_GUILESS_MAIN(TestHostDaemon)
#include "tst_hostdaemon.moc"
