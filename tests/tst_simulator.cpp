// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "json.h"
#include "simulatorprocess.h"

#include <simulatedwallbox.h>

#include <QFile>
#include <QJsonArray>
#include <QtTest>

#include <vector>

using namespace std::chrono_literals;

namespace {

constexpr Seconds readyTime{3}; // how long a car takes from the plug to its first ampere

} // namespace

/*! The simulator where text cannot show it: the model as time goes by, and the program on bare connections.
    The rest of it is in transcripts/simulator-*.txt. */
class TestSimulator : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_simulator = std::make_unique<SimulatorProcess>(QStringList{"--speed=0"}); }
    void cleanup() { m_simulator.reset(); }

    void meterCountsTheSession();
    void timePassesAtSpeed();

    void eventsTellTheNewsOnce();
    void silenceHoldsUpNobodyElse();
    void delayedRequestsGoOnOnceItIsLifted();
    void readmeNamesEachFault();

    void pageKeepsToItself();
    void connectionStaysOpen();
    void bodiesHideNoRequests();
    void largeBodiesAreRefused_data();
    void largeBodiesAreRefused();
    void furtherConnectionsWait();
    void endsAtOnce();

private:
    std::unique_ptr<SimulatorProcess> m_simulator;
};

void TestSimulator::meterCountsTheSession()
{
    SimulatedWallbox wallbox;
    wallbox.plugIn({3, 16});
    wallbox.advance(readyTime + 30min); // getting ready takes no energy, however far one step reaches
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

void TestSimulator::timePassesAtSpeed()
{
    const auto energy = [this] { return m_simulator->wallbox(0)["sessionEnergy"].toDouble(); };
    QCOMPARE(energy(), 0.0);
    m_simulator->ask("/control/speed", R"({"factor": 36000})"); // ten hours a second
    QTRY_VERIFY(energy() > 5000);
    m_simulator->ask("/control/speed", R"({"factor": 0})");
    const double stopped = energy();
    QVERIFY(stopped > 5000); // what had passed before stays
    QCOMPARE(energy(), stopped);
}

void TestSimulator::eventsTellTheNewsOnce()
{
    const auto stream = m_simulator->connection();
    const QByteArray nothing = R"("requests":[])";
    const QByteArray begin =
        exchange(*stream, "GET /control/events HTTP/1.1\r\nHost: localhost\r\n\r\n", nothing);
    QVERIFY2(begin.contains("Content-Type: text/event-stream\r\n"), begin);
    QVERIFY2(begin.contains("event: state\ndata: {") && begin.contains("\nevent: history\ndata: {"), begin);

    m_simulator->ask("/control/fault", R"({"silent": true})");
    m_simulator->start("/is_online", R"({"secret": "s3cret"})");
    QByteArray asked = exchange(*stream, {}, "is_online");
    asked += exchange(*stream, {}, nothing);
    QCOMPARE(asked.count(R"("operation":"is_online")"), 1);
    QVERIFY2(asked.contains(R"("status":null)") && !asked.contains("event: history"), asked);
    m_simulator->ask("/control/fault", "{}");
    QByteArray answered = exchange(*stream, {}, "is_online");
    answered += exchange(*stream, {}, nothing);
    QCOMPARE(answered.count(R"("operation":"is_online")"), 1);
    QVERIFY2(answered.contains(R"("status":200)"), answered);
}

void TestSimulator::silenceHoldsUpNobodyElse()
{
    m_simulator->ask("/control/fault", R"({"silent": true})");
    std::vector<std::unique_ptr<QTcpSocket>> clients;
    for (int number = 0; number < 200; ++number) {
        clients.push_back(m_simulator->connection());
        clients.back()->write("POST /is_online HTTP/1.1\r\nHost: localhost\r\nContent-Length: 0\r\n\r\n");
    }
    QTRY_COMPARE(m_simulator->requestCount(), 200); // all have arrived, and others are still served
    for (const auto &client : clients)
        QCOMPARE(client->bytesAvailable(), 0);

    clients.front()->abort(); // what it has asked for is done all the same
    m_simulator->ask("/control/fault", "{}");
    clients.erase(clients.begin());
    for (const auto &client : clients)
        QVERIFY(exchange(*client, {}, "}").startsWith("HTTP/1.1 401"));
    QVERIFY(!m_simulator->ask("/control/requests").contains(R"("status":null)"));
}

void TestSimulator::delayedRequestsGoOnOnceItIsLifted()
{
    const QByteArray body = R"({"secret": "s3cret"})";
    m_simulator->ask("/control/fault", R"({"delayMs": 200})");
    QElapsedTimer timer;
    timer.start();
    m_simulator->ask("/is_online", body);
    QVERIFY2(timer.elapsed() >= 200, qPrintable(QString::number(timer.elapsed())));

    m_simulator->ask("/control/fault", R"({"delayMs": 600000})");
    const QNetworkReply *reply = m_simulator->start("/is_online", body);
    QTRY_COMPARE(m_simulator->requestCount(), 2);
    QVERIFY(!reply->isFinished());
    m_simulator->ask("/control/fault", "{}");
    QTRY_VERIFY(reply->isFinished());
    QCOMPARE(reply->error(), QNetworkReply::NoError);
}

void TestSimulator::readmeNamesEachFault()
{
    QFile readme(VELA_SIMULATOR_README);
    QVERIFY(readme.open(QFile::ReadOnly));
    const QByteArray text = readme.readAll();
    const QJsonArray faults = json(m_simulator->ask("/control/faults"))["faults"].toArray();
    QVERIFY(!faults.isEmpty());
    for (const QJsonValue &fault : faults) {
        const QByteArray name = fault["name"].toString().toUtf8();
        QVERIFY2(text.contains("{\"" + name + "\": "), name);
    }
}

void TestSimulator::pageKeepsToItself()
{
    const QByteArrayList types{"/ text/html", "/page.css text/css", "/page.js text/javascript"};
    for (const QByteArray &type : types) {
        const QByteArray path = type.split(' ').first();
        const QNetworkReply *reply = m_simulator->start(path);
        QTRY_VERIFY(reply->isFinished());
        QCOMPARE(path + ' ' + reply->rawHeader("Content-Type"), type + "; charset=utf-8");
        QCOMPARE(reply->rawHeader("X-Frame-Options"), QByteArray("DENY"));
        QVERIFY(!reply->hasRawHeader("Access-Control-Allow-Origin"));
        const QByteArray policy = reply->rawHeader("Content-Security-Policy");
        QVERIFY2(policy.startsWith("default-src 'none';") && !policy.contains("unsafe"), policy);
    }
}

void TestSimulator::connectionStaysOpen()
{
    const auto socket = m_simulator->connection();
    const QByteArray request = "POST /is_online HTTP/1.1\r\nHost: localhost\r\nAuthorization: "
                               "3f6c1d2e-7a4b-4c8d-9e0f-1a2b3c4d5e6f\r\nContent-Length: 19\r\n\r\n"
                               R"({"secret":"s3cret"})";
    for (int poll = 0; poll < 20; ++poll)
        QVERIFY(exchange(*socket, request, "}").startsWith("HTTP/1.1 200"));
    socket->write(request + request); // the second comes with the first
    QTRY_COMPARE(m_simulator->requestCount(), 22);
    const QByteArray withoutHost = "POST /control/speed HTTP/1.1\r\nHost: \r\n\r\n";
    QVERIFY(exchange(*socket, withoutHost, "unknown host name").contains("HTTP/1.1 403"));
    QCOMPARE(socket->state(), QAbstractSocket::ConnectedState);
}

/*! A page of another origin may send a body, and behind a body that is not read stands the next request. */
void TestSimulator::bodiesHideNoRequests()
{
    const auto socket = m_simulator->connection();
    const QByteArray hidden = "POST /control/wallboxes/EVSE-01/unplug HTTP/1.1\r\nHost: localhost\r\n\r\n";
    const QByteArray head =
        "POST /control/speed HTTP/1.1\r\nHost: localhost\r\nOrigin: http://evil.example\r\n"
        "Content-Type: multipart/form-data; boundary=x\r\nContent-Length: ";
    const QByteArray length = QByteArray::number(hidden.size());
    const QByteArray answer = exchange(*socket, head + length + "\r\n\r\n" + hidden, "}");
    QVERIFY2(answer.startsWith("HTTP/1.1 415"), answer);
    QTRY_COMPARE(socket->state(), QAbstractSocket::UnconnectedState);
    QVERIFY(m_simulator->wallbox(0)["car"].isObject());
}

void TestSimulator::largeBodiesAreRefused_data()
{
    QTest::addColumn<QByteArray>("headerAndBody");
    QTest::addColumn<bool>("isAnswered");
    QTest::addColumn<bool>("goesOn");
    const QByteArray body((1 << 20) + 1, ' ');
    QTest::newRow("announced") << "Content-Length: 1048577\r\n\r\n" + body << true << false;
    QTest::newRow("announced, hundreds of MB")
        << QByteArray("Content-Length: 999999999\r\n\r\n") << true << false;
    QTest::newRow("chunked") << "Transfer-Encoding: chunked\r\n\r\n100001\r\n" + body + "\r\n0\r\n\r\n"
                             << true << true;
    QTest::newRow("endless") << "Transfer-Encoding: chunked\r\n\r\n7fffffff\r\n" + body + body << false
                             << false;
}

void TestSimulator::largeBodiesAreRefused()
{
    QFETCH(QByteArray, headerAndBody);
    QFETCH(bool, isAnswered);
    QFETCH(bool, goesOn);
    const auto socket = m_simulator->connection();
    const QByteArray head = "POST /control/wallboxes HTTP/1.1\r\nHost: localhost\r\n";
    const QByteArray answer = exchange(*socket, head + headerAndBody, "}");
    QCOMPARE(answer.left(12), QByteArray(isAnswered ? "HTTP/1.1 413" : ""));
    QCOMPARE(answer.endsWith(R"({"error":"the body is larger than 1 MB"})"), isAnswered);
    if (goesOn) {
        const char plug[] =
            "POST /control/wallboxes/EVSE-01/plug HTTP/1.1\r\nHost: localhost\r\n\r\n"; // taken
        QVERIFY(exchange(*socket, plug, "}").startsWith("HTTP/1.1 409"));
    } else {
        QTRY_COMPARE(socket->state(), QAbstractSocket::UnconnectedState);
    }
}

void TestSimulator::furtherConnectionsWait()
{
    const QByteArray request = "GET /control/limits HTTP/1.1\r\nHost: localhost\r\n\r\n";
    std::vector<std::unique_ptr<QTcpSocket>> clients;
    for (int number = 0; number < 500; ++number) {
        clients.push_back(m_simulator->connection());
        QVERIFY(exchange(*clients.back(), request, "}").startsWith("HTTP/1.1 200"));
    }
    const auto late = m_simulator->connection();
    late->write(request);
    QVERIFY(exchange(*clients.back(), request, "}").startsWith("HTTP/1.1 200"));
    QCOMPARE(late->bytesAvailable(), 0);
    clients.clear();
    QVERIFY(exchange(*late, {}, "}").startsWith("HTTP/1.1 200"));
}

void TestSimulator::endsAtOnce()
{
    m_simulator->ask("/control/fault", R"({"silent": true})"); // leaves an idle connection behind
    m_simulator->start("/is_online", "{}");
    QTRY_COMPARE(m_simulator->requestCount(), 1);
    const QNetworkReply *stream = m_simulator->start("/control/events");
    QTRY_VERIFY(stream->bytesAvailable() > 0); // the rest is cleanup()'s: it ends the program
}

QTEST_GUILESS_MAIN(TestSimulator)
#include "tst_simulator.moc"
