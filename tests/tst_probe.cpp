// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "json.h"
#include "mask.h"
#include "replies.h"
#include "report.h"
#include "scriptedbackend.h"
#include "transport.h"
#include "waiting.h"

#include <QProcess>
#include <QtTest>

/*! What the simulator cannot show, see transcripts/probe-*.txt for the rest: how single replies are judged,
    and the program at a backend that breaks HTTP. */
class TestProbe : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void findings_data();
    void findings();
    void secretIsNotRepeated();
    void brokenReplies();
    void secretFromTerminal();
};

namespace {

constexpr char program[] = VELA_PROBE_FILE;

constexpr char goodRecord[] =
    R"({"timestamp": "2026-05-01T12:00:00Z", "status": "Charging", "meter_value": 3500, "phase_1": 16})";

/*! The findings of \a step, as a reader of the row compares them: "problem CODE WALLBOX, warning CODE". */
QString listed(const Step &step)
{
    QStringList lines;
    for (const Finding &finding : step.findings) {
        const QString severity = finding.severity == Problem ? "problem " : "warning ";
        lines.append((severity + finding.code + ' ' + finding.wallbox).trimmed());
    }
    return lines.join(", ");
}

Step replied(const QByteArray &body)
{
    Step step;
    step.reply = body;
    step.json = QJsonDocument::fromJson(body, &step.notJson);
    return step;
}

QString url(const char *url)
{
    Step step;
    judgeUrl(step, url);
    return listed(step);
}

QString answer(Step::Stage stage, int status, int milliseconds = 0, const QByteArray &body = "{}")
{
    Step step = replied(body);
    step.stage = stage;
    step.status = status;
    step.error = status < 400 ? QNetworkReply::NoError : QNetworkReply::UnknownContentError;
    step.duration = std::chrono::milliseconds(milliseconds);
    judgeAnswer(step);
    return listed(step);
}

QString failure(Step::Stage stage, QNetworkReply::NetworkError error)
{
    Step step;
    step.stage = stage;
    step.error = error;
    judgeAnswer(step);
    return listed(step);
}

QString groupInfo(const QByteArray &body)
{
    Step step = replied(body);
    readGroupInfo(step);
    return listed(step);
}

QString maximum(const QByteArray &ampere)
{
    return groupInfo(R"({"evse_ids": {"a": {"max_charging_current": )" + ampere + "}}}");
}

/*! Of the live values of a wallbox "a". */
QString values(const QByteArray &body)
{
    Step step = replied(body);
    readValues(step, {"a"}, QDateTime::fromString("2026-05-01T12:00:00Z", Qt::ISODate));
    return listed(step);
}

/*! Of a good record in which \a member has another \a value. */
QString record(const char *member, const QJsonValue &value)
{
    QJsonObject record = json(goodRecord);
    record.insert(member, value);
    return values(R"({"success": true, "values": {"a": )" + QJsonDocument(record).toJson() + "}}");
}

QString masked(const QString &text)
{
    Mask mask;
    mask.hide("");
    mask.hide(R"(<a"b ü>)");
    return mask(text);
}

/*! Runs the probe and returns what it prints, its status last. The backend, which lives in this thread,
    answers meanwhile. */
QString run(const QStringList &arguments, const QString &secret = "s3cret")
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start("env", QStringList{"VELA_SECRET=" + secret, program} + arguments);
    if (!waitFor([&] { return process.state() == QProcess::NotRunning; }))
        return "does not end";
    return QString::fromUtf8(process.readAll()) + "status " + QString::number(process.exitCode());
}

} // namespace

void TestProbe::initTestCase()
{
    qputenv("TZ", "UTC-2"); // POSIX: two hours east of UTC
}

