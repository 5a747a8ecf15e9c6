// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "census.h"
#include "json.h"
#include "site.h"
#include "waiting.h"

#include <QtTest>

#include <QRegularExpression>

#include <atomic>
#include <dlfcn.h>
#include <netdb.h>

using Backend = ScriptedBackend;

using Act = void (*)(Site &site);

/*! One thing that goes wrong between plugin and backend. */
struct Fault
{
    Act strike;      //!< before each poll
    QString logged;  //!< what a poll under it logs, as "ERROR HTTP-STATUS"
    QString current; //!< what the wallbox shows meanwhile: "1" as before, "2" as the backend has it
    Act end;
};
Q_DECLARE_METATYPE(Fault)

/*! What goes wrong outside the plugin, over real sockets: seen while it lasts, and gone afterwards. */
class TestFaults : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init();
    void fault_data();
    void fault();
    void cutAfterTheData();
    void nameFailure();
    void clockIsSet_data();
    void clockIsSet();
};

namespace {

std::atomic<bool> namesResolve{true};

void setCurrent(Site &site, int ampere)
{
    QJsonObject record = json(R"({"status": "Charging"})");
    record.insert("phase_1", ampere);
    site.backend.values.insert("EVSE-01", record);
}

/*! What the wallbox shows, as "CONNECTED CURRENT". */
QString shown(const Site &site)
{
    return (site.state("EVSE-01", "connected").toBool() ? "connected " : "absent ")
        + site.state("EVSE-01", "currentPhaseA").toString();
}

/*! The warnings about polls so far, each as "ERROR HTTP-STATUS". */
QStringList failedPolls(const Site &site)
{
    static const QRegularExpression parts(R"(getEvseValues.*QNetworkReply::(\w+).*Error code:\s+(\d+))",
                                          QRegularExpression::DotMatchesEverythingOption);
    QStringList result;
    const QStringList warnings = site.log.warnings();
    for (const QString &warning : warnings) {
        const QRegularExpressionMatch match = parts.match(warning);
        if (match.hasMatch())
            result.append(match.captured(1) + ' ' + match.captured(2));
    }
    return result;
}

/*! Waits until \a polls have been answered, well or badly, since the log was cleared. */
bool waitForAnswers(const Site &site, int polls)
{
    return waitFor([&site, polls] {
        return site.log.count("debug: setupConnects() - valuesReceived") + failedPolls(site).size() >= polls;
    });
}

/*! Polls over all six connections that Qt opens to a host, so that later polls bring no new objects. */
bool openAllConnections(Site &site)
{
    constexpr int connections = 6;
    site.backend.forgetRequests();
    site.backend.hold(Backend::Values);
    site.log.clear();
    for (int i = 0; i < connections; ++i)
        site.tick();
    const bool arrived = waitFor([&site] { return site.backend.requests().size() == connections; });
    site.backend.releaseAll(Backend::Values);
    return arrived && waitForAnswers(site, connections);
}

/*! Polls until the wallbox shows \a expected; how often, at most \a most times. */
int pollsUntil(Site &site, const QString &expected, int most)
{
    int polls = 0;
    while (polls < most && shown(site) != expected) {
        site.poll();
        ++polls;
    }
    return polls;
}

/*! The backend accepts and does not answer. */
void hold(Site &site)
{
    site.backend.hold(Backend::Values);
}

void release(Site &site)
{
    Site::moveClock(30);
    site.backend.releaseAll(Backend::Values);
}

void closeSilent(Site &site)
{
    site.backend.answerNormally(Backend::Values);
    site.backend.closeConnections();
}

void answerNormally(Site &site)
{
    site.backend.answerNormally(Backend::Values);
}

template <int Status> void answer(Site &site)
{
    site.backend.answer(Backend::Values, Status);
}

} // namespace

// Qt asks this for addresses; the program's own comes before the C library's.
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name): the C library's names are reserved
extern "C" int getaddrinfo(const char *name, const char *service, const addrinfo *hints, addrinfo **result)
{
    if (!namesResolve)
        return EAI_AGAIN;
    using Function = int (*)(const char *, const char *, const addrinfo *, addrinfo **);
    static const auto original = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "getaddrinfo"));
    const bool madeUp = name && QByteArray(name).endsWith(".test");
    return original(madeUp ? "127.0.0.1" : name, service, hints, result);
}

void TestFaults::init()
{
    namesResolve = true;
}

void TestFaults::fault_data()
{
    QTest::addColumn<Fault>("fault");
    const auto row = [](const char *name, Act strike, const QString &logged, const char *current,
                        Act end = answerNormally) {
        QTest::newRow(name) << Fault{strike, logged, current, end};
    };
    const Act shutDown = [](Site &site) { site.backend.shutDown(); };
    const Act startUp = [](Site &site) { site.backend.startUp(); };
    const Act restart = [](Site &site) { site.backend.shutDown(), site.backend.startUp(); };
    const Act close = [](Site &site) { site.backend.closeConnections(); };
    const Act reset = [](Site &site) { site.backend.reset(Backend::Values); };
    const Act hangUp = [](Site &site) { site.backend.hangUp(Backend::Values); };
    const Act cut = [](Site &site) {
        site.backend.hangUp(Backend::Values, "HTTP/1.1 200 OK\r\nContent-Length: 99\r\n\r\n{\"success\"");
    };
    row("refused, then started on the same port", shutDown, "ConnectionRefusedError 0", "1", startUp);
    row("restarted between polls", restart, "", "2");
    row("connection closed between polls", close, "", "2");
    row("accepted, answered after 30 s", hold, "", "1", release);
    row("accepted, never answered, then closed", hold, "", "1", closeSilent);
    row("closed without an answer", hangUp, "RemoteHostClosedError 0", "1");
    row("closed mid-reply, in the same packet", cut, "RemoteHostClosedError 200", "1");
    row("reset", reset, "RemoteHostClosedError 0", "1");
    row("400", answer<400>, "ProtocolInvalidOperationError 400", "1");
    row("401", answer<401>, "AuthenticationRequiredError 401", "1");
    row("404", answer<404>, "ContentNotFoundError 404", "1");
    row("418", answer<418>, "ProtocolInvalidOperationError 418", "1");
    row("500", answer<500>, "InternalServerError 500", "1");
    row("503", answer<503>, "ServiceUnavailableError 503", "1");
}

