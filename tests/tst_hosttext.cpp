// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include <livetable.h>
#include <shellwords.h>
#include <thinglookup.h>
#include <values.h>

#include <QtTest>

Q_DECLARE_METATYPE(QMetaType::Type)

/*! What the host reads from a user's text, and the texts that it makes. */
class TestHostText : public QObject
{
    Q_OBJECT
private slots:
    void shellWords_data();
    void shellWords();
    void parsedValues_data();
    void parsedValues();
    void thingLookup_data();
    void thingLookup();
    void tableFitsTheScreen();
    void tableCells();
    void tableRowsAndColours();
};

void TestHostText::shellWords_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<QString>("error");
    const QString open = "A quote (%1) is not closed.";
    QTest::newRow("blank") << " \t " << QStringList() << "";
    QTest::newRow("several blanks") << "  a   b\t" << QStringList({"a", "b"}) << "";
    QTest::newRow("carriage return") << "quit\r" << QStringList({"quit"}) << "";
    QTest::newRow("single quotes keep all") << R"('a "b\ $c')" << QStringList({R"(a "b\ $c)"}) << "";
    QTest::newRow("double quotes") << R"("a 'b' \"c\" \\ \n")" << QStringList({R"(a 'b' "c" \ \n)"}) << "";
    QTest::newRow("quotes within a word") << "a'b 'c\" d\"" << QStringList({"ab c d"}) << "";
    QTest::newRow("empty words") << "'' \"\"" << QStringList({"", ""}) << "";
    QTest::newRow("escaped blank") << R"(Lamp\ 1 \#x)" << QStringList({"Lamp 1", "#x"}) << "";
    QTest::newRow("comment") << "things # all of them" << QStringList({"things"}) << "";
    QTest::newRow("no comment within a word") << "a#b '#c'" << QStringList({"a#b", "#c"}) << "";
    QTest::newRow("open single quote") << "show 'Lamp 1" << QStringList() << open.arg("'");
    QTest::newRow("open double quote") << R"(show "Lamp\")" << QStringList() << open.arg("\"");
    QTest::newRow("backslash at the end")
        << "show \\" << QStringList() << "There is nothing behind the backslash at the end.";
}

void TestHostText::shellWords()
{
    QFETCH(QString, line);
    const ShellWords result = splitShellWords(line);
    QTEST(result.words, "words");
    QTEST(result.error, "error");
}

void TestHostText::parsedValues_data()
{
    QTest::addColumn<QMetaType::Type>("type");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QVariant>("value");
    const QVariant none;
    QTest::newRow("true") << QMetaType::Bool << "true" << QVariant(true);
    QTest::newRow("false") << QMetaType::Bool << "false" << QVariant(false);
    QTest::newRow("1 is no bool") << QMetaType::Bool << "1" << none;
    QTest::newRow("uint") << QMetaType::UInt << "16" << QVariant(16u);
    QTest::newRow("greatest uint") << QMetaType::UInt << "4294967295" << QVariant(4294967295u);
    QTest::newRow("too great") << QMetaType::UInt << "4294967296" << none;
    QTest::newRow("negative uint") << QMetaType::UInt << "-1" << none;
    QTest::newRow("fraction") << QMetaType::UInt << "16.5" << none;
    QTest::newRow("number with a unit") << QMetaType::UInt << "16A" << none;
    QTest::newRow("int") << QMetaType::Int << "-7" << QVariant(-7);
    QTest::newRow("double") << QMetaType::Double << "2.5" << QVariant(2.5);
    QTest::newRow("infinite") << QMetaType::Double << "inf" << none;
    QTest::newRow("not a number") << QMetaType::Double << "nan" << none;
    QTest::newRow("text of digits") << QMetaType::QString << "16" << QVariant("16");
    QTest::newRow("empty text") << QMetaType::QString << "" << QVariant("");
}

void TestHostText::parsedValues()
{
    QFETCH(QMetaType::Type, type);
    QFETCH(QString, text);
    QFETCH(QVariant, value);
    ValueRule rule;
    rule.type = type;
    const CheckedValue checked = parseValue(text, rule);
    QCOMPARE(checked.value, value);
    QCOMPARE(checked.value.userType(), value.userType());
    QCOMPARE(checked.error.isEmpty(), value.isValid());
}

void TestHostText::thingLookup_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("error");
    QTest::newRow("whole name") << "EVSE-1" << 0 << "";
    QTest::newRow("beginning of one name") << "EVSE-10" << 1 << "";
    QTest::newRow("beginning of several")
        << "EVSE" << -1 << "\"EVSE\" could be any of EVSE-1, EVSE-10a, EVSE-2.";
    const QString twins = "twin (00000000-0000-4000-8000-000000000003), "
                          "twin (00000000-0000-4000-8000-000000000004).";
    const QString none = "There is no thing \"%1\"; there are EVSE-1, EVSE-10a, EVSE-2, " + twins;
    QTest::newRow("case differs") << "evse-1" << -1 << none.arg("evse-1");
    QTest::newRow("empty") << "" << -1 << none.arg("");
    QTest::newRow("two of a name") << "twin" << -1 << "\"twin\" could be any of " + twins;
    QTest::newRow("id") << "00000000-0000-4000-8000-000000000003" << 3 << "";
    QTest::newRow("id in braces") << "{00000000-0000-4000-8000-000000000004}" << 4 << "";
    QTest::newRow("beginning of an id") << "10000000" << 2 << "";
}

