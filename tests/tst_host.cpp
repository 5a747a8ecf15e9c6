// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "hostprocess.h"
#include "json.h"

#include <QtTest>

#include <csignal>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

/*! The host program as a script or a person meets it. */
class TestHost : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void answersAndEvents();
    void discoverAnswers();
    void refusals_data();
    void refusals();
    void answersWhileASetupIsPending();
    void aRemovedThingsCommandIsAnswered();
    void pendingCommandDelaysTheNext();
    void signalEndsIt();
    void secondSignalKillsIt();
    void closedStreams_data();
    void closedStreams();
    void longLines();
    void logRecords();
    void unusablePlugins_data();
    void unusablePlugins();
    void options_data();
    void options();
    void textForPeople();
    void textIsSafe_data();
    void textIsSafe();

private:
    /*! Runs the host with \a input as a file until it ends by itself; its output. */
    QString run(const QStringList &arguments, const QByteArray &input, int *status = nullptr,
                QString *errors = nullptr) const;
    void start(const QStringList &options = {});
    QStringList storage() const { return {"--storage", m_folder->path()}; }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<HostProcess> m_host;
};

void TestHost::init()
{
    m_host.reset();
    m_folder = std::make_unique<QTemporaryDir>();
    start();
}

void TestHost::start(const QStringList &options)
{
    m_host.reset();
    m_host = std::make_unique<HostProcess>(FAKE_PLUGIN, m_folder->path(), options);
}

QString TestHost::run(const QStringList &arguments, const QByteArray &input, int *status,
                      QString *errors) const
{
    QTemporaryFile file;
    if (!file.open() || file.write(input) != input.size() || !file.flush())
        return "no file";
    QProcess process;
    process.setStandardInputFile(file.fileName());
    process.start(VELA_HOST, arguments);
    if (!process.waitForFinished(HostProcess::patience) || process.exitStatus() != QProcess::NormalExit)
        return "no end";
    if (status)
        *status = process.exitCode();
    if (errors)
        *errors = QString::fromUtf8(process.readAllStandardError());
    return QString::fromUtf8(process.readAllStandardOutput());
}

void TestHost::answersAndEvents()
{
    m_host->command("discover bridge address=A setup=announces children=1");
    const QJsonObject added = m_host->command("add 1");
    QVERIFY(added.value("ok").toBool());
    QCOMPARE(added.value("thingError"), QJsonValue("ThingErrorNoError"));
    QCOMPARE(added.value("message"), QJsonValue(""));
    QVERIFY(!added.contains("error"));
    QCOMPARE(m_host->events.size(), 3); // what the post-set-up has changed comes before the answer
    const QString id = added.value("thingId").toString();
    m_host->nextEvent("setupFinished");
    QStringList order;
    for (const QJsonObject &event : qAsConst(m_host->events)) {
        const QJsonObject thing = event.value("thing").toObject();
        order << event.value("event").toString() + ' ' + thing.value("name").toString();
    }
    QCOMPARE(order,
             QStringList({"thingAdded Bridge A", "setupFinished ", "stateChanged ", "thingAdded Lamp 1",
                          "setupFinished "}));
    QCOMPARE(m_host->events.at(1).value("thingId").toString(), id);
    QCOMPARE(m_host->events.at(1).value("thingError").toString(), QString("ThingErrorNoError"));

    const QJsonObject things = m_host->command("things");
    const QJsonObject lamp = things.value("things").toArray().at(1).toObject();
    QCOMPARE(lamp.keys(),
             QStringList({"class", "id", "name", "params", "parentId", "setupStatus", "states"}));
    QCOMPARE(lamp.value("class").toString(), QString("lamp"));
    QCOMPARE(lamp.value("parentId").toString(), id);
    QCOMPARE(lamp["params"].toObject(), json(R"({"number": 1})"));
    QCOMPARE(lamp["states"].toObject(),
             json(R"({"brightness": 5, "maxBrightness": 10, "power": false, "order": "", "burnt": 0})"));
    QCOMPARE(m_host->command("show Lamp").value("things").toArray(), QJsonArray{lamp});

    m_host->events.clear();
    QVERIFY(m_host->command("set 'Lamp 1' brightness 9").value("ok").toBool());
    QJsonObject change =
        json(R"({"event": "stateChanged", "name": "Lamp 1", "state": "brightness", "value": 9})");
    change["thingId"] = lamp["id"];
    QCOMPARE(m_host->events, QVector<QJsonObject>{change}); // before the answer
    QVERIFY(m_host->command("remove " + id).value("ok").toBool());
    QCOMPARE(m_host->eventsNamed("thingRemoved").size(), 2);
    QCOMPARE(m_host->command("things").value("things").toArray(), QJsonArray());
}

