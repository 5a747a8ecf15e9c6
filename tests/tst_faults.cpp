// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "census.h"
#include "site.h"
#include "waiting.h"

#include <QtTest>

#include <atomic>
#include <ctime>
#include <dlfcn.h>
#include <netdb.h>

using Backend = ScriptedBackend;

/*! Replies that are too large or too odd for a transcript, and faults of the network whose outcome differs.
    */
class TestFaults : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase() { m_site.reset(); }
    void init();
    void reply_data();
    void reply();
    void hugeGroup();
    void namesWithByteOrderMark();
    void replyWithoutEnd();
    void cutAfterTheData();
    void nameFailure();

private:
    QString setUpGateway() { return Site::result(m_site->setup(m_site->gateway())); }
    bool isGoodAgain();

    std::unique_ptr<Site> m_site; // with EVSE-01 and EVSE-02; one for all, since each row needs only a poll
};

namespace {

#ifdef VELA_SANITIZED
constexpr double allowed = 1000; // ms; sanitizers make everything ten times as slow, and allocating far more
constexpr int share = 50;        // of the big replies
#else
constexpr double allowed = 100; // ms
constexpr int share = 1;
#endif
constexpr int hugeSize = 50000000 / share;
constexpr int strangers = 10000 / share;

/*! Measures for how long the event loop is not free: the longest event so far, in ms of the thread's own
    time, so that neither another process nor the backend, which shares the thread, counts. */
class WatchedApplication : public QCoreApplication
{
public:
    using QCoreApplication::QCoreApplication;

    bool notify(QObject *receiver, QEvent *event) override
    {
        if (m_depth > 0 || isBackend(receiver))
            return QCoreApplication::notify(receiver, event);
        ++m_depth;
        const double start = now();
        const bool result = QCoreApplication::notify(receiver, event);
        longest = std::max(longest, now() - start);
        --m_depth;
        return result;
    }

    double longest = 0;

private:
    static bool isBackend(const QObject *object)
    {
        while (object && !qobject_cast<const QTcpServer *>(object))
            object = object->parent();
        return object;
    }

    static double now()
    {
        timespec time = {};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
    }

    int m_depth = 0;
};

WatchedApplication *watched()
{
    return static_cast<WatchedApplication *>(QCoreApplication::instance());
}

std::atomic<bool> namesResolve{true};

constexpr char good[] = R"({"timestamp":"2024-05-01T12:00:00Z","status":"Charging",)"
                        R"("phase_1":16,"phase_2":16,"phase_3":16,"meter_value":2500})";
constexpr char oneMore[] =
    R"({"status":"Charging","phase_1":16,"phase_2":16,"phase_3":16,"meter_value":3500})";

/*! A values reply with \a record for EVSE-01 and the good one for EVSE-02. */
QByteArray valuesOf(const QByteArray &record)
{
    return R"({"success":true,"values":{"EVSE-01":)" + record + R"(,"EVSE-02":)" + good + "}}";
}

/*! The record for EVSE-01, and behind it those of \a count wallboxes that nobody knows. */
QByteArray withStrangers(const QByteArray &record, int count)
{
    QByteArray result = record;
    for (int i = 0; i < count; ++i)
        result += ",\"STRANGER-" + QByteArray::number(i) + R"(":{"status":"Charging"})";
    return result;
}

