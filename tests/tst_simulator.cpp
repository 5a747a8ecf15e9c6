// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "json.h"
#include "simulatorprocess.h"

#include <wallbox.h>

#include <QJsonArray>
#include <QRegularExpression>
#include <QTcpSocket>
#include <QtTest>

#include <memory>
#include <vector>

#include <sys/resource.h>

using namespace std::chrono_literals;

namespace {
constexpr Seconds readyTime{3}; // how long a car takes from the plug to its first ampere

using Prepare = void (*)(Wallbox &);

constexpr char accessToken[] = "3f6c1d2e-7a4b-4c8d-9e0f-1a2b3c4d5e6f";
QList<QNetworkReply::RawHeaderPair> authorization(const QByteArray &token = accessToken)
{
    return {QNetworkReply::RawHeaderPair("Authorization", token)};
}

Wallbox chargingWallbox(const Car &car)
{
    Wallbox wallbox;
    wallbox.plugIn(car);
    wallbox.advance(readyTime);
    return wallbox;
}

/*! The running program, called as the plugin calls it. Time stands still in its yard unless \a options say
    otherwise. */
class Simulator : public SimulatorProcess
{
public:
    explicit Simulator(const QStringList &options = {"--speed=0"})
        : SimulatorProcess(options)
    {
    }

    /*! With the access token, and the group's secret if \a body has none. */
    QNetworkReply *startBackend(const char *path, const QByteArray &body = "{}")
    {
        QJsonObject object = json(body);
        if (!object.contains("secret"))
            object.insert("secret", "s3cret");
        return start("POST", path, QJsonDocument(object).toJson(), authorization());
    }
    Answer backend(const char *path, const QByteArray &body = "{}")
    {
        return finish(startBackend(path, body));
    }
    int setLimits(const QByteArray &limits)
    {
        return backend("/vela/set_limits/yard", R"({"limits": )" + limits + "}").status;
    }
    QJsonObject group() { return backend("/vela/get_group_info/yard").json().value("evse_ids").toObject(); }
    QJsonObject values(const QByteArray &id)
    {
        const Answer answer = backend("/vela/get_values/yard", R"({"evse_ids": [")" + id + "\"]}");
        return answer.json().value("values").toObject().value(id).toObject();
    }
    /*! The state without what changes by itself. */
    QJsonObject yard()
    {
        QJsonObject yard = state();
        yard.remove("time");
        return yard;
    }
    QJsonArray requests() { return get("/control/requests").json().value("requests").toArray(); }
    std::unique_ptr<QTcpSocket> connection() const
    {
        auto socket = std::make_unique<QTcpSocket>();
        socket->connectToHost(url().host(), quint16(url().port()));
        [[maybe_unused]] const bool connected = socket->waitForConnected(); // else nothing will come back
        return socket;
    }
};

/*! A limit on what a process may use, for the programs that are started while this object lives. */
class LimitForChildren
{
public:
    using Resource = decltype(RLIMIT_AS);
    LimitForChildren(Resource resource, rlim_t limit)
        : m_resource(resource)
    {
        getrlimit(m_resource, &m_before);
        const rlimit lowered{limit, m_before.rlim_max};
        setrlimit(m_resource, &lowered);
    }
    ~LimitForChildren() { setrlimit(m_resource, &m_before); }
    Q_DISABLE_COPY(LimitForChildren)

private:
    Resource m_resource;
    rlimit m_before{};
};

/*! Writes \a text on a connection of its own and returns what comes back until \a end is in it. */
QByteArray exchange(QTcpSocket &socket, const QByteArray &text, const QByteArray &end)
{
    socket.write(text);
    QByteArray received = socket.readAll();
    const QDeadlineTimer patience(60000);
    while (!received.contains(end) && socket.waitForReadyRead(int(patience.remainingTime())))
        received += socket.readAll();
    return received;
}
} // namespace
Q_DECLARE_METATYPE(Prepare)

class TestSimulator : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_unchanged = std::make_unique<Simulator>(); }
    void cleanupTestCase() { m_unchanged.reset(); }

    void status_data();
    void status();
    void currents_data();
    void currents();
    void meterCountsTheSession();

    void strictness_data();
    void strictness();
    void answersAsThePluginReads();
    void limitSteersTheCar();
    void badLimitVoidsTheRequest();
    void groupIdIsDecoded();
    void timePassesAtSpeed();

    void handsMoveCars();
    void wallboxesComeAndGo();
    void badControlsChangeNothing_data();
    void badControlsChangeNothing();
    void foreignPagesAreRefused_data();
    void foreignPagesAreRefused();

    void backendRefusesForeignHosts();
    void eventsTellTheNewsOnce();
    void pageKeepsToItself();

    void faults_data();
    void faults();
    void silenceHoldsUpNobodyElse();
    void delayedRequestsGoOnOnceItIsLifted();
    void requestsAreRecordedAndMasked();

    void connectionStaysOpen();
    void bodiesHideNoRequests_data();
    void bodiesHideNoRequests();
    void largeBodiesAreRefused_data();
    void largeBodiesAreRefused();
    void connectionsWithoutThreadAreRefused();
    void endsAtOnce();
    void warnsWhenOthersCanReachIt_data();
    void warnsWhenOthersCanReachIt();
    void refusesToStart_data();
    void refusesToStart();