void TestProbe::findings_data()
{
    QTest::addColumn<QString>("found");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, const QString &found, const char *expected) {
        QTest::newRow(name) << found << expected;
    };
    row("host and port", url("https://192.168.1.20:8080"), "");
    row("this machine", url("http://localhost:8080/"), "");
    row("this machine, IPv6", url("http://[::1]:8080"), "");
    row("name without scheme", url("localhost:8080"), "problem unusable-url");
    row("other scheme", url("ftp://backend"), "problem unusable-url");
    row("no host", url("http://"), "problem unusable-url");
    row("port out of range", url("http://backend:70000"), "problem unusable-url");

    row("any success", answer(Step::GroupInfo, 299), "");
    row("wrong token", answer(Step::GroupInfo, 401), "problem token-refused");
    row("malformed request", answer(Step::LiveValues, 400), "problem bad-request");
    row("no POST", answer(Step::GroupInfo, 405), "problem post-refused");
    row("unusual status", answer(Step::GroupInfo, 451), "problem http-error");
    row("no online check", answer(Step::OnlineCheck, 404), "warning no-online-check");
    row("redirect", answer(Step::GroupInfo, 302, 0, "<html>"), "problem redirect");
    row("redirect that is read", answer(Step::GroupInfo, 302), "");
    row("just in time", answer(Step::LiveValues, 200, 1500), "");
    row("late", answer(Step::LiveValues, 200, 1501), "warning slow");
    row("almost too late", answer(Step::LiveValues, 200, 12000), "warning slow");
    row("too late", answer(Step::LiveValues, 200, 12001), "problem too-slow");
    row("late once", answer(Step::GroupInfo, 200, 12001), "warning slow");
    row("online check cut", failure(Step::OnlineCheck, QNetworkReply::RemoteHostClosedError),
        "warning connection-closed");
    row("unknown host", failure(Step::GroupInfo, QNetworkReply::HostNotFoundError), "problem unreachable");
    row("TLS", failure(Step::GroupInfo, QNetworkReply::SslHandshakeFailedError), "problem network-error");
    row("other failure", failure(Step::GroupInfo, QNetworkReply::ProxyNotFoundError),
        "problem network-error");

    row("no body", groupInfo(""), "problem not-json");
    row("array", groupInfo("[]"), "problem not-json");
    row("no ids", groupInfo(R"({"success": true})"), "problem no-evse-ids");
    row("list of ids", groupInfo(R"({"evse_ids": ["EVSE-01"]})"), "problem no-evse-ids");
    row("only the bad one", groupInfo(R"({"evse_ids": {"a": {"max_charging_current": 16}, "b": 16}})"),
        "problem unusable-max-current b");
    for (const char *sound : {"6", "32", "16.0"})
        row(qPrintable(QString("maximum ") + sound), maximum(sound), "");
    for (const char *unusable : {"5", "33", "-6", "16.5", "\"16\"", "null"})
        row(qPrintable(QString("maximum ") + unusable), maximum(unusable), "problem unusable-max-current a");

    row("not JSON", values("\x1f\x8b"), "problem not-json");
    row("values null", values(R"({"values": null})"), "problem no-values-object");
    row("success as text", values(R"({"success": "true", "values": {"a": )" + QByteArray(goodRecord) + "}}"),
        "warning no-success");
    row("other case", values(R"({"success": true, "values": {"A": )" + QByteArray(goodRecord) + "}}"),
        "problem no-values a, warning not-asked-for A");
    row("no object", values(R"({"success": true, "values": {"a": "Available"}})"), "problem no-record a");

    const QJsonValue missing(QJsonValue::Undefined);
    row("status Unavailable", record("status", "Unavailable"), "");
    row("lower case status", record("status", "charging"), "problem unknown-status a");
    row("no status", record("status", missing), "problem unknown-status a");
    row("offset", record("timestamp", "2026-05-01T14:00:00.250+02:00"), "");
    row("no time", record("timestamp", missing), "warning no-timestamp a");
    row("empty time", record("timestamp", ""), "warning no-timestamp a");
    row("seconds", record("timestamp", 1777636800), "problem unreadable-timestamp a");
    row("local time", record("timestamp", "2026-05-01T14:00:00"), "warning no-timezone a");
    row("UTC that does not say so", record("timestamp", "2026-05-01T12:00:00"),
        "warning no-timezone a, warning clock-difference a");
    row("five minutes old", record("timestamp", "2026-05-01T11:55:00Z"), "");
    row("older", record("timestamp", "2026-05-01T11:54:59Z"), "warning clock-difference a");
    row("from the future", record("timestamp", "2026-05-01T12:05:01Z"), "warning clock-difference a");
    row("meter as text", record("meter_value", "3500"), "problem not-a-number a");
    row("no meter", record("meter_value", missing), "warning no-meter-value a");
    row("phase as text", record("phase_2", "16"), "problem not-a-number a");
    row("phase null", record("phase_2", QJsonValue::Null), "");
    row("no phase", record("phase_1", missing), "warning no-currents a");

    row("nothing to hide", masked("s3cret"), "s3cret");
    row("secret as it is", masked("<a\"b ü> and <a\"b ü>"), "*** and ***");
    row("secret in JSON", masked(R"({"secret":"<a\"b ü>"})"), R"({"secret":"***"})");
    row("secret in a URL", masked("/?s=%3Ca%22b%20%C3%BC%3E"), "/?s=***");
    row("secret in HTML", masked("<b>&lt;a&quot;b ü&gt;</b>"), "<b>***</b>");
}

