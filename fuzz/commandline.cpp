// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

// What somebody types at the host: up to four lines, in a daemon with a gateway and two wallboxes.

#include "commands.h"
#include "fakenetwork.h"
#include "fuzzing.h"
#include "integrationpluginvela.h"
#include "pluginloader.h"
#include "shellwords.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <memory>

// In place of the host's loader: the plugin is linked in.
LoadedPlugin loadPlugin(const QString &)
{
    return {new IntegrationPluginVela, pluginMetadata(), QString()};
}

namespace {

/*! Says nothing and counts the answers. */
class AnswerCounter : public Output
{
public:
    void refused(const QString &, const QString &reason) override
    {
        require(!reason.isEmpty(), "a refusal has a reason");
        ++count;
    }
    void done(const QString &) override { ++count; }
    void help(const QVector<CommandHelp> &) override { ++count; }
    void classes(const ThingClasses &) override { ++count; }
    void discovered(const ThingDiscoveryInfo *, const ThingClasses &) override { ++count; }
    void jobDone(const QString &, const ThingJob *, const Thing *) override { ++count; }
    void things(const Things &) override { ++count; }
    void thing(const Thing *, const Thing *) override { ++count; }
    void thingAdded(const Thing *) override { }
    void thingRemoved(const Thing *) override { }
    void setupFinished(const ThingSetupInfo *) override { }
    void stateChanged(const Thing *, const StateType &, const QVariant &) override { }
    void watched(const Things &) override { }

    int count = 0;
};

/*! The host without its streams; whatever it asks the backend is answered at once. */
class Host
{
public:
    Host()
        : daemon({QString(), m_storage.path(), std::chrono::milliseconds(0)})
    {
        require(daemon.load().isEmpty(), "the daemon starts");
        addGateway();
        require(isComplete(), "the host has a gateway and two wallboxes");
    }
    ~Host()
    {
        // The plugin gives its client back with the last thing: a discovery since then has made another.
        if (daemon.configuredThings().isEmpty())
            addGateway();
        while (!daemon.configuredThings().isEmpty())
            daemon.remove(daemon.configuredThings().constFirst());
    }
    Q_DISABLE_COPY(Host)

    bool isComplete() const { return daemon.configuredThings().size() == 3; }

    void execute(Commands *commands, const QString &line)
    {
        answers.count = 0;
        commands->execute(line);
        do
            runPostedEvents();
        while (
            answerPost(R"({"evse_ids":{"A":{"max_charging_current":16},"B":{"max_charging_current":32}}})"));
        commands->interrupt();
    }

private:
    void addGateway()
    {
        Commands commands(&daemon, &answers);
        execute(&commands,
                QStringLiteral("discover vela backendUrl=http://127.0.0.1 groupId=yard groupSecret=s"));
        execute(&commands, QStringLiteral("add 1"));
    }

    QTemporaryDir m_storage;

public:
    Daemon daemon;
    AnswerCounter answers;
};

/*! A line of the same words, each in quotes. */
QString quoted(const QStringList &words)
{
    QString line;
    for (QString word : words)
        line +=
            QLatin1Char('\'') + word.replace(QLatin1Char('\''), QLatin1String("'\\''")) + QLatin1String("' ");
    return line;
}

/*! Returns whether the next line may follow. */
bool run(Host *host, Commands *commands, const QString &line)
{
    const ShellWords split = splitShellWords(line);
    require(split.error.isEmpty() || split.words.isEmpty(), "a line has words or an error");
    require(splitShellWords(quoted(split.words)).words == split.words, "quoted words stay as they are");
    host->execute(commands, line);
    const bool isBlank = split.words.isEmpty() && split.error.isEmpty();
    require(host->answers.count + (commands->isPending() ? 1 : 0) == (isBlank ? 0 : 1),
            "a command is answered once or pending");
    return !commands->isPending();
}

void check(const Things &things)
{
    for (const Thing *thing : things) {
        const State current = thing->state(QStringLiteral("maxChargingCurrent"));
        require(current.stateTypeId().isNull()
                    || (current.value().toUInt() >= 6 && current.value().toUInt() <= 32),
                "no command takes a current beyond its limits");
    }
}

void runLines(Host *host, const QList<QByteArray> &lines)
{
    Commands commands(&host->daemon, &host->answers);
    for (const QByteArray &line : lines) {
        if (!run(host, &commands, QString::fromUtf8(line)))
            break;
        check(host->daemon.configuredThings());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    constexpr int linesAtMost = 4;
    constexpr int inputsAtMost = 1000; // every set-up leaves a connection behind while its gateway lives
    static std::unique_ptr<Host> host;
    static int inputs = 0;
    if (!host || ++inputs > inputsAtMost) {
        host.reset();
        host = std::make_unique<Host>();
        inputs = 0;
    }
    runLines(host.get(), inputBytes(data, size).split('\n').mid(0, linesAtMost));
    if (!host->isComplete())
        host.reset(); // here: at the end of the process the table of commands is gone before it
    return 0;
}