private:
    std::unique_ptr<Simulator> m_unchanged; // for rows that must not change anything
};

void TestSimulator::status_data()
{
    QTest::addColumn<Prepare>("prepare");
    QTest::addColumn<QString>("status");
    const auto row = [](const char *name, const char *status, Prepare prepare) {
        QTest::newRow(name) << prepare << QString(status); // from "Charging"
    };
    row("limit of 6 A", "Charging", [](Wallbox &box) { box.setLimit(6); });
    row("limit below 6 A", "SuspendedEVSE", [](Wallbox &box) { box.setLimit(5.9); });
    row("limit raised again", "Charging", [](Wallbox &box) { box.setLimit(0), box.setLimit(8); });
    row("limit waits for the next car", "SuspendedEVSE",
        [](Wallbox &box) { box.setLimit(0), box.unplug(), box.plugIn({}), box.advance(readyTime); });
    row("paused and nothing offered", "SuspendedEVSE", [](Wallbox &box) { box.pause(), box.setLimit(0); });
    row("car after a paused one", "Charging",
        [](Wallbox &box) { box.pause(), box.unplug(), box.plugIn({}), box.advance(readyTime); });
    row("broken without a car", "Faulted", [](Wallbox &box) { box.unplug(), box.breakDown(); });
    row("a car does not get ready at a broken wallbox", "Preparing",
        [](Wallbox &box) { box.unplug(), box.plugIn({}), box.breakDown(), box.advance(1h), box.mend(); });
}

void TestSimulator::status()
{
    QFETCH(Prepare, prepare);
    Wallbox wallbox = chargingWallbox({});
    prepare(wallbox);
    QTEST(wallbox.status(), "status");
    QCOMPARE(wallbox.power() > 0, wallbox.status() == "Charging");
}

void TestSimulator::currents_data()
{
    using Currents = QVector<double>;
    QTest::addColumn<int>("phases");
    QTest::addColumn<double>("carMaximum");
    QTest::addColumn<int>("wallboxMaximum");
    QTest::addColumn<double>("limit");
    QTest::addColumn<Currents>("currents");
    QTest::newRow("the car's own maximum") << 3 << 16.0 << 32 << 20.0 << Currents{16, 16, 16};
    QTest::newRow("the limit") << 3 << 16.0 << 32 << 7.5 << Currents{7.5, 7.5, 7.5};
    QTest::newRow("the wallbox's maximum") << 3 << 32.0 << 16 << 20.0 << Currents{16, 16, 16};
    QTest::newRow("one phase") << 1 << 32.0 << 32 << 20.0 << Currents{20, 0, 0};
    QTest::newRow("two phases") << 2 << 32.0 << 32 << 20.0 << Currents{20, 20, 0};
    QTest::newRow("too little") << 3 << 16.0 << 32 << 5.0 << Currents{0, 0, 0};
    QTest::newRow("no limit received") << 3 << 63.0 << 20 << -1.0 << Currents{20, 20, 20};
}

void TestSimulator::currents()
{
    QFETCH(int, phases);
    QFETCH(double, carMaximum);
    QFETCH(int, wallboxMaximum);
    QFETCH(double, limit);
    Wallbox wallbox = chargingWallbox({phases, carMaximum});
    wallbox.setMaxChargingCurrent(wallboxMaximum);
    if (limit >= 0)
        wallbox.setLimit(limit);
    const auto currents = wallbox.currents();
    QTEST((QVector<double>{currents[0], currents[1], currents[2]}), "currents");
    QCOMPARE(wallbox.power(), (currents[0] + currents[1] + currents[2]) * 230);
}

void TestSimulator::meterCountsTheSession()
{
    Wallbox wallbox;
    wallbox.plugIn({3, 16});
    wallbox.advance(readyTime + 30min); // getting ready takes no energy, however far one step reaches
    QCOMPARE(wallbox.sessionEnergy(), 5520.0);
    wallbox.setLimit(8);
    wallbox.advance(15min);
    QCOMPARE(wallbox.sessionEnergy(), 6900.0);
    wallbox.pause();
    wallbox.advance(1h);
    wallbox.breakDown();
    wallbox.resume();
    wallbox.advance(1h);
    QCOMPARE(wallbox.sessionEnergy(), 6900.0);
    wallbox.unplug(); // the display keeps it
    wallbox.advance(1h);
    QCOMPARE(wallbox.sessionEnergy(), 6900.0);
    wallbox.plugIn({});
    QCOMPARE(wallbox.sessionEnergy(), 0.0);
}

