// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef COMMANDLINE_H
#define COMMANDLINE_H

#include <QCommandLineParser>

#include <chrono>
#include <initializer_list>

/*! The exit statuses of the programs. */
enum ExitStatus {
    Succeeded = 0,
    Failed = 1,     //!< the program could not do its work, or found something wrong
    WrongUsage = 2, //!< a mistake in the command line
};

/*! The command line of a program. A mistake in it ends the program by endWithUsageError(). --help and
    --version end it with status 0. */
class CommandLine
{
public:
    struct Option
    {
        const char *name;
        const char *help;
        const char *valueName = nullptr; //!< null for a flag
        const char *preset = nullptr;    //!< the value if the option is not given
    };
    CommandLine(const char *description, std::initializer_list<Option> options);

    /*! Declares a positional argument. Without this, the program accepts none. */
    void addArgument(const char *name, const char *help);
    /*! Reads \a arguments; the first one is the program's name. */
    void read(const QStringList &arguments);

    QStringList arguments() const { return m_parser.positionalArguments(); }
    bool isSet(const char *option) const { return m_parser.isSet(QLatin1String(option)); }
    QString text(const char *option) const { return m_parser.value(QLatin1String(option)); }
    double number(const char *option, double least, double most) const;
    int wholeNumber(const char *option, int least, int most) const;
    /*! A number of seconds, at least 0.001. */
    std::chrono::milliseconds seconds(const char *option, double most) const;

private:
    QCommandLineParser m_parser;
    bool m_takesArguments = false;
};

/*! Prints "PROGRAM: reason (see --help)" to standard error, and exits with WrongUsage. */
[[noreturn]] void endWithUsageError(const QString &reason);

#endif // COMMANDLINE_H