void TestFaults::fault()
{
    QFETCH(Fault, fault);
    constexpr int polls = 7; // more than there are connections
    const QStringList logged =
        fault.logged.isEmpty() ? QStringList() : QVector<QString>(polls, fault.logged).toList();
    const bool silent = fault.strike == hold;
    Site site;
    QCOMPARE(site.addGateway(), QString());

    Census first;
    for (int round = 1; round <= 3; ++round) {
        setCurrent(site, 1);
        QVERIFY(site.poll());
        QCOMPARE(shown(site), "connected 1");
        setCurrent(site, 2);
        site.log.clear();
        for (int i = 0; i < polls; ++i) {
            fault.strike(site);
            site.tick();
            QVERIFY(silent || waitForAnswers(site, i + 1));
        }
        QCOMPARE(failedPolls(site), logged);
        QCOMPARE(shown(site), "connected " + fault.current);

        fault.end(site);
        QVERIFY(waitForAnswers(site, polls)); // what waited in the silence is answered now
        setCurrent(site, 3);
        QVERIFY(pollsUntil(site, "connected 3", 2) <= 2);
        QCOMPARE(shown(site), "connected 3");
        if (round == 1) {
            QVERIFY(openAllConnections(site));
            first = Census::takeSettled();
        }
    }
    QVERIFY(openAllConnections(site));
    QCOMPARE(Census::takeSettled().objects, first.objects);
    QCOMPARE(Census::take().descriptors, first.descriptors);
}

/*! A reply whose connection closes after its first part: Qt takes some of them for whole. The body is then no
    JSON, and a poll without values. */
void TestFaults::cutAfterTheData()
{
    Site site;
    QCOMPARE(site.addGateway(), QString());
    for (int round = 0; round < 20; ++round) {
        setCurrent(site, 1);
        QVERIFY(site.poll());
        QCOMPARE(shown(site), "connected 1");
        site.log.clear();
        site.backend.forgetRequests();
        site.backend.hold(Backend::Values);
        site.tick();
        QTRY_COMPARE(site.backend.requests().size(), 1);
        QVERIFY(site.backend.sendPart(Backend::Values,
                                      "HTTP/1.1 200 OK\r\nContent-Length: 99\r\n\r\n{\"success\""));
        QVERIFY(waitFor([&site] { return site.backend.isSent(Backend::Values); }));
        closeSilent(site);
        QVERIFY(waitForAnswers(site, 1));
        const bool noticed = !failedPolls(site).isEmpty();
        QCOMPARE(failedPolls(site), noticed ? QStringList("RemoteHostClosedError 200") : QStringList());
        QCOMPARE(shown(site), noticed ? "connected 1" : "absent 1");
    }
}

void TestFaults::nameFailure()
{
    Site site;
    QCOMPARE(site.addGateway(), QString());
    setCurrent(site, 1);
    QVERIFY(site.poll());
    namesResolve = false;
    site.discover(site.backend.url().replace("127.0.0.1", "yard.test"), "yard", "s3cret"); // aims all polls
    QVERIFY(site.poll());
    const Census first = Census::takeSettled();
    site.log.clear();
    constexpr int polls = 30;
    for (int i = 0; i < polls; ++i)
        QVERIFY(site.poll());
    QCOMPARE(failedPolls(site), QVector<QString>(polls, "HostNotFoundError 0").toList());
    QCOMPARE(shown(site), "connected 1");
    // Qt looks names up in a few threads, and starts another where one is still busy; but no poll leaves an
    // object.
    QVERIFY(Census::takeSettled().objects - first.objects < polls);
    QVERIFY(Census::take().descriptors - first.descriptors < polls);

    namesResolve = true;
    setCurrent(site, 2);
    QVERIFY(pollsUntil(site, "connected 2", 2) <= 2);
    QCOMPARE(shown(site), "connected 2");
}

void TestFaults::clockIsSet_data()
{
    QTest::addColumn<int>("seconds");
    QTest::addColumn<QList<double>>("renewed"); // with the clock set, and after the next action
    QTest::newRow("an hour forward: silent until the next action") << 3600 << QList<double>{8};
    QTest::newRow("an hour back: heard") << -3600 << QList<double>{10, 8};
}

void TestFaults::clockIsSet()
{
    QFETCH(int, seconds);
    QFETCH(QList<double>, renewed);
    Site site;
    QCOMPARE(site.addGateway(), QString());
    QCOMPARE(Site::result(site.set("EVSE-01", "maxChargingCurrent", 10)), "NoError");
    QVERIFY(site.poll());
    site.backend.forgetRequests();

    Site::moveClock(seconds);
    setCurrent(site, 1);
    site.fireChargeLimitTimer();
    QVERIFY(site.poll());
    QCOMPARE(shown(site), "connected 1");
    QCOMPARE(Site::result(site.set("EVSE-01", "maxChargingCurrent", 8)), "NoError");
    QVERIFY(site.poll());
    QCOMPARE(site.backend.limits("EVSE-01"), renewed);
}

QTEST_GUILESS_MAIN(TestFaults)
#include "tst_faults.moc"
