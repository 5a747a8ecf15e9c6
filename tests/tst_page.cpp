// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "simulatorprocess.h"
#include "webdriver.h"

#include <QtTest>

namespace {

constexpr QChar tab(0xe004);
constexpr QChar enter(0xe007);

QString card(int number)
{
    return QString(".card[data-id='EVSE-0%1'] ").arg(number);
}

} // namespace

/*! The simulator's page in a real browser. Its cars get ready in half a second. */
class TestPage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase() { m_browser.reset(); }
    void init();
    void cleanup() { m_simulator.reset(); }

    void currentShowsOnCardAndPlot();
    void keyboardAloneSuffices();
    void saysWhenNobodyAnswers();
    void asksWhenTheStreamIsBroken();
    void actionsReachTheControlEndpoint();
    void anyIdIsText();
    void anyRequestIsText();
    void fitsTheWindow();

private:
    void startSimulator(int port, int wallboxes);
    void setLimit(int ampere);
    QString state(const QString &path);
    double height(const QString &line, int end);

    std::unique_ptr<WebDriver> m_browser;
    std::unique_ptr<SimulatorProcess> m_simulator;
};

void TestPage::initTestCase()
{
    if (!WebDriver::isInstalled())
        QSKIP("there is no chromedriver: install Debian's chromium and chromium-driver to test the page");
    m_browser = std::make_unique<WebDriver>();
    QVERIFY2(m_browser->error().isEmpty(), qPrintable(m_browser->error()));
}

void TestPage::init()
{
    startSimulator(0, 4);
    m_browser->open(m_simulator->url());
    QVERIFY(m_browser->shows("#link", "Live"));
}

void TestPage::currentShowsOnCardAndPlot()
{
    m_browser->click(card(4) + "[data-path=plug] button");
    QVERIFY(m_browser->shows(card(4) + ".status", "Charging"));
    QVERIFY(m_browser->shows(card(4) + ".power-now", "11.04 kW")); // 3 phases of 16 A
    m_browser->click(card(1) + ".id");
    QVERIFY(m_browser->shows("#power-now", "11.04 kW"));
    const double before = height("power", 1);
    QVERIFY(height("limit", 1) < before); // y grows downwards: the wallbox would let the car take more

    setLimit(10);
    QVERIFY(m_browser->shows(card(1) + ".limit", "10 A, "));
    QVERIFY(m_browser->shows("#power-now", "6.90 kW"));
    QTRY_COMPARE(m_browser->run("return document.querySelector('#plot .label')?.textContent").toString(),
                 "10 A");
    QVERIFY(height("power", 1) > before);
    QCOMPARE(height("power", 1), height("limit", 1));

    m_browser->open(m_simulator->url()); // a page that is opened later shows what has been
    QVERIFY(m_browser->shows("#log", "set_limits"));
    m_browser->click(card(1) + ".id");
    QTRY_COMPARE(height("power", 0), before);
    QCOMPARE(height("power", 1), height("limit", 1));
    m_browser->click("#log summary");
    QVERIFY(m_browser->shows("#log .body", "\"value\": 10"));
    QVERIFY(m_browser->shows("#log .body", "\"secret\": \"***\""));
}

// Plugs a small one-phase car in, and out again.
void TestPage::keyboardAloneSuffices()
{
    const QString isThere = "return document.activeElement.matches(arguments[0])";
    for (int presses = 0; presses < 60 && !m_browser->run(isThere, {card(4) + "[name=phases]"}).toBool();
         ++presses)
        m_browser->press(tab);
    m_browser->press(QString("1") + tab + "10" + tab + enter);
    QVERIFY(m_browser->shows("#toast", "EVSE-04: plug in, done"));
    QCOMPARE(state("wallboxes.3.car.phases"), "1");
    QCOMPARE(state("wallboxes.3.car.maxCurrent"), "10");
    // The button that had the focus is gone, and the next one has it.
    QCOMPARE(m_browser->run("return document.activeElement.innerText").toString(), "Unplug");
    m_browser->press(enter);
    QVERIFY(m_browser->shows(card(4) + ".status", "Available"));
    QVERIFY(m_browser->run(isThere, {card(4) + '*'}).toBool());
}

void TestPage::saysWhenNobodyAnswers()
{
    const int port = m_simulator->url().port();
    m_simulator.reset();
    QVERIFY(m_browser->shows("#link", "No answer"));
    QVERIFY(m_browser->shows("#outage", "No answer from the simulator since"));
    QVERIFY(m_browser->shows(card(1) + ".status", "Charging")); // what was known stays in sight
    m_browser->click(card(1) + "[data-path=unplug]");
    QVERIFY(m_browser->shows("#toast", "EVSE-01: unplug failed"));

    startSimulator(port, 2);
    QVERIFY(m_browser->shows("#link", "Live"));
    QVERIFY(m_browser->shows("#outage", ""));
    QVERIFY(m_browser->shows("#wallbox-count", "2"));
    m_browser->click(card(1) + "[data-path=unplug]");
    QVERIFY(m_browser->shows(card(1) + ".status", "Available"));
}

void TestPage::asksWhenTheStreamIsBroken()
{
    m_browser->run("window.Streams = EventSource; window.EventSource = class extends Streams {"
                   "constructor() { super('/control/no-such-stream'); } }");
    const int port = m_simulator->url().port();
    m_simulator.reset();
    startSimulator(port, 4);
    QVERIFY(m_browser->shows("#link", "Asking every 2 s"));
    QVERIFY(m_browser->shows("#outage", "the page asks every 2 s instead"));
    setLimit(8);
    QVERIFY(m_browser->shows(card(1) + ".limit", "8 A, "));
    QVERIFY(m_browser->shows("#log", "set_limits"));
    m_browser->run("window.EventSource = Streams");
    QVERIFY(m_browser->shows("#link", "Live"));
}

