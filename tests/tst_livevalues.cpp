// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "chargelimits.h"
#include "livevalues.h"

#include <QDateTime>
#include <QtTest>

#include <limits>

/*! The pure functions that the plugin's states and limits are made with. */
class TestLiveValues : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void status_data();
    void status();
    void currents_data();
    void currents();
    void timestamp_data();
    void timestamp();
    void localTime_data();
    void localTime();
    void silence_data();
    void silence();
};

void TestLiveValues::initTestCase()
{
    qputenv("TZ", "UTC-2"); // local time and UTC must not be the same
}

void TestLiveValues::status_data()
{
    QTest::addColumn<QString>("state");
    QTest::addColumn<bool>("charging");
    for (const char *status : {"Available", "Preparing", "SuspendedEVSE", "SuspendedEV", "Finishing",
                               "Reserved", "Unavailable", "Faulted"})
        QTest::newRow(status) << status << false;
    QTest::newRow("Charging") << "Charging" << true;
    for (const char *unknown : {"", "charging", "CHARGING", "Charging ", "Occupied"})
        QTest::newRow(unknown) << "Unavailable" << false;
}

void TestLiveValues::status()
{
    const LiveValues values = mapLiveValues({
        {"status", QTest::currentDataTag()}
    });
    QTEST(values.state, "state");
    QTEST(values.charging, "charging");
    QTEST(isCharging(values.state), "charging");
}

void TestLiveValues::currents_data()
{
    QTest::addColumn<QVector<double>>("sent");
    QTest::addColumn<QVector<double>>("shown");
    QTest::addColumn<double>("power");
    QTest::addColumn<int>("phases");
    using V = QVector<double>;
    QTest::newRow("1 A is the least") << V{0.99, 1.0, 16} << V{0, 1, 16} << 3910.0 << 2;
    QTest::newRow("1 A on every phase") << V{1, 1, 1} << V{1, 1, 1} << 690.0 << 3;
    QTest::newRow("just below on all") << V{0.999, 0.999, 0.999} << V{0, 0, 0} << 0.0 << 1;
    QTest::newRow("negative") << V{-16, -1, 6} << V{0, 0, 6} << 1380.0 << 1;
    QTest::newRow("one phase, not the first") << V{0, 0, 10} << V{0, 0, 10} << 2300.0 << 1;
    QTest::newRow("rounded up, not to the nearest") << V{2.0001, 0, 0} << V{2.0001, 0, 0} << 460.03 << 1;
    QTest::newRow("double arithmetic") << V{6.37, 6.37, 6.37} << V{6.37, 6.37, 6.37} << 4395.3 << 3;
}

void TestLiveValues::currents()
{
    QFETCH(QVector<double>, sent);
    QFETCH(double, power);
    const LiveValues values = mapLiveValues({
        {"phase_1", sent[0]},
        {"phase_2", sent[1]},
        {"phase_3", sent[2]}
    });
    const QVector<double> shown{values.currentPhaseA, values.currentPhaseB, values.currentPhaseC};
    QTEST(shown, "shown");
    QVERIFY2(activePower(values) == power, qPrintable(QString::number(activePower(values), 'g', 17)));
    QTEST(activePhases(shown[0], shown[1], shown[2]), "phases");
}

void TestLiveValues::timestamp_data()
{
    QTest::addColumn<qint64>("time"); // -1: no date-time
    const qint64 noon = 1714564800;   // 2024-05-01 12:00 UTC
    QTest::newRow("2024-05-01T12:00:00Z") << noon;
    QTest::newRow("2024-05-01T12:00:00.500Z") << noon;
    QTest::newRow("2024-05-01T12:00:00.999Z") << noon;
    QTest::newRow("2024-05-01T14:00:00+02:00") << noon;
    QTest::newRow("2024-05-01T06:30:00-05:30") << noon;
    QTest::newRow("2024-05-01T14:00:00") << noon; // no designator: local time
    QTest::newRow("1969-12-31T23:59:50Z") << qint64(-10);
    QTest::newRow("2100-01-01T00:00:00Z") << qint64(4102444800);
    for (const char *unreadable : {"", "yesterday", "2024-13-01T12:00:00Z", "1714564800", "12:00:00Z"})
        QTest::newRow(unreadable) << qint64(-1);
}

void TestLiveValues::timestamp()
{
    const LiveValues values = mapLiveValues({
        {"timestamp", QTest::currentDataTag()}
    });
    QTEST(values.timestamp.isNull() ? -1 : values.timestamp.toSecsSinceEpoch(), "time");
    QCOMPARE(values.timestampText, QTest::currentDataTag());
}

void TestLiveValues::localTime_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<qint64>("time");
    QTest::newRow("2024-05-01T12:00:00") << QByteArray("UTC-2") << qint64(1714557600);
    // The daemon's zone may change while it runs.
    QTest::newRow("2024-05-01T12:00:00.000") << QByteArray("UTC-3") << qint64(1714554000);
    // In the hour that summer time leaves out: no valid local time, but a date-time all the same.
    QTest::newRow("2024-03-31T02:30:00") << QByteArray("CET-1CEST,M3.5.0,M10.5.0/3") << qint64(1711845000);
}

void TestLiveValues::localTime()
{
    QFETCH(QByteArray, zone);
    const QByteArray before = qgetenv("TZ");
    qputenv("TZ", zone);
    const QDateTime time = mapLiveValues({
                                             {"timestamp", QTest::currentDataTag()}
    })
                               .timestamp;
    const qint64 seconds = time.toSecsSinceEpoch();
    qputenv("TZ", before);
    QVERIFY(!time.isNull());
    QTEST(seconds, "time");
}

void TestLiveValues::silence_data()
{
    QTest::addColumn<qint64>("lastAction");
    QTest::addColumn<bool>("silent");
    QTest::newRow("no action yet") << qint64(0) << true;
    QTest::newRow("30 s ago") << qint64(70) << false;
    QTest::newRow("31 s ago") << qint64(69) << true;
    QTest::newRow("clock set back") << qint64(3700) << false;
    QTest::newRow("more than 32 bits ago") << std::numeric_limits<qint64>::min() + 101 << true;
}

void TestLiveValues::silence()
{
    QFETCH(qint64, lastAction);
    QTEST(isSilent(lastAction, 100), "silent");
    QVERIFY(isSilent(0, 10)); // no action yet, and the clock at its beginning
}

QTEST_APPLESS_MAIN(TestLiveValues)
#include "tst_livevalues.moc"
