// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "site.h"

#include <QtTest>

#include <ctime>

/*! Replies that no sound backend sends, though a broken one or a proxy may. */
class TestGarbage : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase() { m_site.reset(); }
    void init();
    void values_data();
    void values();
    void hugeValues_data();
    void hugeValues();
    void hugeGroup();
    void namesWithByteOrderMark();
    void valuesWithoutEnd();

private:
    bool isGoodAgain();
    QString setUpGateway() { return Site::result(m_site->setup(m_site->gateway())); }

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

constexpr char good[] = R"({"timestamp":"2024-05-01T12:00:00Z","status":"Charging",)"
                        R"("phase_1":16,"phase_2":16,"phase_3":16,"meter_value":2500})";

/*! The good record with another member in place of the meter's 2500 Wh. */
QByteArray goodBut(const QByteArray &meterValue)
{
    return QByteArray(good).replace("2500", meterValue);
}

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

void TestGarbage::initTestCase()
{
    m_site = std::make_unique<Site>();
    m_site->backend.setWallbox("EVSE-02", 16);
    QCOMPARE(m_site->addGateway(), QString());
}

/*! Each test begins with two wallboxes that charge. */
void TestGarbage::init()
{
    m_site->backend.answer(ScriptedBackend::Values, 200, valuesOf(good));
    QVERIFY(m_site->poll());
    m_site->wallbox("EVSE-01")->setStateValue("totalEnergyConsumed", 0);
    m_site->log.clear();
    watched()->longest = 0;
}

void TestGarbage::values_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QString>("changes"); // at EVSE-01; empty if the poll fails
    const auto row = [](const char *name, const QByteArray &reply, const char *changes) {
        QTest::newRow(name) << reply << changes;
    };
    const char absent[] = "connected false";
    const char oneMore[] = "sessionEnergy 3.5, totalEnergyConsumed 1";
    const QByteArray gzip = "Content-Encoding: gzip\r\n";
    const auto packed = QByteArray::fromBase64(
        "H4sIAAAAAAACA6tWKi5NTk4tLlayKikqTdVRKkvMKU0F8qqVXMOCXXUNDEHMkszc1OKSxNwCJSslIwMj"
        "E10DU6BMiKGRlYEBEEUp6SgBpUtKgfqUnDMSi9Iz89KBYgUZicWp8UATDM1gHCNkjjGEk5takloUD7ZY"
        "ycrY1MCgVgdquRGdLTcCWV5bCwBREUT+FQEAAA==");
    row("HTML", response("<!DOCTYPE html><html><body>Sign in</body></html>"), absent);
    row("array at the top", response('[' + valuesOf(good) + ']'), absent);
    row("null for values", response(R"({"success":true,"values":null})"), absent);
    row("beyond all numbers", response(valuesOf(R"({"phase_1":1e999})")), absent);
    row("NaN", response(valuesOf(R"({"phase_1":NaN})")), absent);
    row("invalid UTF-8", response(valuesOf("{\"status\":\"Char\xff\"}")), absent);
    row("cut JSON", response(valuesOf(good).chopped(1)), absent);
    row("deep nesting", response(QByteArray(100000, '[') + QByteArray(100000, ']')), absent);
    row("cut gzip", response(packed.chopped(20), gzip), absent);
    // A success, as every status below 400, and not followed.
    row("redirect", "HTTP/1.1 302 Found\r\nLocation: /\r\nContent-Length: 0\r\n\r\n", absent);

    row("cut body", response(valuesOf(goodBut("3500"))).chopped(1), "");
    row("no HTTP", "SSH-2.0-OpenSSH_9.2\r\n", "");
    row("gzip that is none", response(valuesOf(goodBut("3500")), gzip), "");

    row("record is null", response(valuesOf("null")),
        "sessionEnergy 0, state Unavailable, charging false, currentPower 0, currentPhaseA 0, "
        "currentPhaseB 0, currentPhaseC 0, phaseCount 1");
    row("numbers as text", response(valuesOf(R"({"status":"Charging","phase_1":"16","meter_value":"2500"})")),
        "sessionEnergy 0, currentPower 0, currentPhaseA 0, currentPhaseB 0, currentPhaseC 0, phaseCount 1");
    row("1e308 A",
        response(valuesOf(R"({"status":"Charging","phase_1":1e308,"phase_2":1e308,"meter_value":2500})")),
        "currentPower inf, currentPhaseA 1e+308, currentPhaseB 1e+308, currentPhaseC 0, phaseCount 2");
    // What a meter shows is counted, however much it is.
    row("1e308 Wh", response(valuesOf(goodBut("1e308"))), "sessionEnergy 1e+305, totalEnergyConsumed 1e+305");
    row("unknown ids", response(valuesOf(withStrangers(goodBut("3500"), strangers))), oneMore);
    row("duplicate keys", response(valuesOf(goodBut("3500").replace("{", R"({"meter_value":1,)"))), oneMore);
    row("gzip", response(packed, gzip), oneMore);
}

void TestGarbage::values()
{
    QFETCH(QByteArray, reply);
    QFETCH(QString, changes);
    const StateWatch first(m_site->wallbox("EVSE-01"));
    const StateWatch second(m_site->wallbox("EVSE-02"));
    m_site->backend.hangUp(ScriptedBackend::Values, reply);
    QVERIFY(m_site->poll());
    QVERIFY2(watched()->longest < allowed, qPrintable(QString::number(watched()->longest)));
    QCOMPARE(first.changes.join(", "), changes);
    QCOMPARE(second.changes.join(", "), changes == "connected false" ? changes : QString());
    QCOMPARE(m_site->log.warnings().size(), changes.isEmpty() ? 1 : 0);
    QVERIFY(isGoodAgain());
}

