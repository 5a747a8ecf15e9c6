// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "json.h"
#include "logrecorder.h"
#include "networkhandler.h"
#include "scriptedbackend.h"

#include <QJsonArray>
#include <QProcess>
#include <QtTest>

namespace {

constexpr char program[] = VELA_PROBE_FILE;

/*! A backend with two wallboxes that the plugin would work with. */
class GoodBackend : public ScriptedBackend
{
public:
    GoodBackend()
    {
        const QJsonObject record{
            {"timestamp",   QDateTime::currentDateTimeUtc().toString(Qt::ISODate)},
            {"status",      "Charging"                                           },
            {"meter_value", 3500                                                 },
            {"phase_1",     16                                                   },
        };
        for (const char *infraId : {"EVSE-01", "EVSE-02"}) {
            setWallbox(infraId, 16);
            values.insert(infraId, record);
        }
    }
};

/*! The probe's run: its exit status, -1 after a crash, and what it printed. */
struct Run
{
    int status = -1;
    QString out;
    QString err;
};

Run run(const QStringList &arguments, const QString &secret = "s3cret")
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove("VELA_SECRET");
    if (!secret.isNull())
        environment.insert("VELA_SECRET", secret);
    process.setProcessEnvironment(environment);
    process.setStandardInputFile(QProcess::nullDevice());
    // The backend lives in this thread, and answers while the event loop runs.
    QEventLoop loop;
    QObject::connect(&process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), &loop,
                     &QEventLoop::quit);
    QTimer::singleShot(60000, &loop, &QEventLoop::quit);
    process.start(QString::fromUtf8(program), arguments);
    loop.exec();
    if (process.state() != QProcess::NotRunning)
        return {};
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

/*! What is on the wire, without the header that names the port. */
QString wire(const QList<ScriptedBackend::Request> &requests)
{
    QStringList lines;
    for (const ScriptedBackend::Request &request : requests) {
        QStringList headers;
        for (auto it = request.headers.begin(); it != request.headers.end(); ++it) {
            if (it.key() != "host")
                headers.append(QString::fromUtf8(it.key() + ": " + it.value()));
        }
        headers.sort();
        lines.append(QString::fromUtf8(request.target + '\n') + headers.join('\n')
                     + QString::fromUtf8("\n\n" + request.body));
    }
    return lines.join('\n');
}

} // namespace

Q_DECLARE_METATYPE(ScriptedBackend::Operation)

class TestProbe : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void asksWhatThePluginAsks();
    void limitIsSentOnlyOnDemand();
    void fault_data();
    void fault();
    void nobodyThere();
    void silentBackendIsGivenUp();
    void cutGroupInfoIsDangerous();
    void endlessReplyIsBrokenOff();
    void usage_data();
    void usage();
    void secretFromFile();
    void secretFromTerminal();
    void secretIsNotRepeated();
    void jsonDocument();
};

void TestProbe::asksWhatThePluginAsks()
{
    const GoodBackend probed;
    const Run probe = run({"--set-limit", "EVSE-01=10", probed.url() + "/api", "north yard"});
    QVERIFY2(probe.out.contains("The plugin would work with this backend (problems: 0, remarks: 1).\n"),
             qPrintable(probe.out + probe.err));
    QCOMPARE(probe.status, 0);

    const LogRecorder log;
    const GoodBackend polled;
    NetworkHandler plugin;
    plugin.setServerInfo(polled.url() + "/api", "north yard", "s3cret");
    QJsonObject limits = json(R"({"EVSE-01": {"value": 10, "unit": "A"}})");
    plugin.isOnline();
    QTRY_COMPARE(polled.requests().size(), 1);
    plugin.getConnectedInfra();
    QTRY_COMPARE(polled.requests().size(), 2);
    plugin.getEvseValues({"EVSE-01", "EVSE-02"});
    QTRY_COMPARE(polled.requests().size(), 3);
    plugin.setProfileChargePowerLimit(limits);
    QTRY_COMPARE(polled.requests().size(), 4);
    QCOMPARE(wire(probed.requests()), wire(polled.requests()));
    const auto requests = probed.requests();
    for (const ScriptedBackend::Request &request : requests)
        QVERIFY2(probe.out.contains(probed.url() + QString::fromUtf8(request.target) + '\n'),
                 request.target.constData());
}

