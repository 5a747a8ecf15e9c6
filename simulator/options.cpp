// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT
#include "options.h"

#include "printable.h"

#include <QCommandLineParser>

#include <cstdio>
#include <cstdlib>

namespace {
constexpr char description[] =
    "Plays the backend of a charging yard: a group of wallboxes and the cars at them.\n"
    "\n"
    "From the start a three-phase 16 A car charges at EVSE-01, a one-phase 32 A car at EVSE-02,\n"
    "a three-phase car at EVSE-03 is full (SuspendedEV), EVSE-04 is free; and so on from EVSE-05.\n"
    "Without a limit a car gets what its wallbox and itself can take. A limit holds until the next.\n"
    "Cars and faults are handled under URL/control/, beginning with: curl URL/control/state";

[[noreturn]] void fail(const QString &reason)
{
    std::fprintf(stderr, "vela-simulator: %s (see --help)\n", qUtf8Printable(printable(reason)));
    std::exit(2);
}

QCommandLineOption option(const char *name, const char *help, const char *valueName, const char *preset)
{
    return {QString::fromLatin1(name), QString::fromLatin1(help), QString::fromLatin1(valueName),
            QString::fromLatin1(preset)};
}

QList<QCommandLineOption> allOptions()
{
    return {
        option("port", "Listen on this port (8080); 0 picks a free one.", "port", "8080"),
        option("listen", "Listen on this address (127.0.0.1).", "address", "127.0.0.1"),
        option("group", "The group's id (yard).", "id", "yard"),
        option("secret", "The group's secret (s3cret).", "secret", "s3cret"),
        option("wallboxes", "Start with this many wallboxes (4).", "N", "4"),
        option("speed", "Let time pass this much faster (1); 0 stops it.", "factor", "1"),
    };
}

double number(const QCommandLineParser &parser, const char *name, double least, double most)
{
    const QString option = QString::fromLatin1(name);
    bool isNumber = false;
    const double value = parser.value(option).toDouble(&isNumber);
    if (!isNumber || !(value >= least && value <= most))
        fail(QStringLiteral("--%1 takes a number from %2 to %3, not \"%4\"")
                 .arg(option)
                 .arg(least)
                 .arg(most)
                 .arg(parser.value(option)));
    return value;
}

int wholeNumber(const QCommandLineParser &parser, const char *name, int least, int most)
{
    const double value = number(parser, name, least, most);
    if (value != int(value))
        fail(QStringLiteral("--%1 takes a whole number, not %2").arg(QLatin1String(name)).arg(value));
    return int(value);
}

void parse(QCommandLineParser &parser, const QStringList &arguments)
{
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();
    parser.setApplicationDescription(QString::fromLatin1(description));
    parser.addOptions(allOptions());
    if (!parser.parse(arguments))
        fail(parser.errorText());
    if (parser.isSet(help))
        parser.showHelp();
    if (parser.isSet(version))
        parser.showVersion();
    const QStringList words = parser.positionalArguments();
    if (!words.isEmpty())
        fail(QStringLiteral("there is nothing to do with \"%1\"").arg(words.first()));
}
} // namespace

Options readOptions(const QStringList &arguments)
{
    QCommandLineParser parser;
    parse(parser, arguments);
    Options options;
    options.yard.group = parser.value(QStringLiteral("group"));
    options.yard.secret = parser.value(QStringLiteral("secret"));
    options.yard.wallboxes = wholeNumber(parser, "wallboxes", 0, 1000);
    options.yard.speed = number(parser, "speed", 0, 100000);
    options.listenAddress = parser.value(QStringLiteral("listen"));
    options.port = wholeNumber(parser, "port", 0, 65535);
    if (options.listenAddress.isEmpty())
        fail(QStringLiteral("--listen takes an address, as 127.0.0.1 or 0.0.0.0"));
    return options;
}
