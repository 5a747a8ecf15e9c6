// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "hostprocess.h"
#include "simulatorprocess.h"
#include "webdriver.h"

#include <QtTest>

#include <memory>

namespace {
constexpr int patience = 60000; // ms; the plugin polls every two seconds
constexpr QChar tab(0xe004);
constexpr QChar enter(0xe007);

/*! The running backend. Its cars get ready in half a second. */
class Simulator : public SimulatorProcess
{
public:
    explicit Simulator(int port = 0, int wallboxes = 4)
        : SimulatorProcess(
            {"--speed=6", QString("--port=%1").arg(port), QString("--wallboxes=%1").arg(wallboxes)})
    {
    }

    /*! "wallboxes.0.status" as text; empty if there is nothing. */
    QString read(const QString &path)
    {
        QJsonValue value = state();
        const QStringList names = path.split('.');
        for (const QString &name : names)
            value =
                value.isArray() ? QJsonValue(value.toArray().at(name.toInt())) : value.toObject().value(name);
        return value.toVariant().toString();
    }
};

/*! The host with the plugin, and the simulator as its gateway's backend. */
class Home
{
public:
    explicit Home(const Simulator &simulator)
        : m_host(VELA_PLUGIN_FILE, m_storage.path())
    {
        m_host.command("discover vela groupId=yard groupSecret=s3cret backendUrl="
                       + simulator.url().toString());
        m_host.command("add 1");
    }

    QJsonObject states(const QString &name)
    {
        const QJsonArray things = m_host.command("things")["things"].toArray();
        for (const QJsonValue &thing : things) {
            if (thing["name"] == name)
                return thing["states"].toObject();
        }
        return {};
    }
    bool set(const QString &command) { return m_host.command("set " + command)["ok"].toBool(); }

private:
    QTemporaryDir m_storage;
    HostProcess m_host;
};

QString card(int number)
{
    return QString(".card[data-id='EVSE-0%1'] ").arg(number);
}
} // namespace

class TestPage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase() { m_browser.reset(); }
    void init();
    void cleanup() { m_simulator.reset(); }

    void pluggedInCarCharges();
    void currentShowsOnCardAndPlot();
    void keyboardAloneSuffices();
    void saysWhenNobodyAnswers();
    void asksWhenTheStreamIsBroken();
    void handsReachTheControlEndpoint();
    void anyIdIsText();
    void anyRequestIsText();
    void fitsTheWindow();

private:
    void touch(const QString &step);
    QString focused();
    bool tabTo(const QString &selector);
    double height(const QString &line, int end);

    std::unique_ptr<WebDriver> m_browser;
    std::unique_ptr<Simulator> m_simulator;
};

void TestPage::initTestCase()
{
    if (!WebDriver::isInstalled())
        QSKIP("there is no chromedriver: install Debian's chromium and chromium-driver to test the page");
    m_browser = std::make_unique<WebDriver>();
}

void TestPage::init()
{
    m_simulator = std::make_unique<Simulator>();
    m_browser->open(m_simulator->url());
    QTRY_COMPARE_WITH_TIMEOUT(m_browser->text("#link"), "Live", patience);
}

void TestPage::pluggedInCarCharges()
{
    Home home(*m_simulator);
    m_browser->click(card(4) + "[data-path=plug] button");
    QTRY_COMPARE_WITH_TIMEOUT(home.states("EVSE-04")["charging"], QJsonValue(true), patience);
    QCOMPARE(home.states("EVSE-04")["currentPower"], QJsonValue(11040)); // 3 phases of 16 A
    QTRY_COMPARE(m_browser->text(card(4) + ".status"), "Charging");
    QTRY_COMPARE(m_browser->text(card(4) + ".power-now"), "11.04 kW");
}