void TestProbe::limitIsSentOnlyOnDemand()
{
    const GoodBackend backend;
    QCOMPARE(run({backend.url(), "yard"}).status, 0);
    QCOMPARE(run({"--set-limit=EVSE-02=0", backend.url(), "yard"}).status, 0);
    const Run tooMuch = run({"--set-limit", "EVSE-01=32", backend.url(), "yard"});
    QVERIFY2(tooMuch.out.contains("PROBLEM  EVSE-01: 32 A is more than the 16 A that the group allows it"),
             qPrintable(tooMuch.out));
    QCOMPARE(tooMuch.status, 1);
    const Run stranger = run({"--set-limit", "evse-01=6", backend.url(), "yard"});
    QVERIFY2(stranger.out.contains("PROBLEM  evse-01: "), qPrintable(stranger.out));
    QCOMPARE(backend.limits().size(), 1);
    QCOMPARE(backend.limits("EVSE-02"), QList<double>{0});
}

void TestProbe::fault_data()
{
    using Operation = ScriptedBackend::Operation;
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<int>("httpStatus");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("sentence");
    const auto row = [](const char *name, Operation operation, int httpStatus, const QByteArray &body,
                        int status, const char *sentence) {
        QTest::newRow(name) << operation << httpStatus << body << status << sentence;
    };
    row("no online check", Operation::Online, 404, "", 0,
        "remark   the backend has no online check (the plugin itself does without this check)");
    row("wrong secret", Operation::GroupInfo, 403, "{}", 1,
        "PROBLEM  the backend refuses access: the group secret is probably wrong");
    row("no group", Operation::GroupInfo, 200, "{}", 1,
        "reads an object of wallboxes by id; at a gateway's set-up, as at each start of nymea, such a reply "
        "removes every wallbox");
    row("unknown group", Operation::GroupInfo, 404, "no such group", 1, "  reply    no such group\n");
    row("no values", Operation::Values, 200, R"({"values": {}})", 1,
        "PROBLEM  EVSE-02: listed in the group, but without values");
    row("limit refused", Operation::Limits, 503, "", 1, "PROBLEM  the backend has a fault of its own");
}

void TestProbe::fault()
{
    QFETCH(ScriptedBackend::Operation, operation);
    QFETCH(int, httpStatus);
    QFETCH(QByteArray, body);
    QFETCH(QString, sentence);
    GoodBackend backend;
    backend.answer(operation, httpStatus, body);
    const Run probe = run({"--set-limit", "EVSE-01=6", backend.url(), "yard"});
    QVERIFY2(probe.out.contains(sentence), qPrintable(probe.out + probe.err));
    QVERIFY2(probe.out.contains(QString("answer   HTTP %1 after ").arg(httpStatus)), qPrintable(probe.out));
    QTEST(probe.status, "status");
    if (httpStatus != 200) // a refusal is one finding: its body is not judged as well
        QCOMPARE(probe.out.count("PROBLEM"), probe.status);
}

void TestProbe::nobodyThere()
{
    GoodBackend backend;
    const QString url = backend.url();
    backend.shutDown();
    const Run probe = run({url, "yard"});
    QVERIFY2(probe.out.contains("PROBLEM  nothing listens there"), qPrintable(probe.out));
    QVERIFY2(probe.out.contains("Live values\n  skipped  the backend is out of reach\n"),
             qPrintable(probe.out));
    QCOMPARE(probe.status, 1);
}

void TestProbe::silentBackendIsGivenUp()
{
    GoodBackend backend;
    backend.hold(ScriptedBackend::Online);
    backend.hold(ScriptedBackend::Values);
    const Run probe = run({"--timeout", "0.25", backend.url(), "yard"});
    QVERIFY2(probe.out.contains("remark   no answer within 0.25 s (the plugin itself does without"),
             qPrintable(probe.out));
    QVERIFY2(probe.out.contains("PROBLEM  no answer within 0.25 s; the plugin would wait on"),
             qPrintable(probe.out));
    QCOMPARE(probe.status, 1);
}