QByteArray response(const QByteArray &body, const QByteArray &header = QByteArray())
{
    return "HTTP/1.1 200 OK\r\n" + header + "Content-Length: " + QByteArray::number(body.size()) + "\r\n\r\n"
        + body;
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

void TestFaults::initTestCase()
{
    m_site = std::make_unique<Site>();
    m_site->backend.setWallbox("EVSE-02", 16);
    QCOMPARE(m_site->addGateway(), QString());
}

/*! Each test begins with two wallboxes that charge. */
void TestFaults::init()
{
    QVERIFY(isGoodAgain());
    m_site->wallbox("EVSE-01")->setStateValue("totalEnergyConsumed", 0);
    m_site->log.clear();
    m_site->backend.forgetRequests();
    watched()->longest = 0;
}

/*! Whether a poll with good values brings everything back. */
bool TestFaults::isGoodAgain()
{
    m_site->backend.answer(Backend::Values, 200, valuesOf(good));
    return m_site->poll() && m_site->state("EVSE-01", "connected").toBool()
        && m_site->state("EVSE-02", "connected").toBool() && m_site->state("EVSE-01", "currentPower") == 11040
        && m_site->state("EVSE-01", "sessionEnergy") == 2.5;
}

void TestFaults::reply_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<double>("allowedTime"); // ms
    QTest::addColumn<QString>("changes");    // at EVSE-01
    const auto row = [](const char *name, const QByteArray &bytes, const char *changes,
                        double time = allowed) { QTest::newRow(name) << bytes << time << changes; };
    const char absent[] = "connected false";
    const char counted[] = "sessionEnergy 3.5, totalEnergyConsumed 1";
    const char gzip[] = "Content-Encoding: gzip\r\n";
    const auto packed = QByteArray::fromBase64(
        "H4sIAAAAAAACA6tWKi5NTk4tLlayKikqTdVRKkvMKU0F8qqVXMOCXXUNDEHMkszc1OKSxNwCJSslIwMj"
        "E10DU6BMiKGRlYEBEEUp6SgBpUtKgfqUnDMSi9Iz89KBYgUZicWp8UATDM1gHCNkjjGEk5takloUD7ZY"
        "ycrY1MCgVgdquRGdLTcCWV5bCwBREUT+FQEAAA==");
    row("gzip", response(packed, gzip), counted);
    row("cut gzip", response(packed.chopped(20), gzip), absent);
    row("invalid UTF-8", response(valuesOf("{\"status\":\"Char\xff\"}")), absent);
    row("deep nesting", response(QByteArray(100000, '[') + QByteArray(100000, ']')), absent);
    row("unknown ids", response(valuesOf(withStrangers(oneMore, strangers))), counted);
    row("huge HTML", response("<html>" + QByteArray(hugeSize, ' ')), absent);
    // To be read whole it takes more than 0.1 s: some 20 ms a megabyte.
    row("huge JSON", response(valuesOf(withStrangers(oneMore, hugeSize / 40))), counted, 30 * allowed);
}

void TestFaults::reply()
{
    QFETCH(QByteArray, bytes);
    QFETCH(double, allowedTime);
    QFETCH(QString, changes);
    const StateWatch first(m_site->wallbox("EVSE-01"));
    const StateWatch second(m_site->wallbox("EVSE-02"));
    QLoggingCategory::setFilterRules("Vela.debug=false"); // would take longer than the reply
    m_site->backend.hangUp(Backend::Values, bytes);
    m_site->tick();
    QVERIFY(waitFor([&] { return first.changes.join(", ") == changes; }));
    QLoggingCategory::setFilterRules(QString());
    QCOMPARE(second.changes.join(", "), changes == "connected false" ? changes : QString());
    QVERIFY2(watched()->longest < allowedTime, qPrintable(QString::number(watched()->longest)));
    QCOMPARE(m_site->log.warnings(), QStringList());
    QVERIFY(isGoodAgain());
}

/*! A set-up with far too many wallboxes in the answer: the next one puts everything right. */
void TestFaults::hugeGroup()
{
    m_site->backend.answer(Backend::GroupInfo, 200,
                           R"({"evse_ids":{"EVSE-01":{})" + withStrangers("", strangers) + "}}");
    QCOMPARE(setUpGateway(), QString("NoError"));
    QTRY_COMPARE(m_site->wallboxes().size(), 32);
    QVERIFY2(watched()->longest < allowed, qPrintable(QString::number(watched()->longest)));
    m_site->backend.answerNormally(Backend::GroupInfo);
    QCOMPARE(setUpGateway(), QString("NoError"));
    QTRY_COMPARE(m_site->infraIds(), (QStringList{"EVSE-01", "EVSE-02"}));
    QVERIFY(isGoodAgain());
}

/*! Qt drops the mark when it reads such a name, but keeps it when it looks the name up: the wallbox went and
    came at each set-up. */
