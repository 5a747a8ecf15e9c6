// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "options.h"

#include "printable.h"

#include <QCommandLineParser>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr char description[] =
    "Checks whether nymea's Vela plugin would work with a backend. It asks whether\n"
    "the backend is online, for the wallboxes of the group and for their live\n"
    "values, with the plugin's own requests, and says what the plugin cannot use.\n"
    "\n"
    "The group's secret is read from --secret-file, else from the environment\n"
    "variable VELA_SECRET, else asked for at the terminal. It is never printed.\n"
    "\n"
    "PROBLEM marks what keeps the plugin from working with the backend or with one\n"
    "of its wallboxes; remark, what it can live with. The exit status is 0 without\n"
    "a problem, 1 with one, and 2 for a wrong call.\n"
    "\n"
    "Nothing is changed at the backend, unless --set-limit sends a charge limit:\n"
    "that one stays in force until nymea or somebody else sets another.\n"
    "\n"
    "Example: vela-probe --secret-file secret.txt http://192.168.1.20:8080 yard";

constexpr double longestTimeout = 3600; // s

const QLatin1String helpOption("help");
const QLatin1String versionOption("version");
const QLatin1String secretFileOption("secret-file");
const QLatin1String setLimitOption("set-limit");
const QLatin1String timeoutOption("timeout");
const QLatin1String jsonOption("json");

void addOptions(QCommandLineParser &parser)
{
    const auto text = [](const char *text) { return QString::fromLatin1(text); };
    parser.addPositionalArgument(text("URL"),
                                 text("The backend, as entered in nymea: scheme, host and port."));
    parser.addPositionalArgument(text("GROUP"), text("The id of the group of wallboxes."));
    parser.addOption({
        {text("h"), helpOption},
        text("Print this help.")
    });
    parser.addOption({
        {text("v"), versionOption},
        text("Print the version.")
    });
    parser.addOption(
        {secretFileOption, text("Read the secret from this file, its only line."), text("FILE")});
    parser.addOption({setLimitOption,
                      text("Also set a charge limit, once: 0 (no charging) or whole amperes from 6 to 32."),
                      text("EVSE=AMPERE")});
    parser.addOption({timeoutOption, text("Give each step up after this time, 10 if not set."),
                      text("SECONDS"), text("10")});
    parser.addOption({jsonOption, text("Print one JSON document in place of text.")});
}

LimitRequest readLimit(const QString &text)
{
    // The last sign counts: an infrastructure id may have one of its own.
    const int separator = text.lastIndexOf(QLatin1Char('='));
    bool isNumber = false;
    const int ampere = text.midRef(separator + 1).toInt(&isNumber);
    const bool isUsable = ampere == 0 || (ampere >= smallestCurrent && ampere <= largestCurrent);
    if (separator < 1 || !isNumber || !isUsable)
        failUsage(QStringLiteral("--set-limit takes EVSE=AMPERE, with 0 or 6 to 32 whole amperes"));
    return {text.left(separator), double(ampere)};
}

std::chrono::milliseconds readTimeout(const QString &text)
{
    bool isNumber = false;
    const double seconds = text.toDouble(&isNumber);
    if (!isNumber || !(seconds >= 0.001 && seconds <= longestTimeout))
        failUsage(QStringLiteral("--timeout takes seconds, more than 0 and up to %1").arg(longestTimeout));
    return std::chrono::milliseconds(qint64(seconds * 1000));
}

void parse(QCommandLineParser &parser, const QStringList &arguments)
{
    parser.setApplicationDescription(QString::fromLatin1(description));
    addOptions(parser);
    if (!parser.parse(arguments))
        failUsage(parser.errorText());
    if (parser.isSet(helpOption))
        parser.showHelp();
    if (parser.isSet(versionOption))
        parser.showVersion();
    // Not repeated: a third argument may well be the secret, and belongs on no screen.
    if (parser.positionalArguments().size() != 2)
        failUsage(
            QStringLiteral("takes exactly URL and GROUP; the secret is no argument, see --secret-file"));
}

} // namespace

Options readOptions(const QStringList &arguments)
{
    QCommandLineParser parser;
    parse(parser, arguments);
    Options options;
    options.url = parser.positionalArguments().at(0);
    options.groupId = parser.positionalArguments().at(1);
    if (options.url.isEmpty() || options.groupId.isEmpty())
        failUsage(QStringLiteral("neither URL nor GROUP may be empty"));
    options.secretFile = parser.value(secretFileOption);
    if (parser.isSet(secretFileOption) && options.secretFile.isEmpty())
        failUsage(QStringLiteral("--secret-file takes the name of a file"));
    if (parser.isSet(setLimitOption))
        options.limit = readLimit(parser.value(setLimitOption));
    options.timeout = readTimeout(parser.value(timeoutOption));
    options.json = parser.isSet(jsonOption);
    return options;
}

void failUsage(const QString &reason)
{
    std::fprintf(stderr, "vela-probe: %s (--help tells more)\n", qUtf8Printable(printable(reason)));
    std::exit(2);
}