void TestProbe::cutGroupInfoIsDangerous()
{
    GoodBackend backend;
    // Whether or not Qt notices.
    backend.hangUp(ScriptedBackend::GroupInfo,
                   "HTTP/1.1 200 OK\r\nContent-Length: 91\r\n\r\n{\"evse_ids\": ");
    const Run probe = run({backend.url(), "yard"});
    QVERIFY2(probe.out.contains("; at a gateway's set-up, as at each start of nymea, such a reply removes"),
             qPrintable(probe.out));
    QCOMPARE(probe.status, 1);
}

void TestProbe::endlessReplyIsBrokenOff()
{
    GoodBackend backend;
    backend.hold(ScriptedBackend::Online);
    backend.hold(ScriptedBackend::Values);
    // More than the probe reads, and then the connection stays open.
    const QByteArray begin = "HTTP/1.1 200 OK\r\n\r\n" + QByteArray(65 * 1024 * 1024, ' ');
    QVector<ScriptedBackend::Operation> left{ScriptedBackend::Online, ScriptedBackend::Values};
    QTimer timer;
    connect(&timer, &QTimer::timeout, &timer, [&] {
        if (!left.isEmpty() && backend.sendPart(left.first(), begin))
            left.removeFirst();
    });
    timer.start(1);
    const Run probe = run({"--set-limit", "EVSE-01=6", backend.url(), "yard"});
    QVERIFY2(probe.out.contains("remark   the reply was broken off after 64 MB"), qPrintable(probe.out));
    QVERIFY2(probe.out.contains("PROBLEM  the reply was broken off after 64 MB"), qPrintable(probe.out));
    QCOMPARE(probe.err, QString());
    QCOMPARE(probe.status, 1);
    QCOMPARE(backend.limits().size(), 1); // the next step
}

void TestProbe::usage_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("line");
    const QString limit = "--set-limit takes EVSE=AMPERE, with 0 or 6 to 32 whole amperes";
    const QString timeout = "--timeout takes seconds, more than 0 and up to 3600";
    const QString arguments = "takes exactly URL and GROUP; the secret is no argument, see --secret-file";
    const auto row = [](const char *name, const char *words, const QString &complaint) {
        QTest::newRow(name) << QString(words).split(' ') << complaint;
    };
    row("no group", "http://x", arguments);
    row("secret as an argument", "http://x yard s3cret", arguments);
    row("secret as an option", "--secret=s3cret http://x yard", "Unknown option 'secret'.");
    row("empty group", "http://x ", "neither URL nor GROUP may be empty");
    row("no file", "--secret-file /nowhere http://x yard", "cannot read /nowhere: No such file or directory");
    row("file that steers the terminal", "--secret-file /\x1b[2J http://x yard",
        "cannot read /\ufffd[2J: No such file or directory");
    row("no current", "--set-limit EVSE-01 http://x yard", limit);
    row("too little", "--set-limit EVSE-01=5 http://x yard", limit);
    row("never", "--timeout 0 http://x yard", timeout);
}

void TestProbe::usage()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, line);
    const Run probe = run(arguments);
    QCOMPARE(probe.err, "vela-probe: " + line + " (--help tells more)\n");
    QCOMPARE(probe.out, QString());
    QCOMPARE(probe.status, 2);
}

void TestProbe::secretFromFile()
{
    QTemporaryFile file;
    QVERIFY(file.open());
    file.write("from the file\n");
    file.close();
    const GoodBackend backend;
    QCOMPARE(run({"--secret-file", file.fileName(), backend.url(), "yard"}, "from outside").status, 0);
    QCOMPARE(backend.requests().value(0).json().value("secret").toString(), QString("from the file"));

    QCOMPARE(
        run({backend.url(), "yard"}, QString()).err,
        QString("vela-probe: no secret: name a file with --secret-file, or set VELA_SECRET (--help tells "
                "more)\n"));
}