void TestSimulator::strictness_data()
{
    QTest::addColumn<QByteArray>("method");
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("token");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<int>("status");
    const auto row = [](const char *name, const char *path, const QByteArray &body, int status,
                        const QByteArray &token = accessToken, const char *method = "POST") {
        QTest::newRow(name) << QByteArray(method) << QByteArray(path) << token << body << status;
    };
    const QByteArray good = R"({"secret": "s3cret", "evse_ids": [], "limits": {}})";
    row("online", "/is_online", good, 200);
    row("group", "/vela/get_group_info/yard", good, 200);
    row("no ids", "/vela/get_values/yard", good, 200);
    row("no limits", "/vela/set_limits/yard", good, 200);
    row("no token", "/is_online", good, 401, {});
    row("wrong token", "/is_online", good, 401, "3f6c1d2e-7a4b-4c8d-9e0f-1a2b3c4d5e6e");
    row("token with a scheme", "/is_online", good, 401, QByteArray("Bearer ") + accessToken);
    row("wrong token comes before a wrong secret", "/is_online", R"({"secret": "x"})", 401, "x");
    row("wrong secret", "/is_online", R"({"secret": "S3cret"})", 403);
    row("wrong secret comes before a wrong group", "/vela/get_values/x", R"({"secret": "x"})", 403);
    row("wrong group", "/vela/get_group_info/Yard", good, 404);
    row("no group", "/vela/set_limits/", good, 404);
    row("no such operation", "/vela/get_valuess/yard", good, 404);
    row("more than the path", "/is_online/", good, 404);
    row("GET", "/is_online", {}, 405, accessToken, "GET");
    row("PUT", "/vela/set_limits/yard", good, 405, accessToken, "PUT");
    row("no body", "/is_online", {}, 400);
    row("not JSON", "/is_online", R"({"secret": "s3cret")", 400);
    row("not an object", "/is_online", R"(["s3cret"])", 400);
    row("no secret", "/is_online", "{}", 400);
    row("secret is no text", "/is_online", R"({"secret": 1})", 400);
    row("ids missing", "/vela/get_values/yard", R"({"secret": "s3cret"})", 400);
    row("ids are no array", "/vela/get_values/yard", R"({"secret": "s3cret", "evse_ids": {}})", 400);
    row("id is no text", "/vela/get_values/yard", R"({"secret": "s3cret", "evse_ids": ["EVSE-01", 2]})", 400);
    row("limits missing", "/vela/set_limits/yard", R"({"secret": "s3cret"})", 400);
    row("limits are no object", "/vela/set_limits/yard", R"({"secret": "s3cret", "limits": []})", 400);
}

void TestSimulator::strictness()
{
    QFETCH(QByteArray, method);
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, token);
    QFETCH(QByteArray, body);
    QFETCH(int, status);
    const Simulator::Answer answer =
        Simulator::finish(m_unchanged->start(method, path, body, authorization(token)));
    QCOMPARE(answer.status, status);
    QCOMPARE(answer.json().contains("error"), status != 200);
}

void TestSimulator::answersAsThePluginReads()
{
    Simulator simulator({"--wallboxes=2", "--speed=0"});
    QCOMPARE(simulator.group(),
             json(R"({"EVSE-01": {"max_charging_current": 32}, "EVSE-02": {"max_charging_current": 32}})"));

    const QJsonObject reply =
        simulator.backend("/vela/get_values/yard", R"({"evse_ids": ["EVSE-02", "?"]})").json();
    QCOMPARE(reply.value("success"), QJsonValue(true));
    const QJsonObject values = reply.value("values").toObject();
    QCOMPARE(values.keys(), QStringList("EVSE-02")); // an unknown id is left out
    QJsonObject record = values.value("EVSE-02").toObject();
    const QString time = record.take("timestamp").toString();
    static const QRegularExpression utcWithMs(R"(^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z$)");
    QVERIFY2(utcWithMs.match(time).hasMatch(), qPrintable(time));
    QVERIFY(qAbs(QDateTime::fromString(time, Qt::ISODateWithMs).secsTo(QDateTime::currentDateTimeUtc()))
            < 60);
    QCOMPARE(record,
             json(R"({"status": "Charging", "phase_1": 32, "phase_2": 0, "phase_3": 0, "meter_value": 0})"));
}

void TestSimulator::limitSteersTheCar()
{
    Simulator simulator;
    QCOMPARE(
        simulator.setLimits(R"({"EVSE-01": {"value": 10, "unit": "A"}, "gone": {"value": 8, "unit": "A"}})"),
        200);
    QCOMPARE(simulator.values("EVSE-01").value("phase_3"), QJsonValue(10));
    QCOMPARE(simulator.setLimits(R"({"EVSE-01": {"value": 0, "unit": "A"}})"), 200);
    QCOMPARE(simulator.values("EVSE-01").value("status"), QJsonValue("SuspendedEVSE"));
    QCOMPARE(simulator.values("EVSE-01").value("phase_1"), QJsonValue(0));

    QStringList received;
    const QJsonArray limits = simulator.get("/control/limits").json().value("limits").toArray();
    for (const QJsonValue &limit : limits) {
        QVERIFY(QDateTime::fromString(limit["time"].toString(), Qt::ISODateWithMs).isValid());
        received << limit["id"].toString() + ' ' + limit["value"].toVariant().toString()
                + (limit["applied"].toBool() ? " applied" : "");
    }
    QCOMPARE(received, (QStringList{"EVSE-01 10 applied", "gone 8", "EVSE-01 0 applied"}));
}

