// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include <simulatedwallbox.h>

#include <QtTest>

using namespace std::chrono_literals;

/*! The simulator's model, where it is too slow or too fast for transcripts/simulator-model.txt. */
class TestSimulatedWallbox : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void meterCountsTheSession();
};

void TestSimulatedWallbox::meterCountsTheSession()
{
    constexpr Seconds readyTime{3}; // how long a car takes from the plug to its first ampere
    SimulatedWallbox wallbox;
    wallbox.plugIn({3, 16});
    wallbox.advance(readyTime + 30min); // getting ready takes no energy, however long the step is
    QCOMPARE(wallbox.sessionEnergy(), 5520.0);
    wallbox.limit = {8, {}};
    wallbox.advance(15min);
    QCOMPARE(wallbox.sessionEnergy(), 6900.0);
    wallbox.pause();
    wallbox.advance(1h);
    wallbox.isBroken = true;
    wallbox.resume();
    wallbox.advance(1h);
    QCOMPARE(wallbox.sessionEnergy(), 6900.0);
    wallbox.unplug(); // the display keeps it
    wallbox.advance(1h);
    QCOMPARE(wallbox.sessionEnergy(), 6900.0);
    wallbox.plugIn({});
    QCOMPARE(wallbox.sessionEnergy(), 0.0);
}

QTEST_APPLESS_MAIN(TestSimulatedWallbox)
#include "tst_simulatedwallbox.moc"
