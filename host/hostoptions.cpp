// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "hostoptions.h"

#include "commandline.h"

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>

namespace {

constexpr double longestJob = 86400; // s

constexpr char description[] =
    R"(Loads an integration plugin and acts as the nymea daemon for it: carries out commands
from standard input, one per line, and prints what happens. "help" lists the commands.

The first commands for a simulator are
"discover vela backendUrl=http://127.0.0.1:8080 groupId=yard groupSecret=s3cret",
then "add 1" and "watch".

Things and the plugin's settings are kept in the storage folder, and so is the
history of the prompt, with the secrets that were typed there. What has been
reported is stored. Log records go to standard error; without --log, debug records
only if that is not a terminal.

At a terminal, Ctrl-C ends a "watch", a "wait" or an unfinished line; Ctrl-D ends
the host. Otherwise the first SIGINT, SIGTERM or SIGHUP ends the host normally as soon
as it can write; a second one kills it at once (in a shell, status 130, 143 or 129).
Nothing that is stored is lost. Both output streams must be read: when a pipe is full,
the host and its plugin wait until it is read again.

Exit status: 0 after "quit", end of input, SIGINT, SIGTERM or SIGHUP; 1 if the plugin or
the storage folder cannot be used, if things, settings or output could not be written in
the end, or if a command failed that was neither typed at a terminal nor read with
--json; 2 for a wrong option.)";

/*! The plugin that was built together with this program. */
QString defaultPlugin()
{
    const QDir here(QCoreApplication::applicationDirPath());
    return QDir::cleanPath(here.filePath(QStringLiteral(VELA_DEFAULT_PLUGIN)));
}

} // namespace

HostOptions readHostOptions()
{
    // clang-format off
    CommandLine line(description, {
        {"plugin", "The plugin; by default the one built with the host.", "FILE"},
        {"storage", "The folder in which things and the plugin's settings are kept, for one host at a time. Only its "
                    "owner may write to it. By default vela-host below $XDG_DATA_HOME or ~/.local/share.", "FOLDER"},
        {"json", "One JSON object per line on standard output, for programs."},
        {"begin-with", "A command to carry out before the first line is read.", "COMMAND"},
        {"job-timeout", "After how long a job that the plugin does not finish ends with ThingErrorTimeout "
                        "(default 30).", "SECONDS", "30"},
        {"log", "Which log records to write, as Qt's logging rules: Vela.debug=true;Host.debug=false. "
                "Overrides QT_LOGGING_RULES.", "RULES"},
    });
    // clang-format on
    line.read(QCoreApplication::arguments());
    HostOptions options;
    options.json = line.isSet("json");
    options.logRules = line.text("log");
    options.firstCommand = line.text("begin-with");
    options.daemon.pluginFile = line.isSet("plugin") ? line.text("plugin") : defaultPlugin();
    options.daemon.storageFolder = line.isSet("storage")
        ? line.text("storage")
        : QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    options.daemon.jobTimeout = line.seconds("job-timeout", longestJob);
    if (options.daemon.storageFolder.isEmpty())
        endWithUsageError(QStringLiteral("--storage needs a folder"));
    return options;
}