void TestSimulator::badLimitVoidsTheRequest()
{
    Simulator simulator;
    for (const char *bad : {R"({"value": -1, "unit": "A"})", R"({"value": "9", "unit": "A"})",
                            R"({"value": 9, "unit": "W"})", R"({"value": 9})", R"({"unit": "A"})"}) {
        const QByteArray limits = R"({"EVSE-01": {"value": 9, "unit": "A"}, "EVSE-02": %1})";
        QCOMPARE(simulator.setLimits(QByteArray(limits).replace("%1", bad)), 400);
    }
    QVERIFY(simulator.wallbox(0)["limit"].isNull());
    QCOMPARE(simulator.get("/control/limits").json(), json(R"({"limits": []})"));
}

void TestSimulator::groupIdIsDecoded()
{
    Simulator simulator({"--group=süd %41/b?#", "--secret="});
    const QByteArray emptySecret = R"({"secret": ""})";
    QCOMPARE(simulator.backend("/vela/get_group_info/s%C3%BCd%20%2541/b%3F%23", emptySecret).status, 200);
    QCOMPARE(simulator.backend("/vela/get_group_info/s%C3%BCd%20%41/b%3F%23", emptySecret).status, 404);
    QCOMPARE(simulator.post("/control/group", R"({"group": ""})").status, 200);
    QCOMPARE(simulator.backend("/vela/get_group_info/", emptySecret).status, 200);
}

void TestSimulator::timePassesAtSpeed()
{
    Simulator simulator({"--speed=36000"}); // ten hours a second
    const auto energy = [&simulator] { return simulator.values("EVSE-01").value("meter_value").toDouble(); };
    QTRY_VERIFY(energy() > 5000);
    QCOMPARE(simulator.post("/control/speed", R"({"factor": 0})").status, 200);
    const double stopped = energy();
    QVERIFY(stopped > 5000); // what had passed before stays
    QCOMPARE(energy(), stopped);
}

void TestSimulator::handsMoveCars()
{
    Simulator simulator;
    const struct
    {
        const char *operation;
        const char *body;
        int answer;
        const char *status;
    } story[] = {
        {"break",  "",                                     200, "Faulted"    },
        {"mend",   "",                                     200, "Charging"   },
        {"plug",   "",                                     409, "Charging"   },
        {"pause",  "",                                     200, "SuspendedEV"},
        {"resume", "{}",                                   200, "Charging"   },
        {"finish", "",                                     200, "Finishing"  },
        {"pause",  "",                                     409, "Finishing"  },
        {"resume", "",                                     409, "Finishing"  },
        {"unplug", "",                                     200, "Available"  },
        {"pause",  "",                                     409, "Available"  },
        {"resume", "",                                     409, "Available"  },
        {"finish", "",                                     409, "Available"  },
        {"plug",   R"({"phases": 1, "maxCurrent": 20.5})", 200, "Preparing"  },
    };
    for (const auto &[operation, body, answer, status] : story) {
        QCOMPARE(simulator.post(QString("/control/wallboxes/EVSE-01/") + operation, body).status, answer);
        const QJsonValue wallbox = simulator.wallbox(0);
        QCOMPARE(wallbox["status"].toString(), status);
        QCOMPARE(wallbox["currents"] == QJsonArray({0, 0, 0}), wallbox["status"] != "Charging");
    }
    QCOMPARE(simulator.post("/control/speed", R"({"factor": 1000})").status, 200);
    QTRY_COMPARE(simulator.wallbox(0)["status"].toString(), "Charging");
    QCOMPARE(simulator.post("/control/wallboxes/EVSE-01/configure", R"({"maxChargingCurrent": 13})").status,
             200);
    QCOMPARE(simulator.wallbox(0)["car"].toObject(),
             json(R"({"phases": 1, "maxCurrent": 20.5, "paused": false})"));
    QCOMPARE(simulator.wallbox(0)["currents"].toArray(), (QJsonArray{13, 0, 0}));
}

void TestSimulator::wallboxesComeAndGo()
{
    Simulator simulator({"--wallboxes=2"});
    QCOMPARE(simulator.post("/control/wallboxes/EVSE-01/remove").status, 200);
    QCOMPARE(simulator.post("/control/wallboxes").status, 200); // takes the number that is free
    QCOMPARE(simulator.post("/control/wallboxes", R"({"id": "a/b %", "maxChargingCurrent": 16})").status,
             200);
    QCOMPARE(simulator.post("/control/wallboxes", R"({"id": "EVSE-02"})").status, 409);
    QCOMPARE(simulator.post("/control/wallboxes/a/b%20%25/plug").status, 200);
    QCOMPARE(simulator.post("/control/wallboxes/EVSE-02/remove").status, 200);
    QCOMPARE(simulator.values("EVSE-02"), QJsonObject());
    QCOMPARE(simulator.group(),
             json(R"({"EVSE-01": {"max_charging_current": 32}, "a/b %": {"max_charging_current": 16}})"));
    QCOMPARE(simulator.wallbox(0)["status"], QJsonValue("Available"));
}