void TestPage::currentShowsOnCardAndPlot()
{
    Home home(*m_simulator);
    m_browser->click(card(1) + ".id");
    QTRY_COMPARE(m_browser->text("#power-now"), "11.04 kW");
    const double before = height("power", 1);
    QVERIFY(height("limit", 1) < before); // y grows downwards: the wallbox would let the car take more

    QTRY_VERIFY_WITH_TIMEOUT(home.set("EVSE-01 maxChargingCurrent 10"), patience);
    QTRY_VERIFY_WITH_TIMEOUT(m_browser->text(card(1) + ".limit").startsWith("10 A"), patience);
    QTRY_COMPARE(m_browser->run("return document.querySelector('#plot .label')?.textContent"),
                 QJsonValue("10 A"));
    QTRY_COMPARE(m_browser->text("#power-now"), "6.90 kW");
    QVERIFY(height("power", 1) > before);
    QCOMPARE(height("power", 1), height("limit", 1));

    m_browser->open(m_simulator->url()); // a page that is opened later shows what has been
    QTRY_VERIFY(m_browser->text("#log").contains("set_limits"));
    m_browser->click(card(1) + ".id");
    QTRY_COMPARE(height("power", 0), before);
    QCOMPARE(height("power", 1), height("limit", 1));

    m_browser->run(
        "[...document.querySelectorAll('#log li')].find(item => item.innerText.includes('set_limits'))"
        ".setAttribute('id', 'limits')");
    m_browser->click("#limits summary");
    QTRY_VERIFY(m_browser->text("#limits .body").contains("\"value\": 10"));
    QVERIFY(m_browser->text("#limits .body").contains("\"secret\": \"***\""));
    QVERIFY(!m_browser->run("return document.body.textContent").toString().contains("s3cret"));
}

// Plugs a small one-phase car in, and out again.
void TestPage::keyboardAloneSuffices()
{
    QVERIFY(tabTo(card(4) + "[name=phases]"));
    m_browser->press(QString("1") + tab + "10" + tab + enter);
    QTRY_COMPARE(m_simulator->wallbox(3)["car"]["phases"], QJsonValue(1));
    QCOMPARE(m_simulator->wallbox(3)["car"]["maxCurrent"], QJsonValue(10));
    QTRY_COMPARE(m_browser->text("#toast"), "EVSE-04: plug in, done");
    QCOMPARE(focused(), "Unplug"); // the button that had the focus is gone
    m_browser->press(QString(enter));
    QTRY_COMPARE(m_browser->text(card(4) + ".status"), "Available");
    QCOMPARE(m_browser->run("return document.activeElement.closest('.card')?.dataset.id"),
             QJsonValue("EVSE-04"));
}

void TestPage::saysWhenNobodyAnswers()
{
    const int port = m_simulator->url().port();
    m_simulator.reset();
    QTRY_COMPARE_WITH_TIMEOUT(m_browser->text("#link"), "No answer", patience);
    QVERIFY(m_browser->text("#outage").contains("No answer from the simulator since"));
    QCOMPARE(m_browser->text(card(1) + ".status"), "Charging"); // what was known stays in sight
    m_browser->click(card(1) + "[data-path=unplug]");
    QTRY_VERIFY(m_browser->text("#toast").startsWith("EVSE-01: unplug failed"));

    m_simulator = std::make_unique<Simulator>(port, 2);
    QTRY_COMPARE_WITH_TIMEOUT(m_browser->text("#link"), "Live", patience);
    QCOMPARE(m_browser->text("#outage"), "");
    QTRY_COMPARE(m_browser->text("#wallbox-count"), "2");
    m_browser->click(card(1) + "[data-path=unplug]");
    QTRY_COMPARE(m_browser->text(card(1) + ".status"), "Available");
}

void TestPage::asksWhenTheStreamIsBroken()
{
    m_browser->run("window.Streams = EventSource; window.EventSource = class extends Streams {"
                   "constructor() { super('/control/no-such-stream'); } }");
    const int port = m_simulator->url().port();
    m_simulator.reset();
    m_simulator = std::make_unique<Simulator>(port);
    QTRY_COMPARE_WITH_TIMEOUT(m_browser->text("#link"), "Asking every 2 s", patience);
    QVERIFY(m_browser->text("#outage").contains("the page asks every 2 s instead"));
    Home home(*m_simulator); // whose requests and limits only asking again can bring
    QTRY_VERIFY_WITH_TIMEOUT(home.set("EVSE-01 maxChargingCurrent 8"), patience);
    QTRY_VERIFY_WITH_TIMEOUT(m_browser->text(card(1) + ".limit").startsWith("8 A"), patience);
    QTRY_VERIFY_WITH_TIMEOUT(m_browser->text("#log").contains("set_limits"), patience);

    m_browser->run("window.EventSource = Streams");
    QTRY_COMPARE_WITH_TIMEOUT(m_browser->text("#link"), "Live", patience);
}