void TestHost::discoverAnswers()
{
    QJsonObject answer = m_host->command("discover bridge address=A children=2");
    QCOMPARE(answer.value("thingError"), QJsonValue("ThingErrorNoError"));
    QJsonObject offer = json(R"({"title": "Bridge A", "description": "A bridge", "class": "bridge",
        "thingId": null, "params": {"address": "A", "children": 2}})");
    QCOMPARE(answer.value("offers").toArray(), QJsonArray{offer});
    const QString id = m_host->command("add 1").value("thingId").toString();
    answer = m_host->command("discover bridge address=A children=2");
    offer["thingId"] = id;
    QCOMPARE(answer.value("offers").toArray(), QJsonArray{offer});
    // The offer stands for what it has become, and for a new thing once that is gone.
    QCOMPARE(m_host->command("add 1").value("thingId").toString(), id);
    QVERIFY(m_host->command("remove Bridge").value("ok").toBool());
    const QString second = m_host->command("add 1").value("thingId").toString();
    QVERIFY(!second.isEmpty() && second != id);

    answer = m_host->command("discover bridge address=broken");
    QCOMPARE(answer.value("ok"), QJsonValue(false));
    QCOMPARE(answer.value("thingError"), QJsonValue("ThingErrorHardwareFailure"));
    QCOMPARE(answer.value("message"), QJsonValue("It is broken.\nReplace it."));
    QCOMPARE(answer.value("offers").toArray(), QJsonArray());
    QCOMPARE(m_host->command("add 1").value("error").toString(),
             QString("There is nothing to add; \"discover\" something first."));
}

void TestHost::refusals_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("error");
    const auto row = [](const char *name, const char *command, const char *error) {
        QTest::newRow(name) << command << error;
    };
    row("unknown command", "lamps", "There is no command \"lamps\"; there are classes, discover,");
    row("open quote", "show 'Lamp 1", "A quote (') is not closed.");
    row("too few", "set Lamp brightness", "Usage: set THING STATE VALUE");
    row("too many", "things now", "Usage: things");
    row("unknown class", "discover car", "There is no thing class \"car\"; discovery finds bridge.");
    row("class not for discovery", "discover lamp", "Things of class lamp are not found by discovery.");
    row("unknown parameter", "discover bridge port=1", "There is no parameter \"port\"; there are ");
    row("no assignment", "discover bridge address", "\"address\" must read PARAM=VALUE.");
    row("given twice", "discover bridge address=A address=B", "Parameter address is given twice.");
    row("bad parameter", "discover bridge children=many", "Parameter children must be a whole number");
    row("great parameter", "discover bridge children=101", "Parameter children must be at most 100");
    row("no such offer", "add 2", "N must be a number from 1 to 1, not \"2\".");
    row("ambiguous thing", "remove Lamp", "\"Lamp\" could be any of Lamp 1, Lamp 2.");
    row("unknown state", "set 'Lamp 1' colour red", "Lamp 1 has no state \"colour\" that can be set");
    row("read-only state", "set 'Lamp 1' burnt 1", "Lamp 1 has no state \"burnt\" that can be set;");
    row("not a bool", "set 'Lamp 1' power on", "power must be true or false, not \"on\".");
    row("negative time", "watch -1", "SECONDS must be a number from 0 to 86400, not \"-1\".");
}

