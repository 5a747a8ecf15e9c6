// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef OPTIONS_H
#define OPTIONS_H

#include "daemon.h"

#include <QCommandLineParser>

struct HostOptions
{
    Daemon::Options daemon;
    bool json = false;
};

/*! Reads the command line, in two steps: the log rules are needed before QCoreApplication exists, and paths
   that are relative to the program only after. */
class OptionReader
{
public:
    OptionReader();

    void parse(int argc, char **argv);
    QString logRules() const;
    /*! Ends the process, with a text, where the command line asks for that or has an error. */
    HostOptions options();

private:
    [[noreturn]] void fail(const QString &error) const;

    QCommandLineParser m_parser;
    const QCommandLineOption m_help;
    const QCommandLineOption m_version;
    const QCommandLineOption m_plugin;
    const QCommandLineOption m_storage;
    const QCommandLineOption m_json;
    const QCommandLineOption m_jobTimeout;
    const QCommandLineOption m_log;
    bool m_parsed = false;
};

#endif // OPTIONS_H