void TestPage::handsReachTheControlEndpoint()
{
    const QString more = card(2) + "summary";
    const struct
    {
        QStringList steps; // what to click, or to fill: "selector|text"
        QString path;      // into the state
        QString value;
    } story[] = {
        {{card(2) + "[data-path=pause]"},                                                      "wallboxes.1.status", "SuspendedEV"},
        {{card(2) + "[data-path=resume]"},                                                     "wallboxes.1.status", "Charging"   },
        {{more, card(2) + "[data-path=break]"},                                                "wallboxes.1.status", "Faulted"    },
        {{card(2) + "[data-path=mend]"},                                                       "wallboxes.1.status", "Charging"   },
        {{card(2) + "[name=maxChargingCurrent]|20", card(2) + "[data-path=configure] button"},
         "wallboxes.1.maxChargingCurrent",                                                                           "20"         },
        {{card(2) + "[data-path=finish]"},                                                     "wallboxes.1.status", "Finishing"  },
        {{card(2) + "[data-path=unplug]"},                                                     "wallboxes.1.status", "Available"  },
        {{card(2) + "[data-path=remove]"},                                                     "wallboxes.1.id",     "EVSE-03"    },
        {{".add [name=id]|A1", ".add [name=maxChargingCurrent]|16", "#add"},                   "wallboxes.0.id",     "A1"         },
        {{"[name=status]|503", "[name=delayMs]|10", "[data-path=fault] button"},               "fault.status",       "503"        },
        {{"[name=garbage]", "[data-path=fault] button"},                                       "fault.garbage",      "true"       },
        {{"[name=silent]", "[data-path=fault] button"},                                        "fault.silent",       "true"       },
        {{"#behave"},                                                                          "fault.status",       ""           },
        {{"[name=group]|north", "[data-path=group] button"},                                   "group",              "north"      },
        {{"[name=factor]|2.5", "[data-path=speed] button"},                                    "speed",              "2.5"        },
    };
    for (const auto &[steps, path, value] : story) {
        for (const QString &step : steps)
            touch(step);
        QTRY_COMPARE(path + ": " + m_simulator->read(path), path + ": " + value);
        QTRY_VERIFY2(m_browser->text("#toast").endsWith("done"), qPrintable(path));
    }
}

void TestPage::anyIdIsText()
{
    const QString id = "<img src=x onerror=\"document.title='!'\"> a/b?#%41";
    m_browser->fill(".add [name=id]", id);
    m_browser->click("#add");
    QTRY_COMPARE(m_browser->text(".card .id"), id);
    QCOMPARE(m_browser->run("return document.images.length"), QJsonValue(0));
    m_browser->click(".card [data-path=plug] button");
    QTRY_VERIFY(m_simulator->wallbox(0)["car"].isObject());
    QCOMPARE(m_simulator->wallbox(0)["id"], QJsonValue(id));
}

void TestPage::anyRequestIsText()
{
    const QByteArrayList bodies{"",
                                "[1]",
                                R"({"evse_ids": 5})",
                                R"({"limits": "<i>"})",
                                R"({"limits": {"a": null}})",
                                R"({"limits": {"<i>": {"value": 9}}})"};
    for (const QByteArray &body : bodies)
        m_simulator->post("/<i>", body);
    QTRY_COMPARE(m_browser->text("#log").count("404"), bodies.size());
    m_browser->click("#log summary"); // the last one
    QTRY_VERIFY(m_browser->text("#log .request").contains("\"<i>\": {"));
    QVERIFY(m_browser->text("#log .asked").contains("<i> 9 A"));
    QCOMPARE(m_browser->text("#link"), "Live");
}

void TestPage::fitsTheWindow()
{
    m_simulator = std::make_unique<Simulator>(0, 32);
    m_browser->open(m_simulator->url());
    QTRY_COMPARE(m_browser->run("return document.querySelectorAll('.card').length"), QJsonValue(32));
    for (const int width : {360, 720, 1200}) {
        m_browser->resize(width, 900);
        QCOMPARE(m_browser->run("return innerWidth"), QJsonValue(width));
        QVERIFY(m_browser->run("return document.documentElement.scrollWidth").toInt() <= width);
    }
}

void TestPage::touch(const QString &step)
{
    const QString selector = step.section('|', 0, 0);
    if (selector == step)
        m_browser->click(selector);
    else
        m_browser->fill(selector, step.section('|', 1));
}

QString TestPage::focused()
{
    return m_browser->run("return document.activeElement.innerText").toString();
}

// Presses the tabulator until the element has the focus; false if it is out of reach.
bool TestPage::tabTo(const QString &selector)
{
    const QString isThere = "return document.activeElement.matches(arguments[0])";
    for (int presses = 0; presses < 60; ++presses) {
        if (m_browser->run(isThere, {selector}).toBool())
            return true;
        m_browser->press(QString(tab));
    }
    return false;
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