void TestHostText::thingLookup()
{
    QFETCH(QString, text);
    QFETCH(int, index);
    QObject owner;
    Things things;
    const auto add = [&](const QString &name, const char *id) {
        things.append(new Thing(ThingClass(), ThingId(QLatin1String(id)), &owner));
        things.last()->setName(name);
    };
    add("EVSE-1", "00000000-0000-4000-8000-000000000001");
    add("EVSE-10a", "00000000-0000-4000-8000-000000000002");
    add("EVSE-2", "10000000-0000-4000-8000-000000000000");
    add("twin", "00000000-0000-4000-8000-000000000003");
    add("twin", "00000000-0000-4000-8000-000000000004");
    const FoundThing found = findThing(things, text);
    QCOMPARE(found.thing, things.value(index));
    QTEST(found.error, "error");
}

namespace {

constexpr qint64 now = 1714564800; // 2024-05-01 12:00 UTC

LiveRow chargingRow()
{
    LiveRow row;
    row.name = "EVSE-01";
    row.state = "Charging";
    row.connected = row.pluggedIn = row.charging = row.enabled = true;
    row.current = 8;
    row.limit = 16;
    row.power = 11040;
    row.sessionEnergy = 1.234;
    row.totalEnergy = 123.45;
    row.timestamp = now - 99;
    return row;
}

TableStyle plain(int width)
{
    TableStyle style;
    style.width = width;
    style.unicode = false;
    return style;
}

} // namespace

void TestHostText::tableFitsTheScreen()
{
    LiveRow row = chargingRow();
    row.name = "a wallbox with a name that is longer than any column";
    row.state = "SuspendedEVSE";
    row.current = row.limit = 32;
    row.power = 999990;
    row.sessionEnergy = 9999.99;
    row.totalEnergy = 999999.9;
    for (const int width : {40, 70, 80, 200}) {
        const QStringList lines = liveTable(QVector<LiveRow>(32, row), plain(width), now);
        QCOMPARE(lines.size(), 2 + 32 + 1);
        for (const QString &line : lines)
            QVERIFY2(line.size() <= width, qPrintable(line));
        const QString &shown = lines.at(2);
        QVERIFY(shown.startsWith("a wall"));
        QVERIFY(shown.contains("SuspendedEVSE") && shown.contains("32.0/32"));
        QCOMPARE(shown.contains("999999.9"), width >= 80); // the total is the first to be left out
    }
}

void TestHostText::tableCells()
{
    LiveRow off = chargingRow();
    off.charging = off.enabled = false;
    off.state = "SuspendedEVSE";
    off.current = off.power = 0;
    off.timestamp = now + 30; // the backend's clock is ahead
    LiveRow gone = chargingRow();
    gone.connected = gone.pluggedIn = gone.charging = false;
    gone.timestamp = now - qint64(1000) * 86400;
    LiveRow unheard = gone;
    unheard.timestamp = 0;
    const QStringList lines = liveTable({chargingRow(), off, gone, unheard}, plain(80), now);
    const auto cells = [&lines](int line) { return lines.at(line).simplified(); };
    QCOMPARE(cells(2), QString("EVSE-01 Charging charging ###... 8.0/16 11.04 1.23 123.5 99s"));
    QCOMPARE(cells(3), QString("EVSE-01 SuspendedEVSE plugged ...... 0.0/off 0.00 1.23 123.5 0s"));
    QCOMPARE(cells(4), QString("EVSE-01 not connected - ###... 8.0/16 11.04 1.23 123.5 99d"));
    QCOMPARE(cells(5), QString("EVSE-01 not connected - ###... 8.0/16 11.04 1.23 123.5 -"));
    QCOMPARE(cells(6), QString("Total 1 of 4 charging 33.12 4.94 493.8"));
}

void TestHostText::tableRowsAndColours()
{
    TableStyle style;
    style.maxRows = 2;
    style.colour = true;
    const QStringList lines = liveTable(QVector<LiveRow>(5, chargingRow()), style, now);
    QCOMPARE(lines.size(), 2 + 2 + 1 + 1);
    QCOMPARE(lines.at(4), QString("and 3 more; a taller window shows them"));
    QVERIFY(lines.at(5).contains("5 of 5"));
    QVERIFY(lines.at(2).contains("\x1b[32mCharging") && lines.at(2).contains("███░░░"));
}

QTEST_GUILESS_MAIN(TestHostText)
#include "tst_hosttext.moc"