void TestHost::refusals()
{
    QFETCH(QString, command);
    QFETCH(QString, error);
    m_host->command("discover bridge address=A setup=announces children=2");
    m_host->command("add 1");
    while (m_host->eventsNamed("setupFinished").size() < 3 && !m_host->next().isEmpty()) { }
    const QJsonObject before = m_host->command("things");
    m_host->events.clear();
    const QJsonObject answer = m_host->command(command);
    QCOMPARE(answer.value("answer").toString(), command.section(' ', 0, 0));
    QCOMPARE(answer.value("ok"), QJsonValue(false));
    QVERIFY2(answer.value("error").toString().startsWith(error),
             qPrintable(answer.value("error").toString()));
    QCOMPARE(m_host->command("things"), before);
    QCOMPARE(m_host->events, QVector<QJsonObject>());
}

void TestHost::answersWhileASetupIsPending()
{
    m_host->command("discover bridge address=A setup=announces children=1");
    m_host->command("add 1");
    m_host->command("discover bridge address=A setup=hangs");
    m_host->send("add 1");
    m_host->nextEvent("stateChanged"); // the count of set-ups: this one has begun
    m_host->kill();
    start({"--job-timeout", "86400"});
    m_host->nextEvent("setupFinished");
    const QJsonArray things = m_host->command("things").value("things").toArray();
    QCOMPARE(things.at(0).toObject().value("setupStatus").toString(), QString("ThingSetupStatusInProgress"));
    QVERIFY(m_host->command("set 'Lamp 1' power true").value("ok").toBool());
}

void TestHost::aRemovedThingsCommandIsAnswered()
{
    m_host->command("discover bridge address=A setup=announces children=1");
    m_host->command("add 1");
    const QJsonObject answer = m_host->command("set 'Lamp 1' order vanish");
    QCOMPARE(m_host->eventsNamed("thingRemoved").size(), 1);
    QCOMPARE(answer.value("thingError").toString(), QString("ThingErrorThingNotFound"));
    QCOMPARE(answer.value("error").toString(), QString("Lamp 1 has been removed."));
}

/*! Also at the end of the input, which ends the host once all is answered. */
void TestHost::pendingCommandDelaysTheNext()
{
    start({"--job-timeout", "0.1"});
    for (const char *line : {"discover bridge address=nobody", "wait 0.05", "watch 0.05", "watch", "",
                             "# nothing", "help", "things", "discover bridge address=nobody"})
        m_host->send(line);
    m_host->closeInput();
    QStringList answers;
    for (QJsonObject answer = m_host->next(); !answer.isEmpty(); answer = m_host->next())
        answers << (answer["answer"].toString() + ' ' + answer["thingError"].toString()).trimmed();
    QCOMPARE(answers,
             QStringList({"discover ThingErrorTimeout", "wait", "watch", "watch", "help", "things",
                          "discover ThingErrorTimeout"}));
    QCOMPARE(m_host->exitStatus(), 0);
}

void TestHost::signalEndsIt()
{
    m_host->command("things");
    m_host->send("wait 1000");
    m_host->terminate();
    QCOMPARE(m_host->exitStatus(), 0);
}