void TestSimulator::badControlsChangeNothing_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("says"); // what a person needs to put it right
    const auto row = [](const char *path, const char *body, int status, const char *says) {
        QTest::addRow("%s %s", path, body)
            << QByteArray(path) << QByteArray(body) << status << QString::fromLatin1(says);
    };
    const char plug[] = "/control/wallboxes/EVSE-04/plug";
    row(plug, "{", 400, "JSON");
    row(plug, "[]", 400, "object");
    row(plug, R"({"phases": 0})", 400, "1 to 3");
    row(plug, R"({"phases": 1.5})", 400, "whole");
    row(plug, R"({"phases": "3"})", 400, "number");
    row(plug, R"({"maxCurrent": 5})", 400, "6 to 63");
    row(plug, R"({"phases": 3, "maxcurrent": 16})", 400, "phases, maxCurrent");
    row("/control/wallboxes/EVSE-99/plug", "", 404, "EVSE-99");
    row("/control/wallboxes/EVSE-04/plugg", "", 404, "unplug");
    row("/control/wallboxes/EVSE-04/unplug", "", 409, "no car");
    row("/control/wallboxes/EVSE-04/remove", R"({"a": 1})", 400, "\"a\"");
    row("/control/wallboxes/EVSE-04/configure", "", 400, "maxChargingCurrent");
    row("/control/wallboxes", R"({"id": 5})", 400, "text");
    row("/control/wallboxes", R"({"id": "new", "maxChargingCurrent": 64})", 400, "63");
    row("/control/fault", R"({"status": 99})", 400, "200 to 599");
    row("/control/fault", R"({"silent": 1})", 400, "true or false");
    row("/control/fault", R"({"delayMs": -1})", 400, "0 to 600000");
    row("/control/speed", "{}", 400, "factor");
    row("/control/speed", R"({"factor": -1})", 400, "0 to");
    row("/control/group", "{}", 400, "group");
    row("/control/group", R"({"group": "x", "secret": 5})", 400, "text");
    row("/control/nothing", "", 404, "path");
    row("/control/state", "", 405, "GET");
}

void TestSimulator::badControlsChangeNothing()
{
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, body);
    QFETCH(QString, says);
    const QJsonObject before = m_unchanged->yard();
    const Simulator::Answer answer = m_unchanged->post(path, body);
    QTEST(answer.status, "status");
    QVERIFY2(answer.json().value("error").toString().contains(says), answer.body);
    QCOMPARE(m_unchanged->yard(), before);
    QCOMPARE(m_unchanged->backend("/is_online").status, 200); // nor has the secret changed
}

void TestSimulator::foreignPagesAreRefused_data()
{
    QTest::addColumn<QByteArray>("host"); // with %PORT%
    QTest::addColumn<QByteArray>("origin");
    QTest::addColumn<int>("status");
    const auto row = [](const char *name, const char *host, const char *origin, int status) {
        QTest::newRow(name) << QByteArray(host) << QByteArray(origin) << status;
    };
    row("no page", "127.0.0.1:%PORT%", "", 200);
    row("own page", "127.0.0.1:%PORT%", "http://127.0.0.1:%PORT%", 200);
    row("own page by name", "localhost:%PORT%", "http://localhost:%PORT%", 200);
    row("own page, IPv6", "[::1]:%PORT%", "http://[::1]:%PORT%", 200);
    row("foreign page", "127.0.0.1:%PORT%", "http://evil.example", 403);
    row("another port", "127.0.0.1:%PORT%", "http://127.0.0.1:1", 403);
    row("another scheme", "127.0.0.1:%PORT%", "https://127.0.0.1:%PORT%", 403);
    row("sandboxed page", "127.0.0.1:%PORT%", "null", 403);
    row("rebound name", "evil.example:%PORT%", "http://evil.example:%PORT%", 403);
    row("rebound name, no origin", "evil.example:%PORT%", "", 403);
    row("name that looks like ours", "127.0.0.1.evil.example", "", 403);
    row("no name", "", "", 403);
}

void TestSimulator::foreignPagesAreRefused()
{
    QFETCH(QByteArray, host);
    QFETCH(QByteArray, origin);
    QFETCH(int, status);
    Simulator simulator;
    const QByteArray port = QByteArray::number(simulator.url().port());
    const auto socket = simulator.connection();
    QByteArray head = "POST /control/wallboxes/EVSE-04/plug HTTP/1.1\r\nHost: " + host + "\r\n";
    if (!origin.isEmpty())
        head += "Origin: " + origin + "\r\n";
    const QByteArray answer = exchange(*socket, head.replace("%PORT%", port) + "\r\n", "}");
    QCOMPARE(answer.left(12), "HTTP/1.1 " + QByteArray::number(status));
    QVERIFY(!answer.contains("Access-Control-Allow-Origin"));
    const bool isPluggedIn = simulator.wallbox(3)["car"].isObject();
    QCOMPARE(isPluggedIn, status == 200);
}

