// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "options.h"

#include "printable.h"

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr int usageError = 2;        // exit status
constexpr double longestJob = 86400; // s

const char description[] =
    R"(Loads an integration plugin and plays the nymea daemon for it: obeys commands on
standard input, one a line, and prints what happens. "help" lists the commands.

To begin with:
  discover vela backendUrl=http://127.0.0.1:8080 groupId=yard groupSecret=s3cret
  add 1
  watch

Things and plugin storage are kept in the storage folder: what has been reported
is stored. Log lines go to standard error; without --log, those of the debug level
only where that is not a terminal.

Both streams must be read: when a pipe is full, the host and its plugin stand
still until somebody reads on. A first SIGINT, SIGTERM or SIGHUP ends the host in
good order as soon as it can write, a second one kills it at once (in a shell,
status 130, 143 or 129). Neither loses what is stored.

Exit status: 0 after "quit", end of input, SIGINT or SIGTERM; 1 when the plugin or
the storage folder cannot be used, or when things, settings or output could not be
written until the end; 2 for a wrong option.)";

/*! The plugin that was built together with this program. */
QString defaultPlugin()
{
    const QDir here(QCoreApplication::applicationDirPath());
    return QDir::cleanPath(here.filePath(QStringLiteral(VELA_DEFAULT_PLUGIN)));
}

} // namespace

OptionReader::OptionReader()
    : m_help({QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Shows this text."))
    , m_version({QStringLiteral("v"), QStringLiteral("version")}, QStringLiteral("Shows the version."))
    , m_plugin(QStringLiteral("plugin"),
               QStringLiteral("The plugin; by default the one built with the host."), QStringLiteral("FILE"))
    , m_storage(QStringLiteral("storage"),
                QStringLiteral(
                    "Where things and plugin storage are kept, for one host at a time, a folder in which "
                    "nobody else can write; by default "
                    "vela-host below $XDG_DATA_HOME or ~/.local/share."),
                QStringLiteral("DIR"))
    , m_json(QStringLiteral("json"),
             QStringLiteral("One JSON object a line on standard output, for programs."))
    , m_jobTimeout(QStringLiteral("job-timeout"),
                   QStringLiteral("After how long a job that the plugin does not finish ends with "
                                  "ThingErrorTimeout (default 30)."),
                   QStringLiteral("SECONDS"), QStringLiteral("30"))
    , m_log(QStringLiteral("log"),
            QStringLiteral(
                "Which log records to write, as Qt's logging rules: Vela.debug=true;Host.debug=false. "
                "Goes before QT_LOGGING_RULES."),
            QStringLiteral("RULES"))
{
    m_parser.setApplicationDescription(QString::fromLatin1(description));
    m_parser.addOptions({m_help, m_version, m_plugin, m_storage, m_json, m_jobTimeout, m_log});
}

void OptionReader::parse(int argc, char **argv)
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    m_parsed = m_parser.parse(arguments);
}

QString OptionReader::logRules() const
{
    return m_parser.value(m_log);
}

HostOptions OptionReader::options()
{
    if (!m_parsed)
        fail(m_parser.errorText());
    if (m_parser.isSet(m_help))
        m_parser.showHelp(EXIT_SUCCESS);
    if (m_parser.isSet(m_version))
        m_parser.showVersion();
    if (m_parser.isSet(m_storage) && m_parser.value(m_storage).isEmpty())
        fail(QStringLiteral("--storage needs a folder."));
    if (!m_parser.positionalArguments().isEmpty())
        fail(QStringLiteral("Unknown argument \"%1\".").arg(m_parser.positionalArguments().constFirst()));
    bool isNumber = false;
    const double seconds = m_parser.value(m_jobTimeout).toDouble(&isNumber);
    if (!isNumber || !(seconds > 0 && seconds <= longestJob))
        fail(QStringLiteral("--job-timeout must be a number of seconds up to %1, not \"%2\".")
                 .arg(longestJob)
                 .arg(m_parser.value(m_jobTimeout)));

    HostOptions result;
    result.json = m_parser.isSet(m_json);
    result.daemon.pluginFile = m_parser.isSet(m_plugin) ? m_parser.value(m_plugin) : defaultPlugin();
    result.daemon.storageFolder = m_parser.isSet(m_storage)
        ? m_parser.value(m_storage)
        : QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    result.daemon.jobTimeout = std::chrono::milliseconds(qMax<qint64>(1, qRound64(seconds * 1000)));
    return result;
}

void OptionReader::fail(const QString &error) const
{
    std::fprintf(stderr, "vela-host: %s See vela-host --help.\n", qUtf8Printable(printable(error)));
    std::exit(usageError);
}