void TestProbe::findings()
{
    QFETCH(QString, found);
    QTEST(found, "expected");
}

void TestProbe::secretIsNotRepeated()
{
    const QString secret = QStringLiteral("s3\"crét");
    for (const char *format : {"--timeout=10", "--json"}) {
        ScriptedBackend backend;
        backend.setWallbox(secret, 16);
        backend.values.insert(secret,
                              QJsonObject{
                                  {"status", QString(197, '.') + secret}
        }); // is cut
        backend.answer(ScriptedBackend::Limits, 403,
                       R"({"sent": ["s3\"cr\u00e9t", "3f6c1d2e-7a4b-4c8d-9e0f-1a2b3c4d5e6f"]})");
        const QString printed = run({format, "--set-limit", secret + "=6", backend.url(), "yard"}, secret);
        const ScriptedBackend::Request sent = backend.requests().value(3);
        QCOMPARE(sent.json().value("secret").toString(), secret);
        QVERIFY(printed.contains("refuses") && printed.contains("no connector status"));
        QVERIFY2(!printed.contains("s3"), qPrintable(printed));
        QVERIFY2(!printed.contains(sent.headers.value("authorization")), qPrintable(printed));
    }
}

void TestProbe::brokenReplies()
{
    ScriptedBackend backend;
    backend.setWallbox("EVSE-01", 16);
    backend.values.insert("EVSE-01",
                          QJsonObject{
                              {"status", "\x1b[2J\u202e"}
    });
    backend.hold(ScriptedBackend::Online);
    // More than the probe reads, and then the connection stays open.
    const QByteArray begin = "HTTP/1.1 200 OK\r\nSet-Cookie: a=b\r\n\r\n" + QByteArray(65 * 1024 * 1024, ' ');
    QTimer timer;
    connect(&timer, &QTimer::timeout, &timer, [&] {
        if (backend.sendPart(ScriptedBackend::Online, begin))
            timer.stop();
    });
    timer.start(1);
    const QString endless = run({backend.url(), "yard"});
    QVERIFY2(endless.contains("warning  the probe stopped reading the reply after 64 MB"),
             qPrintable(endless));
    QVERIFY2(endless.contains("warning  the backend sets a cookie"), qPrintable(endless));
    QVERIFY2(endless.contains("\"status\" is the text \"\\u001b[2J\ufffd\""), qPrintable(endless));

    backend.answerNormally(ScriptedBackend::Online);
    // Whether or not Qt notices.
    backend.hangUp(ScriptedBackend::GroupInfo,
                   "HTTP/1.1 200 OK\r\nContent-Length: 91\r\n\r\n{\"evse_ids\": ");
    const QString cut = run({backend.url(), "yard"});
    QVERIFY2(cut.contains("; when a gateway is set up, as at each start of nymea, such a reply removes"),
             qPrintable(cut));
    QVERIFY2(cut.endsWith("status 1"), qPrintable(cut));
}

void TestProbe::secretFromTerminal()
{
    ScriptedBackend backend;
    backend.setWallbox("EVSE-01", 16);
    QProcess terminal; // script(1) gives the probe one, and shows what appears on it
    QString shown;
    connect(&terminal, &QProcess::readyReadStandardOutput, &terminal,
            [&terminal, &shown] { shown += QString::fromUtf8(terminal.readAllStandardOutput()); });
    terminal.start("script",
                   {"--quiet", "--return", "--flush", "--command",
                    QString("env -u VELA_SECRET '%1' %2 yard").arg(program, backend.url()), "/dev/null"});
    QTRY_COMPARE(shown, QString("Group secret: "));
    terminal.write("s3cret\n");
    QTRY_COMPARE(terminal.state(), QProcess::NotRunning);
    QVERIFY2(!shown.contains("s3cret"), qPrintable(shown));
    QCOMPARE(backend.requests().value(0).json().value("secret").toString(), QString("s3cret"));
}

QTEST_GUILESS_MAIN(TestProbe)
#include "tst_probe.moc"