void TestSimulator::backendRefusesForeignHosts()
{
    const struct
    {
        const char *host;
        int status;
    } cases[] = {
        {"evil.example",   403},
        {"a.test.example", 403},
        {"backend.test",   200}, // such a name belongs to nobody else
    };
    for (const auto &[host, status] : cases) {
        const auto headers = authorization() << QNetworkReply::RawHeaderPair("Host", host);
        QNetworkReply *reply = m_unchanged->start("POST", "/is_online", R"({"secret": "s3cret"})", headers);
        QCOMPARE(Simulator::finish(reply).status, status);
    }
}

void TestSimulator::eventsTellTheNewsOnce()
{
    Simulator simulator;
    const auto stream = simulator.connection();
    const QByteArray nothing = R"("requests":[])";
    const QByteArray begin =
        exchange(*stream, "GET /control/events HTTP/1.1\r\nHost: localhost\r\n\r\n", nothing);
    QVERIFY2(begin.contains("Content-Type: text/event-stream\r\n"), begin);
    QVERIFY2(begin.contains("\nevent: state\ndata: {"), begin);

    simulator.post("/control/fault", R"({"silent": true})");
    simulator.startBackend("/is_online");
    QTRY_COMPARE(simulator.requests().size(), 1);
    QByteArray asked = exchange(*stream, {}, "is_online");
    asked += exchange(*stream, {}, nothing);
    QCOMPARE(asked.count(R"("operation":"is_online")"), 1);
    QVERIFY2(asked.contains(R"("status":null)"), asked);
    simulator.post("/control/fault", "{}");
    QByteArray answered = exchange(*stream, {}, "is_online");
    answered += exchange(*stream, {}, nothing);
    QCOMPARE(answered.count(R"("operation":"is_online")"), 1);
    QVERIFY2(answered.contains(R"("status":200)"), answered);

    const QNetworkReply::RawHeaderPair foreign{"Origin", "http://evil.example"};
    QCOMPARE(Simulator::finish(simulator.start("GET", "/control/events", {}, {foreign})).status, 403);
}

void TestSimulator::pageKeepsToItself()
{
    QNetworkReply *reply = m_unchanged->start("GET", "/");
    QCOMPARE(Simulator::finish(reply).status, 200);
    QCOMPARE(reply->rawHeader("Content-Type"), QByteArray("text/html; charset=utf-8"));
    QCOMPARE(reply->rawHeader("X-Frame-Options"), QByteArray("DENY"));
    const QByteArray policy = reply->rawHeader("Content-Security-Policy");
    QVERIFY2(policy.startsWith("default-src 'none';") && !policy.contains("unsafe"), policy);
}

void TestSimulator::faults_data()
{
    QTest::addColumn<QByteArray>("fault");
    QTest::addColumn<int>("status");
    QTest::addColumn<bool>("isJson");
    QTest::newRow("status") << QByteArray(R"({"status": 503})") << 503 << true;
    QTest::newRow("teapot") << QByteArray(R"({"status": 418, "delayMs": 1})") << 418 << true;
    QTest::newRow("no content") << QByteArray(R"({"status": 204})") << 204 << false;
    QTest::newRow("garbage") << QByteArray(R"({"garbage": true})") << 200 << false;
    QTest::newRow("garbage with a status")
        << QByteArray(R"({"garbage": true, "status": 500})") << 500 << false;
}

void TestSimulator::faults()
{
    QFETCH(QByteArray, fault);
    Simulator simulator;
    QCOMPARE(simulator.post("/control/fault", fault).status, 200);
    QCOMPARE(simulator.state().value("fault").toObject(), json(fault));
    const QByteArray limits = R"({"limits": {"EVSE-01": {"value": 9, "unit": "A"}}})";
    const Simulator::Answer answer = simulator.backend("/vela/set_limits/yard", limits);
    QTEST(answer.status, "status");
    QTEST(QJsonDocument::fromJson(answer.body).isObject(), "isJson");
    QVERIFY(simulator.wallbox(0)["limit"].isNull());

    QCOMPARE(simulator.post("/control/fault", "{}").status, 200);
    QCOMPARE(simulator.backend("/vela/set_limits/yard", limits).status, 200);
    QVERIFY(simulator.wallbox(0)["limit"].isObject());
}

void TestSimulator::silenceHoldsUpNobodyElse()
{
    Simulator simulator;
    QCOMPARE(simulator.post("/control/fault", R"({"silent": true})").status, 200);
    std::vector<std::unique_ptr<QTcpSocket>> clients; // more than a pool of threads would serve
    for (int number = 0; number < 40; ++number) {
        const auto &client = clients.emplace_back(simulator.connection());
        client->write("POST /is_online HTTP/1.1\r\nHost: localhost\r\nContent-Length: 0\r\n\r\n");
        QVERIFY(client->waitForBytesWritten());
    }
    QTRY_COMPARE(simulator.requests().size(), 40); // all have arrived, and others are still served
    const QJsonArray requests = simulator.requests();
    for (const QJsonValue &request : requests)
        QVERIFY(request["status"].isNull());
    for (const auto &client : clients)
        QCOMPARE(client->bytesAvailable(), 0);

    QCOMPARE(simulator.post("/control/fault", "{}").status, 200);
    for (const auto &client : clients)
        QVERIFY(exchange(*client, {}, "}").startsWith("HTTP/1.1 401"));
}

