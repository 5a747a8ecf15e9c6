// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "census.h"
#include "site.h"
#include "waiting.h"

#include <QRegularExpression>
#include <QtTest>

#include <atomic>
#include <dlfcn.h>
#include <functional>
#include <netdb.h>

using Backend = ScriptedBackend;

using Act = std::function<void(Backend &backend)>;

/*! One thing that goes wrong between plugin and backend. */
struct Fault
{
    QString logged;    //!< what a poll under it logs, as "ERROR HTTP-STATUS"; empty if it is answered
    Act strike;        //!< before each poll
    Act end = release; //!< of the fault
    static void release(Backend &backend) { backend.releaseAll(Backend::Values); }
};
Q_DECLARE_METATYPE(Fault)

namespace {

constexpr int connections = 6; // that Qt opens to a host
constexpr char cutReply[] = "HTTP/1.1 200 OK\r\nContent-Length: 99\r\n\r\n{\"success\"";

std::atomic<bool> namesResolve{true};

void setCurrent(Site &site, int ampere)
{
    site.backend.values = {
        {"EVSE-01", QJsonObject{{"status", "Charging"}, {"phase_1", ampere}}}
    };
}

/*! What the wallbox shows, as "CONNECTED CURRENT". */
QString shown(const Site &site)
{
    return site.state("EVSE-01", "connected").toString() + ' '
        + site.state("EVSE-01", "currentPhaseA").toString();
}

/*! The warnings about polls so far, each as "ERROR HTTP-STATUS". */
QStringList failedPolls(const Site &site)
{
    QStringList warnings = site.log.warnings().filter("getEvseValues() - ");
    return warnings.replaceInStrings(QRegularExpression(R"(^.*QNetworkReply::(\w+).*Error code:\s+(\d+).*$)",
                                                        QRegularExpression::DotMatchesEverythingOption),
                                     "\\1 \\2");
}

/*! Waits until \a polls have been answered, well or badly, since the log was cleared. */
bool waitForAnswers(const Site &site, int polls)
{
    return waitFor([&site, polls] {
        return site.log.count("debug: setupConnects() - valuesReceived") + failedPolls(site).size() >= polls;
    });
}

/*! What the program holds once all connections to the backend have been used, so that later polls bring no new
    objects. */
Census censusWithAllConnections(Site &site)
{
    site.backend.forgetRequests();
    site.backend.hold(Backend::Values);
    site.log.clear();
    for (int i = 0; i < connections; ++i)
        site.tick();
    if (!waitFor([&site] { return site.backend.requests().size() == connections; }))
        qFatal("Qt does not open %d connections.", connections);
    site.backend.releaseAll(Backend::Values);
    if (!waitForAnswers(site, connections))
        qFatal("Polls are not answered.");
    return Census::takeSettled();
}

/*! Two polls after a fault the wallbox shows what the backend says. */
bool recovers(Site &site)
{
    setCurrent(site, 3);
    return (site.poll() && shown(site) == "true 3") || (site.poll() && shown(site) == "true 3");
}

} // namespace

/*! What goes wrong outside the plugin, over real sockets: seen while it lasts, and gone afterwards. */
class TestFaults : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void fault_data();
    void fault();
    void cutAfterTheData();
    void nameFailure();
};

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

void TestFaults::fault_data()
{
    QTest::addColumn<Fault>("fault");
    const auto row = [](const char *name, const Fault &fault) { QTest::newRow(name) << fault; };
    const Act hold = [](Backend &backend) { backend.hold(Backend::Values); };
    const Act close = [](Backend &backend) { backend.closeConnections(); };
    row("refused, then started on the same port",
        {"ConnectionRefusedError 0", &Backend::shutDown, &Backend::startUp});
    row("restarted between polls", {"", [](Backend &backend) { backend.shutDown(), backend.startUp(); }});
    row("connection closed between polls", {"", close});
    row("accepted, answered later", {"silence", hold});
    row("accepted, never answered, then closed", {"silence", hold, [close](Backend &backend) {
                                                      backend.answerNormally(Backend::Values);
                                                      close(backend);
                                                  }});
    row("closed without an answer",
        {"RemoteHostClosedError 0", [](Backend &backend) { backend.hangUp(Backend::Values); }});
    row("closed mid-reply, in the same packet",
        {"RemoteHostClosedError 200", [](Backend &backend) { backend.hangUp(Backend::Values, cutReply); }});
    row("reset", {"RemoteHostClosedError 0", [](Backend &backend) { backend.reset(Backend::Values); }});
    row("503",
        {"ServiceUnavailableError 503", [](Backend &backend) { backend.answer(Backend::Values, 503); }});
}

void TestFaults::fault()
{
    QFETCH(Fault, fault);
    constexpr int polls = connections + 1;
    const bool answered = fault.logged.isEmpty();
    const bool silent = fault.logged == "silence";
    Site site;
    QCOMPARE(site.addGateway(), QString());

    Census first;
    for (int round = 1; round <= 3; ++round) {
        setCurrent(site, 1);
        QVERIFY(site.poll());
        QCOMPARE(shown(site), "true 1");
        setCurrent(site, 2);
        site.log.clear();
        for (int i = 0; i < polls; ++i) {
            fault.strike(site.backend);
            site.tick();
            QVERIFY(silent || waitForAnswers(site, i + 1));
        }
        QCOMPARE(failedPolls(site), QVector<QString>(answered || silent ? 0 : polls, fault.logged).toList());
        QCOMPARE(shown(site), answered ? "true 2" : "true 1");

        fault.end(site.backend);
        QVERIFY(waitForAnswers(site, polls)); // what waited in the silence is answered now
        QVERIFY(recovers(site));
        const Census census = censusWithAllConnections(site);
        if (round == 1)
            first = census;
        QCOMPARE(census.objects, first.objects);
        QCOMPARE(census.descriptors, first.descriptors);
    }
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
        QCOMPARE(shown(site), "true 1");
        site.log.clear();
        site.backend.forgetRequests();
        site.backend.hold(Backend::Values);
        site.tick();
        QTRY_COMPARE(site.backend.requests().size(), 1);
        QVERIFY(site.backend.sendPart(Backend::Values, cutReply));
        QVERIFY(waitFor([&site] { return site.backend.isSent(Backend::Values); }));
        site.backend.closeConnections();
        site.backend.answerNormally(Backend::Values);
        QVERIFY(waitForAnswers(site, 1));
        const bool noticed = !failedPolls(site).isEmpty();
        QCOMPARE(failedPolls(site), noticed ? QStringList("RemoteHostClosedError 200") : QStringList());
        QCOMPARE(shown(site), noticed ? "true 1" : "false 1");
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
    QCOMPARE(shown(site), "true 1");
    // Qt looks names up in a few threads, and starts another where one is still busy; but no poll leaves an
    // object.
    const Census last = Census::takeSettled();
    QVERIFY(last.objects - first.objects < polls);
    QVERIFY(last.descriptors - first.descriptors < polls);

    namesResolve = true;
    QVERIFY(recovers(site));
}

QTEST_GUILESS_MAIN(TestFaults)
#include "tst_faults.moc"
