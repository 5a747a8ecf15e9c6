// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "commandline.h"

#include "printable.h"

#include <QCoreApplication>

#include <cstdio>
#include <cstdlib>

CommandLine::CommandLine(const char *description, std::initializer_list<Option> options)
{
    m_parser.setApplicationDescription(QString::fromUtf8(description));
    m_parser.addHelpOption();
    m_parser.addVersionOption();
    for (const Option &option : options)
        m_parser.addOption({QString::fromUtf8(option.name), QString::fromUtf8(option.help),
                            QString::fromUtf8(option.valueName), QString::fromUtf8(option.preset)});
}

void CommandLine::addArgument(const char *name, const char *help)
{
    m_parser.addPositionalArgument(QString::fromUtf8(name), QString::fromUtf8(help));
    m_takesArguments = true;
}

void CommandLine::read(const QStringList &arguments)
{
    if (!m_parser.parse(arguments))
        endWithUsageError(m_parser.errorText());
    if (isSet("help"))
        m_parser.showHelp();
    if (isSet("version"))
        m_parser.showVersion();
    if (!m_takesArguments && !m_parser.positionalArguments().isEmpty())
        endWithUsageError(
            QStringLiteral("unexpected argument \"%1\"").arg(m_parser.positionalArguments().constFirst()));
}

double CommandLine::number(const char *option, double least, double most) const
{
    bool isNumber = false;
    const double value = text(option).toDouble(&isNumber);
    if (!isNumber || !(value >= least && value <= most))
        endWithUsageError(
            QStringLiteral("--%1 takes a number from %2 to %3, not \"%4\"")
                .arg(QLatin1String(option), QString::number(least), QString::number(most), text(option)));
    return value;
}

int CommandLine::wholeNumber(const char *option, int least, int most) const
{
    const double value = number(option, least, most);
    if (value != int(value))
        endWithUsageError(
            QStringLiteral("--%1 takes a whole number, not \"%2\"").arg(QLatin1String(option), text(option)));
    return int(value);
}

std::chrono::milliseconds CommandLine::seconds(const char *option, double most) const
{
    return std::chrono::milliseconds(qRound64(number(option, 0.001, most) * 1000));
}

void endWithUsageError(const QString &reason)
{
    const QString line =
        QStringLiteral("%1: %2 (see --help)").arg(QCoreApplication::applicationName(), reason);
    std::fprintf(stderr, "%s\n", qUtf8Printable(printable(line)));
    std::exit(WrongUsage);
}