void TestPage::actionsReachTheControlEndpoint()
{
    const QString second = card(2);
    const struct
    {
        QStringList steps; // what to click, or to fill: "selector|text"
        QString path;      // into the state
        QString value;
    } story[] = {
        {{second + "[data-path=pause]"},                                                     "wallboxes.1.status", "SuspendedEV"},
        {{second + "[data-path=resume]"},                                                    "wallboxes.1.status", "Charging"   },
        {{second + "summary", second + "[data-path=break]"},                                 "wallboxes.1.status", "Faulted"    },
        {{second + "[data-path=mend]"},                                                      "wallboxes.1.status", "Charging"   },
        {{second + "[name=maxChargingCurrent]|20", second + "[data-path=configure] button"},
         "wallboxes.1.maxChargingCurrent",                                                                         "20"         },
        {{second + "[data-path=finish]"},                                                    "wallboxes.1.status", "Finishing"  },
        {{second + "[data-path=unplug]"},                                                    "wallboxes.1.status", "Available"  },
        {{second + "[data-path=remove]"},                                                    "wallboxes.1.id",     "EVSE-03"    },
        {{".add [name=id]|A1", ".add [name=maxChargingCurrent]|16", "#add"},                 "wallboxes.0.id",     "A1"         },
        {{"[name=status]|503", "[name=delayMs]|10", "[data-path=fault] button"},             "fault.status",       "503"        },
        {{"[name=garbage]", "[data-path=fault] button"},                                     "fault.garbage",      "true"       },
        {{"[name=silent]", "[data-path=fault] button"},                                      "fault.silent",       "true"       },
        {{"#behave"},                                                                        "fault.status",       ""           },
        {{"[name=group]|north", "[data-path=group] button"},                                 "group",              "north"      },
        {{"[name=factor]|2.5", "[data-path=speed] button"},                                  "speed",              "2.5"        },
    };
    for (const auto &[steps, path, value] : story) {
        for (const QString &step : steps) {
            if (step.contains('|'))
                m_browser->fill(step.section('|', 0, 0), step.section('|', 1));
            else
                m_browser->click(step);
        }
        QTRY_COMPARE(path + ": " + state(path), path + ": " + value);
        QVERIFY(m_browser->shows("#toast", "done"));
    }
}

void TestPage::anyIdIsText()
{
    const QString id = "<img src=x onerror=\"document.title='!'\"> a/b?#%41";
    m_browser->fill(".add [name=id]", id);
    m_browser->click("#add");
    QVERIFY(m_browser->shows(".card .id", id));
    QCOMPARE(m_browser->run("return document.images.length"), QJsonValue(0));
    m_browser->click(".card [data-path=plug] button");
    QTRY_COMPARE(state("wallboxes.0.car.phases"), "3");
    QCOMPARE(state("wallboxes.0.id"), id);
}

void TestPage::anyRequestIsText()
{
    const QByteArrayList bodies{"x",
                                "[1]",
                                R"({"evse_ids": 5})",
                                R"({"limits": "<i>"})",
                                R"({"limits": {"a": null}})",
                                R"({"limits": {"<i>": {"value": 9}}})"};
    for (const QByteArray &body : bodies)
        m_simulator->start("/<i>", body);
    QVERIFY(m_browser->shows("#log", "<i> 9 A"));
    QTRY_COMPARE(m_browser->run("return document.querySelectorAll('#log .failed').length").toInt(),
                 bodies.size());
    m_browser->run("document.querySelectorAll('#log details').forEach(item => item.open = true)");
    QVERIFY(m_browser->shows("#log", "\"<i>\": {"));
    QVERIFY(m_browser->shows("#link", "Live"));
}

void TestPage::fitsTheWindow()
{
    m_simulator.reset();
    startSimulator(0, 32);
    m_browser->open(m_simulator->url());
    QTRY_COMPARE(m_browser->run("return document.querySelectorAll('.card').length"), QJsonValue(32));
    for (const int width : {360, 720, 1200}) {
        m_browser->resize(width, 900);
        QCOMPARE(m_browser->run("return innerWidth"), QJsonValue(width));
        QVERIFY(m_browser->run("return document.documentElement.scrollWidth").toInt() <= width);
    }
}

void TestPage::startSimulator(int port, int wallboxes)
{
    m_simulator = std::make_unique<SimulatorProcess>(
        QStringList{"--speed=6", QString("--port=%1").arg(port), QString("--wallboxes=%1").arg(wallboxes)});
}

// Of EVSE-01, by the backend.
void TestPage::setLimit(int ampere)
{
    m_simulator->ask("/vela/set_limits/yard",
                     QString(R"({"secret": "s3cret", "limits": {"EVSE-01": {"value": %1, "unit": "A"}}})")
                         .arg(ampere)
                         .toUtf8());
}

// "wallboxes.0.status" as text; empty if there is nothing.
QString TestPage::state(const QString &path)
{
    QJsonValue value = m_simulator->state();
    for (const QString &name : path.split('.'))
        value = value.isArray() ? value[name.toInt()] : value[name];
    return value.toVariant().toString();
}

// Of a line in the plot, where it begins (0) or ends (1), in pixels from the top.
double TestPage::height(const QString &line, int end)
{
    const QString script = "const path = document.querySelector('#plot path.' + arguments[0]);"
                           "return path.getPointAtLength(path.getTotalLength() * arguments[1]).y";
    return m_browser->run(script, {line, end}).toDouble();
}

QTEST_GUILESS_MAIN(TestPage)
#include "tst_page.moc"
