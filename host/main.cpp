// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "daemon.h"
#include "endsignals.h"
#include "hostlogging.h"
#include "hostoptions.h"
#include "printable.h"
#include "session.h"
#include "standardstreams.h"

#include <QCoreApplication>

#include <cstdio>
#include <sys/stat.h>

namespace {

int run(const HostOptions &options)
{
    quitAtEndSignals();
    // Never deleted, as the platform's daemon lives as long as its process: a plugin may free its last
    // objects only with its last thing.
    static auto *const daemon = new Daemon(options.daemon);
    const QString error = daemon->load();
    if (!error.isEmpty()) {
        std::fprintf(stderr, "vela-host: %s\n", qUtf8Printable(printable(error)));
        return EXIT_FAILURE;
    }
    Output output(options.json);
    Session session(daemon, &output);
    QObject::connect(&session, &Session::ended, qApp, &QCoreApplication::quit);
    const int status = QCoreApplication::exec();
    if (!daemon->commit()) {
        std::fflush(stdout);
        // At once: when the plugin goes with the process, its settings would be written where there is no
        // room.
        std::_Exit(EXIT_FAILURE);
    }
    return std::fflush(stdout) == 0 && std::ferror(stdout) == 0 ? status : EXIT_FAILURE;
}

} // namespace

int main(int argc, char **argv)
{
    openStandardStreams();
    ::umask(S_IRWXG | S_IRWXO); // the plugin's storage may hold secrets
    const QString environmentRules = takeEnvironmentLogRules();
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("vela-host"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VELA_VERSION));
    const HostOptions options = readHostOptions();
    startLogging(options.logRules.isEmpty() ? environmentRules : options.logRules);
    return run(options);
}
