// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "commandline.h"
#include "completion.h"
#include "daemon.h"
#include "endsignals.h"
#include "hostlogging.h"
#include "hostoptions.h"
#include "linereader.h"
#include "printable.h"
#include "session.h"
#include "standardstreams.h"

#include <QCoreApplication>

#include <cstdio>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr char greeting[] = "\"help\" lists the commands, the Tab key completes words, Ctrl-D ends the host.";

int runPiped(Daemon *daemon, const HostOptions &options)
{
    LineReader reader;
    reader.add(options.firstCommand);
    Output output(options.json, nullptr);
    const Session session(daemon, &reader, &output);
    const int status = QCoreApplication::exec();
    return session.hasFailed() && !options.json ? Failed : status;
}

int runAtTerminal(Daemon *daemon, const HostOptions &options)
{
    Prompt prompt(daemon->storageFile(QStringLiteral("history")),
                  [daemon](const QString &before) { return completionsFor(*daemon, before); });
    prompt.add(options.firstCommand);
    Output output(false, &prompt);
    Session session(daemon, &prompt, &output);
    QObject::connect(&prompt, &Prompt::enterPressed, &session, &Session::enter);
    QObject::connect(&prompt, &Prompt::interrupted, &session, &Session::interrupt);
    output.print({{}, {QLatin1String(greeting)}});
    return QCoreApplication::exec();
}

int run(const HostOptions &options)
{
    quitAtEndSignals();
    // Never deleted, like the platform's daemon, which exists as long as its process: a plugin may free its
    // last objects only with its last thing.
    static auto *const daemon = new Daemon(options.daemon);
    const QString error = daemon->load();
    if (!error.isEmpty()) {
        std::fprintf(stderr, "vela-host: %s\n", qUtf8Printable(printable(error)));
        return Failed;
    }
    const bool isInteractive = !options.json && ::isatty(STDIN_FILENO) && ::isatty(STDOUT_FILENO);
    const int status = isInteractive ? runAtTerminal(daemon, options) : runPiped(daemon, options);
    if (!daemon->commit()) {
        std::fflush(stdout);
        // Without destructors: QSettings would write the plugin's settings again, although there is no space.
        std::_Exit(Failed);
    }
    return std::fflush(stdout) == 0 && std::ferror(stdout) == 0 ? status : Failed;
}

} // namespace

int main(int argc, char **argv)
{
    openStandardStreams();
    ::umask(S_IRWXG | S_IRWXO); // the plugin's settings may hold secrets
    const QString environmentRules = takeEnvironmentLogRules();
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("vela-host"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VELA_VERSION));
    const HostOptions options = readHostOptions();
    startLogging(options.logRules.isEmpty() ? environmentRules : options.logRules);
    return run(options);
}