/*! Whether the next poll with good values brings everything back. */
bool TestGarbage::isGoodAgain()
{
    m_site->backend.answer(ScriptedBackend::Values, 200, valuesOf(good));
    return m_site->poll() && m_site->state("EVSE-01", "connected").toBool()
        && m_site->state("EVSE-02", "connected").toBool() && m_site->state("EVSE-01", "currentPower") == 11040
        && m_site->state("EVSE-01", "sessionEnergy") == 2.5;
}

void TestGarbage::hugeValues_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<double>("allowedTime"); // ms
    QTest::addColumn<QString>("change");
    QTest::newRow("HTML") << "<html>" + QByteArray(hugeSize, ' ') << allowed << "connected false";
    // To be read whole it takes more than 0.1 s: some 20 ms a megabyte.
    QTest::newRow("JSON") << valuesOf(withStrangers(goodBut("3500"), hugeSize / 40)) << 30 * allowed
                          << "totalEnergyConsumed 1";
}

/*! 50 MB in one reply, without debug output, which would be longer still. */
void TestGarbage::hugeValues()
{
    QFETCH(QByteArray, body);
    QFETCH(double, allowedTime);
    QFETCH(QString, change);
    const StateWatch watch(m_site->wallbox("EVSE-01"));
    QLoggingCategory::setFilterRules("Vela.debug=false");
    m_site->backend.answer(ScriptedBackend::Values, 200, body);
    m_site->tick();
    QTRY_VERIFY_WITH_TIMEOUT(watch.changes.contains(change), 30000);
    QLoggingCategory::setFilterRules(QString());
    qInfo("%d bytes keep the event loop busy for %.1f ms", body.size(), watched()->longest);
    QVERIFY(watched()->longest < allowedTime);
    QVERIFY(isGoodAgain());
}

/*! A set-up with far too many wallboxes in the answer: the next one puts everything right. */
void TestGarbage::hugeGroup()
{
    m_site->backend.answer(ScriptedBackend::GroupInfo, 200,
                           R"({"evse_ids":{"EVSE-01":{})" + withStrangers("", strangers) + "}}");
    QCOMPARE(setUpGateway(), QString("NoError"));
    QTRY_COMPARE(m_site->wallboxes().size(), 32);
    QVERIFY2(watched()->longest < allowed, qPrintable(QString::number(watched()->longest)));
    m_site->backend.answerNormally(ScriptedBackend::GroupInfo);
    QCOMPARE(setUpGateway(), QString("NoError"));
    QTRY_COMPARE(m_site->infraIds(), (QStringList{"EVSE-01", "EVSE-02"}));
    QVERIFY(isGoodAgain());
}

/*! Qt drops the mark when it reads such a name, but keeps it when it looks the name up: the wallbox went and
    came at each set-up. */
void TestGarbage::namesWithByteOrderMark()
{
    m_site->backend.answer(ScriptedBackend::GroupInfo, 200, "{\"evse_ids\":{\"\xef\xbb\xbf\x45VSE-01\":{}}}");
    m_site->backend.answer(ScriptedBackend::Values, 200,
                           valuesOf(goodBut("3500")).replace("EVSE", "\xef\xbb\xbf\x45VSE"));
    const QPointer<Thing> wallbox = m_site->wallbox("EVSE-01");
    const StateWatch watch(wallbox);
    QCOMPARE(setUpGateway(), QString("NoError"));
    QTRY_COMPARE(m_site->infraIds(), QStringList("EVSE-01"));
    QVERIFY(m_site->poll());
    QCOMPARE(m_site->wallbox("EVSE-01"), wallbox.data());
    QCOMPARE(watch.changes, (QStringList{"sessionEnergy 3.5", "totalEnergyConsumed 1"}));
    m_site->backend.answerNormally(ScriptedBackend::GroupInfo);
    QCOMPARE(setUpGateway(), QString("NoError"));
}

/*! Other polls go on by other connections, and what never ends is never applied. */
void TestGarbage::valuesWithoutEnd()
{
    m_site->backend.hold(ScriptedBackend::Values);
    m_site->backend.forgetRequests();
    m_site->tick();
    QTRY_COMPARE(m_site->backend.requests(ScriptedBackend::Values).size(), 1);
    QVERIFY(m_site->backend.sendPart(ScriptedBackend::Values,
                                     "HTTP/1.1 200 OK\r\n\r\n" + valuesOf(goodBut("3500"))));
    m_site->backend.answer(ScriptedBackend::Values, 200, valuesOf(good));
    const StateWatch watch(m_site->wallbox("EVSE-01"));
    for (int i = 0; i < 20; ++i) {
        QVERIFY(m_site->backend.sendPart(ScriptedBackend::Values, QByteArray(1000000, ' ')));
        QVERIFY(m_site->poll());
    }
    QVERIFY2(watched()->longest < allowed, qPrintable(QString::number(watched()->longest)));
    QCOMPARE(watch.changes, QStringList());
}

int main(int argc, char *argv[])
{
    WatchedApplication application(argc, argv);
    TestGarbage test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_garbage.moc"