void TestSimulator::delayedRequestsGoOnOnceItIsLifted()
{
    Simulator simulator;
    simulator.post("/control/fault", R"({"delayMs": 200})");
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(simulator.backend("/is_online").status, 200);
    QVERIFY2(timer.elapsed() >= 200, qPrintable(QString::number(timer.elapsed())));

    simulator.post("/control/fault", R"({"delayMs": 600000})");
    QNetworkReply *reply = simulator.startBackend("/is_online");
    QTRY_COMPARE(simulator.requests().size(), 2);
    QVERIFY(!reply->isFinished());
    simulator.post("/control/fault", "{}");
    QCOMPARE(Simulator::finish(reply).status, 200);
}

void TestSimulator::requestsAreRecordedAndMasked()
{
    Simulator simulator;
    simulator.backend("/vela/get_values/yard", R"({"evse_ids": ["EVSE-04"]})");
    simulator.backend("/vela/get_group_info/yard",
                      R"({"secret": "wrong-s3cret", "a": [{"b": {"secret": ["s3cret"]}}]})");
    simulator.start("POST", "/is_online", R"({"secret": "s3cret")", authorization()); // not JSON
    QTRY_COMPARE(simulator.requests().size(), 3);

    const QJsonArray requests = simulator.requests();
    const QJsonObject first = requests.at(0).toObject();
    QCOMPARE(first.value("operation"), QJsonValue("get_values"));
    QCOMPARE(first.value("request").toObject(), json(R"({"secret": "***", "evse_ids": ["EVSE-04"]})"));
    QCOMPARE(first.value("status"), QJsonValue(200));
    QCOMPARE(first.value("number"), QJsonValue(1));
    QVERIFY(first.value("durationMs").toDouble(-1) >= 0);
    QVERIFY(first["reply"].toObject()["values"].toObject().contains("EVSE-04"));
    QCOMPARE(requests.at(1).toObject().value("status"), QJsonValue(403));
    const QByteArray all = simulator.get("/control/requests").body + simulator.get("/control/state").body;
    QVERIFY2(!all.contains("s3cret") && !all.contains(accessToken), all);
}

void TestSimulator::connectionStaysOpen()
{
    Simulator simulator;
    const auto socket = simulator.connection();
    const QByteArray request = QByteArray("POST /is_online HTTP/1.1\r\nHost: localhost\r\nAuthorization: ")
        + accessToken + "\r\nContent-Length: 19\r\n\r\n{\"secret\":\"s3cret\"}";
    for (int poll = 0; poll < 20; ++poll)
        QVERIFY(exchange(*socket, request, "}").startsWith("HTTP/1.1 200"));
    socket->write(request + request); // the second comes with the first
    QTRY_COMPARE(simulator.requests().size(), 22);
    QVERIFY(exchange(*socket, "POST / HTTP/1.1\r\nHost: localhost\r\n\r\n", "nothing at this path")
                .contains("HTTP/1.1 404"));
    QCOMPARE(socket->state(), QAbstractSocket::ConnectedState);
}

void TestSimulator::bodiesHideNoRequests_data()
{
    QTest::addColumn<QByteArray>("type");
    QTest::newRow("multipart") << QByteArray("multipart/form-data; boundary=x");
    QTest::newRow("multipart without a boundary") << QByteArray("multipart/form-data");
}

/*! A page of another origin may send a body, and behind a body that is not read stands the next request. */
void TestSimulator::bodiesHideNoRequests()
{
    QFETCH(QByteArray, type);
    const auto socket = m_unchanged->connection();
    const QByteArray hidden = "POST /control/wallboxes/EVSE-01/unplug HTTP/1.1\r\nHost: localhost\r\n\r\n";
    const QByteArray answer = exchange(
        *socket,
        "POST /control/speed HTTP/1.1\r\nHost: localhost\r\nOrigin: http://evil.example"
        "\r\nContent-Type: "
            + type + "\r\nContent-Length: " + QByteArray::number(hidden.size()) + "\r\n\r\n" + hidden,
        "}");
    QVERIFY2(answer.startsWith("HTTP/1.1 415"), answer);
    QTRY_COMPARE(socket->state(), QAbstractSocket::UnconnectedState);
    QCOMPARE(exchange(*socket, {}, "}"), QByteArray());
}

void TestSimulator::largeBodiesAreRefused_data()
{
    QTest::addColumn<QByteArray>("headerAndBody");
    QTest::addColumn<bool>("goesOn");
    const QByteArray body((1 << 20) + 1, ' ');
    const QByteArray packed = qCompress(body).mid(4); // behind Qt's own head
    const auto length = [](const QByteArray &body) { return QByteArray::number(body.size()); };
    QTest::newRow("announced") << "Content-Length: " + length(body) + "\r\n\r\n" + body << false;
    QTest::newRow("chunked") << "Transfer-Encoding: chunked\r\n\r\n100001\r\n" + body + "\r\n0\r\n\r\n"
                             << true;
    QTest::newRow("compressed") << "Content-Encoding: deflate\r\nContent-Length: " + length(packed)
            + "\r\n\r\n"
            + packed << true;
    QTest::newRow("endless") << "Transfer-Encoding: chunked\r\n\r\n7fffffff\r\n" + body + body << false;
}