/*! While its output is stuck in a pipe that nobody reads. */
void TestHost::secondSignalKillsIt()
{
    m_host.reset();
    const QString pipe = m_folder->filePath("pipe");
    const QByteArray pipeName = QFile::encodeName(pipe);
    QCOMPARE(mkfifo(pipeName.constData(), 0600), 0);
    const int fd = open(pipeName.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    const auto close = qScopeGuard([fd] { ::close(fd); });
    const int capacity = fcntl(fd, F_SETPIPE_SZ, 4096);
    QVERIFY(capacity > 0);
    QProcess process;
    process.setStandardOutputFile(pipe);
    process.start(VELA_HOST, QStringList{"--json", "--plugin", FAKE_PLUGIN} + storage());
    const QByteArray command = "things\n";
    const QByteArray answer = "{\"answer\":\"things\",\"ok\":true,\"things\":[]}\n";
    process.write(command.repeated(capacity / answer.size() + 1));
    const auto written = [fd] {
        int size = 0;
        return ioctl(fd, FIONREAD, &size) == 0 ? size : -1;
    };
    QTRY_VERIFY(written() + answer.size() > capacity);
    // More than two may be needed: two that arrive together are one.
    for (int i = 0; i < 100 && !process.waitForFinished(100); ++i)
        process.terminate();
    QCOMPARE(process.exitStatus(), QProcess::CrashExit);
    QCOMPARE(process.exitCode(), SIGTERM);
}

void TestHost::closedStreams_data()
{
    QTest::addColumn<QString>("redirection");
    QTest::newRow("input") << "<&-";
    QTest::newRow("output") << ">&-";
    QTest::newRow("all") << "<&- >&- 2>&-";
}

/*! Qt's own descriptors took their place: the host waited for ever, or wrote its answers to them. */
void TestHost::closedStreams()
{
    QFETCH(QString, redirection);
    m_host.reset();
    QProcess shell;
    shell.start("sh",
                {"-c", "exec \"$0\" --plugin \"$1\" --storage \"$2\" " + redirection, VELA_HOST, FAKE_PLUGIN,
                 m_folder->path()});
    shell.write("help\n");
    shell.closeWriteChannel();
    QVERIFY(shell.waitForFinished(HostProcess::patience));
    QCOMPARE(shell.exitStatus(), QProcess::NormalExit);
    QCOMPARE(shell.exitCode(), 0);
}

/*! A line of 30 MB took half a minute. */
void TestHost::longLines()
{
    m_host.reset();
    const QByteArray line = '#' + QByteArray(30000000, 'x') + '\n';
    QVERIFY(run(QStringList{"--plugin", FAKE_PLUGIN} + storage(), line + "help").contains("show this list"));
}

void TestHost::logRecords()
{
    m_host.reset();
    const QStringList arguments = QStringList{"--plugin", FAKE_PLUGIN} + storage();
    const QByteArray input = "discover bridge address=broken\ndiscover bridge address=A\nadd 1\n";
    qputenv("QT_LOGGING_RULES", "*.warning=false");
    QString log;
    run(arguments + QStringList{"--log", "*.debug=true"}, input, nullptr, &log);
    qunsetenv("QT_LOGGING_RULES");
    const QStringList lines = log.split('\n', Qt::SkipEmptyParts);
    static const QRegularExpression record(
        R"(^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3} (debug|warning) default: (.*)$)");
    QStringList texts;
    for (const QString &line : lines) {
        const QRegularExpressionMatch match = record.match(line);
        texts << (match.hasMatch() ? match.captured(1) + ' ' + match.captured(2) : line);
    }
    QCOMPARE(texts,
             QStringList({"warning It is broken.", "    Replace it.",
                          "debug setting up \"Bridge A\" with 0 things"}));
}

void TestHost::unusablePlugins_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("reason");
    QTest::newRow("missing") << "/nowhere/plugin.so"
                             << "there is no such file";
    QTest::newRow("not a library") << QFINDTESTDATA("fakeplugin.json") << "it is not a Qt plugin";
    QTest::newRow("other version") << OTHER_VERSION_PLUGIN << "it is built for API version 6.0.0, not 7.4.0";
    QDirIterator others(QLibraryInfo::location(QLibraryInfo::PluginsPath), {"*.so"}, QDir::Files,
                        QDirIterator::Subdirectories);
    QVERIFY(others.hasNext());
    QTest::newRow("another kind of plugin") << others.next() << "not io.nymea.IntegrationPlugin";
}