void TestProbe::secretFromTerminal()
{
    const GoodBackend backend;
    QProcess terminal; // script(1) gives the probe one, and shows what appears on it
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove("VELA_SECRET");
    terminal.setProcessEnvironment(environment);
    QString shown;
    connect(&terminal, &QProcess::readyReadStandardOutput, &terminal,
            [&terminal, &shown] { shown += QString::fromUtf8(terminal.readAllStandardOutput()); });
    terminal.start("script",
                   {"--quiet", "--return", "--flush", "--command",
                    QString("'%1' %2 yard").arg(program, backend.url()), "/dev/null"});
    QTRY_COMPARE(shown, QString("Group secret: "));
    terminal.write("s3cret\n");
    QTRY_COMPARE(terminal.state(), QProcess::NotRunning);
    QCOMPARE(terminal.exitCode(), 0);
    QVERIFY2(!shown.contains("s3cret"), qPrintable(shown));
    QCOMPARE(backend.requests().value(0).json().value("secret").toString(), QString("s3cret"));
}

void TestProbe::secretIsNotRepeated()
{
    const QString secret = QStringLiteral("s3\"crét");
    for (const char *format : {"--timeout=10", "--json"}) {
        GoodBackend backend;
        backend.setWallbox(secret, 16);
        QJsonObject record = backend.values.value("EVSE-01").toObject();
        record.insert("status", secret);
        backend.values.insert(secret, record);
        backend.answer(ScriptedBackend::Limits, 403, R"({"sent": ["s3\"cr\u00e9t"]})");
        const Run first = run({format, "--set-limit", "EVSE-01=6", backend.url(), "yard"}, secret);
        QCOMPARE(backend.requests().value(0).json().value("secret").toString(), secret);

        const QString token = QString::fromUtf8(backend.requests().value(0).headers.value("authorization"));
        backend.answer(ScriptedBackend::GroupInfo, 401, token.toUtf8());
        const Run second = run({format, backend.url(), "yard"}, secret);
        const QString printed = first.out + first.err + second.out + second.err;
        QCOMPARE(printed.count("refuses"), 2);
        QVERIFY2(printed.contains("no connector status"), qPrintable(printed));
        QVERIFY2(!printed.contains("crét") && !printed.contains("u00e9"), qPrintable(printed));
        QVERIFY2(!printed.contains(token), qPrintable(printed));
    }
}

void TestProbe::jsonDocument()
{
    GoodBackend backend;
    backend.wallboxes.insert("EVSE-01", json(R"({"max_charging_current": "32"})"));
    backend.wallboxes.insert("\u202e", {});
    const Run probe = run({"--json", backend.url(), "yard"});
    const QJsonObject document = json(probe.out.toUtf8());
    QCOMPARE(document.value("works"), QJsonValue(false));
    QCOMPARE(document.value("problems"), QJsonValue(3));
    QStringList steps;
    const QJsonArray array = document.value("steps").toArray();
    for (const QJsonValue &step : array)
        steps.append(step.toObject().value("step").toString());
    QCOMPARE(steps, (QStringList{"url", "online-check", "group-info", "live-values"}));
    const QJsonObject groupInfo = array.at(2).toObject();
    const QJsonObject finding = groupInfo.value("findings").toArray().at(0).toObject();
    QCOMPARE(finding.value("kind"), QJsonValue("problem"));
    QCOMPARE(finding.value("code"), QJsonValue("unusable-max-current"));
    QCOMPARE(finding.value("wallbox"), QJsonValue("EVSE-01"));
    QCOMPARE(finding.value("text").toString(),
             "\"max_charging_current\" is the text \"32\"; the plugin takes whole amperes from 6 to 32 and "
             "would read 0");
    const QJsonObject request = groupInfo.value("request").toObject();
    QCOMPARE(request.value("status"), QJsonValue(200));
    QCOMPARE(request.value("body").toObject(), json(R"({"secret": "***"})"));
    QVERIFY2(probe.out.contains(R"("wallbox":"\u202e")"), qPrintable(probe.out)); // steers no terminal
    QCOMPARE(probe.status, 1);
}

QTEST_GUILESS_MAIN(TestProbe)
#include "tst_probe.moc"