void TestFaults::namesWithByteOrderMark()
{
    m_site->backend.answer(Backend::GroupInfo, 200, "{\"evse_ids\":{\"\xef\xbb\xbf\x45VSE-01\":{}}}");
    m_site->backend.answer(Backend::Values, 200, valuesOf(oneMore).replace("EVSE", "\xef\xbb\xbf\x45VSE"));
    const QPointer<Thing> wallbox = m_site->wallbox("EVSE-01");
    const StateWatch watch(wallbox);
    QCOMPARE(setUpGateway(), QString("NoError"));
    QTRY_COMPARE(m_site->infraIds(), QStringList("EVSE-01"));
    QVERIFY(m_site->poll());
    QCOMPARE(m_site->wallbox("EVSE-01"), wallbox.data());
    QCOMPARE(watch.changes, (QStringList{"sessionEnergy 3.5", "totalEnergyConsumed 1"}));
    m_site->backend.answerNormally(Backend::GroupInfo);
    QCOMPARE(setUpGateway(), QString("NoError"));
    QTRY_COMPARE(m_site->infraIds(), (QStringList{"EVSE-01", "EVSE-02"}));
}

/*! Other polls go on by other connections, and what never ends is never applied. */
void TestFaults::replyWithoutEnd()
{
    m_site->backend.hold(Backend::Values);
    m_site->tick();
    QTRY_COMPARE(m_site->backend.requests().size(), 1);
    QVERIFY(m_site->backend.sendPart(Backend::Values, "HTTP/1.1 200 OK\r\n\r\n" + valuesOf(oneMore)));
    m_site->backend.answer(Backend::Values, 200, valuesOf(good));
    const StateWatch watch(m_site->wallbox("EVSE-01"));
    for (int i = 0; i < 20; ++i) {
        QVERIFY(m_site->backend.sendPart(Backend::Values, QByteArray(1000000, ' ')));
        QVERIFY(m_site->poll());
    }
    QVERIFY2(watched()->longest < allowed, qPrintable(QString::number(watched()->longest)));
    QCOMPARE(watch.changes, QStringList());
    m_site->backend.closeConnections();
    QVERIFY(settle()); // what has come counts as the whole reply
}

/*! A reply whose connection closes after its first part: Qt takes some of them for whole. The body is then no
    JSON, and a poll without values. */
void TestFaults::cutAfterTheData()
{
    for (int round = 0; round < 20; ++round) {
        QVERIFY(isGoodAgain());
        m_site->log.clear();
        m_site->backend.forgetRequests();
        m_site->backend.hold(Backend::Values);
        m_site->tick();
        QTRY_COMPARE(m_site->backend.requests().size(), 1);
        QVERIFY(m_site->backend.sendPart(Backend::Values,
                                         "HTTP/1.1 200 OK\r\nContent-Length: 99\r\n\r\n{\"success\""));
        QVERIFY(waitFor([this] { return m_site->backend.isSent(Backend::Values); }));
        m_site->backend.closeConnections();
        QVERIFY(settle());
        const QString warning = m_site->log.warnings().join('\n');
        QVERIFY(warning.isEmpty() || warning.contains("RemoteHostClosedError"));
        QCOMPARE(m_site->state("EVSE-01", "connected").toBool(), !warning.isEmpty());
        QCOMPARE(m_site->state("EVSE-01", "currentPhaseA"), QVariant(16));
    }
}

/*! The last test: it aims the site at a name. */
void TestFaults::nameFailure()
{
    namesResolve = false;
    m_site->discover(m_site->backend.url().replace("127.0.0.1", "yard.test"), "yard", "s3cret");
    QVERIFY(m_site->poll());
    const Census first = Census::takeSettled();
    m_site->log.clear();
    constexpr int polls = 30;
    for (int i = 0; i < polls; ++i)
        QVERIFY(m_site->poll());
    QCOMPARE(m_site->log.warnings().filter("QNetworkReply::HostNotFoundError").size(), polls);
    QVERIFY(m_site->state("EVSE-01", "connected").toBool());
    // Qt looks names up in a few threads, and starts another where one is still busy; but no poll leaves an
    // object.
    const Census last = Census::takeSettled();
    QVERIFY(last.objects - first.objects < polls);
    QVERIFY(last.descriptors - first.descriptors < polls);
    namesResolve = true;
    QVERIFY(isGoodAgain());
}

int main(int argc, char *argv[])
{
    WatchedApplication application(argc, argv);
    TestFaults test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_faults.moc"