void TestHost::unusablePlugins()
{
    QFETCH(QString, file);
    QFETCH(QString, reason);
    m_host.reset();
    int status = 0;
    QString errors;
    QCOMPARE(run(QStringList{"--json", "--plugin", file} + storage(), "things\n", &status, &errors),
             QString());
    QCOMPARE(status, 1);
    QVERIFY2(errors.contains(file), qPrintable(errors));
    QVERIFY2(errors.contains(reason), qPrintable(errors));
}

void TestHost::options_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("text");
    QTest::newRow("help") << QStringList("--help") << 0 << "discover vela backendUrl=";
    QTest::newRow("version") << QStringList("--version") << 0 << "vela-host " VELA_VERSION "\n";
    QTest::newRow("unknown") << QStringList("--colour") << 2 << "colour";
    QTest::newRow("argument") << QStringList("things") << 2 << "Unknown argument \"things\"";
    QTest::newRow("no time") << QStringList({"--job-timeout", "never"}) << 2 << "not \"never\"";
}

void TestHost::options()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, text);
    int status = -1;
    QString errors;
    const QString output = run(arguments, {}, &status, &errors);
    QTEST(status, "status");
    QVERIFY2((output + errors).contains(text), qPrintable(output + errors));
}

void TestHost::textForPeople()
{
    m_host.reset();
    const QString output =
        run(QStringList{"--plugin", FAKE_PLUGIN} + storage(),
            "discover bridge address='A\x1b[31m' setup=announces children=1\nadd 1\nthings\n"
            "set Lamp brightness 3\nshow Lamp\nset Lamp brightness 12\nwatch 0\n"
            "discover bridge address=broken\nquit\nhelp\n");
    QVERIFY2(!output.contains("show this list"), qPrintable(output)); // nothing is read behind "quit"
    QVERIFY2(!output.contains('\x1b'), qPrintable(output));
    for (const char *text :
         {"1  Bridge A\uFFFD[31m  A bridge  bridge  new\n", "+ Lamp 1 has been added (Lamp)\n",
          "\nLamp 1         lamp    set up  power false\n", "Lamp 1: brightness 3\n",
          "state brightness     3      (1 to 10, can be set)\n",
          "Error: Parameter brightness must be from 1 to 10, not \"12\".\n", "There are no wallboxes yet.\n",
          "Error: It is broken. Replace it.\n"})
        QVERIFY2(output.contains(text), qPrintable(text + ("\nis not in\n" + output)));
}

void TestHost::textIsSafe_data()
{
    QTest::addColumn<QStringList>("arguments");
    const QString name = "\u001b]0;pwn\u0007\u001b[31mX\rY\u202e\u2028";
    QTest::newRow("for people") << QStringList({"--plugin", FAKE_PLUGIN});
    QTest::newRow("for programs") << QStringList({"--plugin", FAKE_PLUGIN, "--json"});
    QTest::newRow("argument") << QStringList(name);
    QTest::newRow("plugin") << QStringList({"--plugin", name});
}

/*! A wallbox could colour the terminal of whoever read the log. */
void TestHost::textIsSafe()
{
    QFETCH(QStringList, arguments);
    m_host.reset();
    QFile stored(m_folder->filePath("things.json")); // of an unknown class, which is a warning
    QVERIFY(stored.open(QIODevice::WriteOnly));
    stored.write(R"({"things": [{"id": "00000000-0000-4000-8000-000000000099",
                     "name": "\u001b]0;pwn\u0007\u001b[31mX\rY\u202e\u2028"}]})");
    stored.close();
    QString log;
    const QString output =
        run(storage() + arguments,
            "discover bridge address='\u001b]0;pwn\u0007\u001b[31mX\rY\u202e\u2028'\nadd 1\n", nullptr, &log);
    static const QRegularExpression unsafe("[^\\P{C}\\n]|\u2028");
    QVERIFY2(log.contains("pwn") && !(output + log).contains(unsafe), qPrintable(output + log));
}

QTEST_GUILESS_MAIN(TestHost)
#include "tst_host.moc"
