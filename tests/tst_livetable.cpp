// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include <livetable.h>

#include <QJsonDocument>
#include <QtTest>

/*! The table of "watch": what it shows of a wallbox, and how it fits a screen. */
class TestLiveTable : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void cells();
    void fitsTheScreen();
    void rowsAndColours();

private:
    Thing *wallbox(const QVariantMap &states);

    static constexpr qint64 now = 1714564800; // 2024-05-01 12:00 UTC
    QObject m_owner;
};

/*! One that charges, but for what \a states say. */
Thing *TestLiveTable::wallbox(const QVariantMap &states)
{
    QVariantMap values =
        QJsonDocument::fromJson(R"({"connected": true, "state": "Charging", "pluggedIn": true,
        "charging": true, "power": true, "currentPhaseA": 2, "currentPhaseB": 8, "currentPhaseC": 0,
        "maxChargingCurrent": 16, "currentPower": 11040, "sessionEnergy": 1.234, "totalEnergyConsumed": 123.45,
        "timestamp": 1714564701})")
            .toVariant()
            .toMap();
    for (auto it = states.cbegin(); it != states.cend(); ++it)
        values.insert(it.key(), it.value());
    ThingClass thingClass;
    for (auto it = values.cbegin(); it != values.cend(); ++it) {
        StateType type;
        type.id = StateTypeId(QUuid::createUuid());
        type.name = it.key();
        type.defaultValue = it.value();
        thingClass.stateTypes.append(type);
    }
    auto *thing = new Thing(thingClass, ThingId(), &m_owner);
    thing->setName("EVSE-01");
    return thing;
}

void TestLiveTable::cells()
{
    const QList<Thing *> wallboxes{
        wallbox({                      }
        ),
        wallbox({                            {"charging", false},       {"power", false}, {"state", "SuspendedEVSE"}, {"currentPower", 0}}
        ),
        wallbox({ {"connected", false},                       {"charging", false}, {"pluggedIn", false}, {"timestamp", 1}}
        ),
        wallbox({                             {"timestamp", now + 30}  }
        ), // the backend's clock is ahead
        wallbox({             {"timestamp", 0}}
        ),
        wallbox({{"timestamp", now - 120},                       {"state", "\x1b[31m"}}
        ),
    };
    TableStyle style;
    style.unicode = false;
    QStringList lines = liveTable(wallboxes, style, now);
    for (QString &line : lines)
        line = line.simplified();
    QCOMPARE(lines.mid(2),
             QStringList({"EVSE-01 Charging charging ###... 8.0/16 11.04 1.23 123.5 99s",
                          "EVSE-01 SuspendedEVSE plugged ###... 8.0/off 0.00 1.23 123.5 99s",
                          "EVSE-01 not connected - ###... 8.0/16 11.04 1.23 123.5 99d",
                          "EVSE-01 Charging charging ###... 8.0/16 11.04 1.23 123.5 0s",
                          "EVSE-01 Charging charging ###... 8.0/16 11.04 1.23 123.5 -",
                          "EVSE-01 \uFFFD[31m charging ###... 8.0/16 11.04 1.23 123.5 2m",
                          "Total 4 of 6 charging 55.20 7.40 740.7"}));
}

void TestLiveTable::fitsTheScreen()
{
    Thing *full = wallbox({
        {"state",               "SuspendedEVSE"},
        {"currentPhaseA",       32             },
        {"maxChargingCurrent",  32             },
        {"currentPower",        999990         },
        {"sessionEnergy",       9999.99        },
        {"totalEnergyConsumed", 999999.9       }
    });
    full->setName("a wallbox with a name that is longer than any column");
    for (const int width : {40, 70, 80, 200}) {
        TableStyle style;
        style.width = width;
        const QStringList lines = liveTable(
            {
                QList<Thing *>{full, full}
        },
            style, now);
        for (const QString &line : lines)
            QVERIFY2(line.size() <= width, qPrintable(line));
        const QString &shown = lines.at(2);
        QVERIFY2(shown.startsWith("a wall") && shown.contains("SuspendedEVSE") && shown.contains("32.0/32"),
                 qPrintable(shown));
        QCOMPARE(shown.contains("999999.9"), width >= 80); // the total is the first to be left out
    }
}

void TestLiveTable::rowsAndColours()
{
    TableStyle style;
    style.maxRows = 2;
    style.colour = true;
    Thing *thing = wallbox({});
    const QStringList lines = liveTable(
        {
            QList<Thing *>{thing, thing, thing, thing, thing}
    },
        style, now);
    QCOMPARE(lines.size(), 2 + 2 + 1 + 1);
    QVERIFY(lines.at(2).contains("\x1b[32mCharging") && lines.at(2).contains("███░░░"));
    QCOMPARE(lines.at(4), QString("and 3 more; a taller window shows them"));
    QVERIFY(lines.at(5).contains("5 of 5"));
}

QTEST_GUILESS_MAIN(TestLiveTable)
#include "tst_livetable.moc"