void TestSimulator::largeBodiesAreRefused()
{
    QFETCH(QByteArray, headerAndBody);
    QFETCH(bool, goesOn);
    const auto socket = m_unchanged->connection();
    const QByteArray head = "POST /control/wallboxes HTTP/1.1\r\nHost: localhost\r\n";
    const QByteArray answer = exchange(*socket, head + headerAndBody, "}");
    QVERIFY2(answer.startsWith("HTTP/1.1 413")
                 && answer.endsWith(R"({"error":"the body is larger than 1 MB"})"),
             answer);
    const char plug[] = "POST /control/wallboxes/EVSE-01/plug HTTP/1.1\r\nHost: localhost\r\n\r\n"; // taken
    const QByteArray next = exchange(*socket, goesOn ? QByteArray(plug) : QByteArray(), "}");
    QCOMPARE(next.left(12), QByteArray(goesOn ? "HTTP/1.1 409" : ""));
    if (!goesOn)
        QTRY_COMPARE(socket->state(), QAbstractSocket::UnconnectedState);
}

void TestSimulator::connectionsWithoutThreadAreRefused()
{
#ifdef VELA_SANITIZED
    QSKIP("sanitizers need more address space");
#endif
    // The address space holds only a few stacks of this size, and enough of everything else.
    const LimitForChildren stackSize(RLIMIT_STACK, 1 << 30);
    const LimitForChildren addressSpace(RLIMIT_AS, rlim_t(8) << 30);
    Simulator simulator;
    std::vector<std::unique_ptr<QTcpSocket>> clients;
    int refused = 0;
    for (int number = 0; number < 20; ++number) {
        const auto &client = clients.emplace_back(simulator.connection());
        if (exchange(*client, "GET /control/state HTTP/1.1\r\nHost: localhost\r\n\r\n", "}").isEmpty())
            ++refused;
    }
    QVERIFY(refused > 0 && refused < 20);
    clients.clear();
    QTRY_COMPARE(simulator.backend("/is_online").status, 200);
}

void TestSimulator::endsAtOnce()
{
    Simulator simulator;
    simulator.post("/control/fault", R"({"silent": true})"); // leaves an idle connection behind
    simulator.startBackend("/is_online");
    QTRY_COMPARE(simulator.requests().size(), 1);
    const QNetworkReply *stream = simulator.start("GET", "/control/events");
    QTRY_VERIFY(stream->bytesAvailable() > 0); // the rest is the client's: it ends the program
}

void TestSimulator::warnsWhenOthersCanReachIt_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QByteArray>("warning");
    QTest::newRow("loopback") << "127.0.0.2" << QByteArray();
    QTest::newRow("loopback by name") << "localhost" << QByteArray();
    QTest::newRow("all interfaces") << "0.0.0.0"
                                    << QByteArray("vela-simulator: warning: with --listen 0.0.0.0, anyone "
                                                  "who can reach this machine can control the yard\n");
}

void TestSimulator::warnsWhenOthersCanReachIt()
{
    QFETCH(QString, address);
    QProcess process;
    process.start(VELA_SIMULATOR, {"--port=0", "--listen=" + address});
    QVERIFY(process.waitForReadyRead()); // its URL
    process.terminate();
    QVERIFY(process.waitForFinished());
    QTEST(process.readAllStandardError(), "warning");
}

void TestSimulator::refusesToStart_data()
{
    QTest::addColumn<QString>("option");
    QTest::addColumn<QByteArray>("says");
    QTest::addColumn<int>("status");
    const auto row = [](const char *name, const QString &option, const QByteArray &says, int status = 2) {
        QTest::newRow(name) << option << says << status;
    };
    row("port out of range", "--port=65536", "0 to 65535");
    row("time runs backwards", "--speed=-1", "0 to");
    row("no address", "--listen=", "127.0.0.1");
    row("unknown option", "--prot=1", "prot");
    row("address that steers the terminal", "--listen=\x1b[2J", "\xef\xbf\xbd[2J", 1);
    row("stray word", "yard", "yard");
    const QByteArray taken = QByteArray::number(m_unchanged->url().port());
    row("taken port", "--port=" + taken, taken, 1);
}

void TestSimulator::refusesToStart()
{
    QFETCH(QString, option);
    QFETCH(QByteArray, says);
    QProcess process;
    process.start(VELA_SIMULATOR, {option});
    QVERIFY(process.waitForFinished());
    QTEST(process.exitCode(), "status");
    QCOMPARE(process.readAllStandardOutput(), QByteArray());
    const QByteArray error = process.readAllStandardError();
    QVERIFY2(error.contains(says) && error.count('\n') == 1, error);
}

QTEST_GUILESS_MAIN(TestSimulator)
#include "tst_simulator.moc"
