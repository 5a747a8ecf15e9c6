// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "waiting.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <csignal>
#include <map>
#include <memory>

namespace {

/*! A program under test, with the part of its output that has not been compared yet. */
struct Program
{
    QProcess process;
    bool skips = false;     // "< ..." came before: lines may be left out
    bool isChecked = false; // "status" came: its end is what the transcript says
};

constexpr int sanitizerStatus = 99; // of a program with sanitizers, set in CMakePresets.json

/*! Whether \a process has ended in another way than by itself or by a signal that a transcript sends. */
bool hasCrashed(const QProcess &process)
{
    static const QList<int> sentSignals{SIGHUP, SIGINT, SIGKILL, SIGTERM};
    if (process.exitStatus() == QProcess::CrashExit)
        return !sentSignals.contains(process.exitCode());
    return process.exitCode() == sanitizerStatus;
}

/*! Runs one transcript; transcripts/README.md describes the language. Stops at the first difference. */
class TranscriptRunner
{
public:
    explicit TranscriptRunner(const QStringList &definitions);
    /*! What is wrong at \a line; empty if it holds. */
    QString run(const QString &line);
    /*! Ends the programs of a case. What is wrong with them; empty on success. */
    QString finishCase();

private:
    struct Order
    {
        QString (TranscriptRunner::*run)(const QString &text);
        bool needsProgram;
    };

    QString beginCase(const QString &);
    QString start(const QString &nameAndCommand);
    QString runShell(const QString &script);
    QString choose(const QString &name);
    QString type(const QString &line);
    QString expectOutput(const QString &text);
    QString expectError(const QString &text);
    QString endInput(const QString &);
    QString signal(const QString &name);
    QString expectStatus(const QString &status);

    QString filledIn(QString text) const;
    bool matches(const QString &text, const QString &line);

    std::map<QString, QString> m_definitions;  // by name, for every case
    std::map<QString, QString> m_placeholders; // by name, for this case
    std::unique_ptr<QTemporaryDir> m_folder;   // for this case
    std::map<QString, std::unique_ptr<Program>> m_programs;
    Program *m_program = nullptr; // the one that is typed into; m_programs owns it
};

TranscriptRunner::TranscriptRunner(const QStringList &definitions)
{
    for (const QString &definition : definitions)
        m_definitions[definition.section('=', 0, 0)] = definition.section('=', 1);
    beginCase({});
}

QString TranscriptRunner::run(const QString &line)
{
    static const std::map<QString, Order> orders{
        {"=",      {&TranscriptRunner::beginCase, false}  },
        {"$",      {&TranscriptRunner::start, false}      },
        {"sh",     {&TranscriptRunner::runShell, false}   },
        {"@",      {&TranscriptRunner::choose, false}     },
        {">",      {&TranscriptRunner::type, true}        },
        {"<",      {&TranscriptRunner::expectOutput, true}},
        {"!",      {&TranscriptRunner::expectError, true} },
        {"end",    {&TranscriptRunner::endInput, true}    },
        {"kill",   {&TranscriptRunner::signal, true}      },
        {"status", {&TranscriptRunner::expectStatus, true}},
    };
    const QString name = line.section(' ', 0, 0);
    if (name.isEmpty() || name == "#")
        return {};
    const auto order = orders.find(name);
    if (order == orders.end())
        return "no line begins with \"" + name + '"';
    if (order->second.needsProgram && !m_program)
        return "no program has been started";
    return (this->*order->second.run)(line.section(' ', 1));
}

QString TranscriptRunner::beginCase(const QString &)
{
    const QString difference = finishCase();
    m_folder = std::make_unique<QTemporaryDir>();
    m_placeholders = m_definitions;
    m_placeholders["folder"] = m_folder->path();
    return difference;
}

QString TranscriptRunner::finishCase()
{
    QString difference;
    for (const auto &[name, program] : m_programs) {
        QProcess &process = program->process;
        if (process.state() != QProcess::NotRunning) {
            process.closeWriteChannel();
            process.terminate();
        }
        if (!waitFor([&process] { return process.state() == QProcess::NotRunning; }))
            difference = name + " does not end";
        else if (!program->isChecked && hasCrashed(process))
            difference =
                name + " has crashed; standard error: " + QString::fromUtf8(process.readAllStandardError());
    }
    m_program = nullptr;
    m_programs.clear();
    return difference;
}

QString TranscriptRunner::start(const QString &nameAndCommand)
{
    const QString name = nameAndCommand.section(' ', 0, 0);
    QStringList words = QProcess::splitCommand(filledIn(nameAndCommand.section(' ', 1)));
    auto program = std::make_unique<Program>();
    m_program = program.get();
    m_programs[name] = std::move(program);
    m_program->process.setWorkingDirectory(m_folder->path());
    const QString file = words.takeFirst();
    m_program->process.start(file, words);
    return m_program->process.waitForStarted() ? QString() : "cannot start " + file;
}

QString TranscriptRunner::runShell(const QString &script)
{
    QProcess shell;
    shell.setWorkingDirectory(m_folder->path());
    shell.setProcessChannelMode(QProcess::MergedChannels);
    shell.start("bash", {"-c", filledIn(script)});
    if (!waitFor([&] { return shell.state() == QProcess::NotRunning; }))
        return "the command does not end";
    return shell.exitCode() == 0 ? QString() : "the command fails: " + shell.readAll();
}

QString TranscriptRunner::choose(const QString &name)
{
    const auto found = m_programs.find(name);
    if (found == m_programs.end())
        return "there is no program \"" + name + '"';
    m_program = found->second.get();
    return {};
}

QString TranscriptRunner::type(const QString &line)
{
    m_program->process.write(filledIn(line).toUtf8() + '\n');
    return {};
}

QString TranscriptRunner::expectOutput(const QString &text)
{
    if (text == "...") {
        m_program->skips = true;
        return {};
    }
    QProcess &process = m_program->process;
    for (;;) {
        if (!waitFor([&] { return process.canReadLine() || process.state() == QProcess::NotRunning; }))
            return "nothing more is printed";
        if (!process.canReadLine() && process.bytesAvailable() == 0)
            return "the program has ended; standard error: " + process.readAllStandardError();
        const QString line = QString::fromUtf8(process.readLine()).remove('\n');
        if (matches(text, line)) {
            m_program->skips = false;
            return {};
        }
        if (!m_program->skips)
            return "it printed\n  " + line;
    }
}

QString TranscriptRunner::expectError(const QString &text)
{
    QProcess &process = m_program->process;
    QStringList seen;
    const auto find = [&] {
        process.setReadChannel(QProcess::StandardError);
        bool found = false;
        while (!found && process.canReadLine()) {
            seen.append(QString::fromUtf8(process.readLine()).remove('\n'));
            found = matches(text, seen.constLast());
        }
        process.setReadChannel(QProcess::StandardOutput);
        return found;
    };
    bool found = false;
    const bool done = waitFor([&] {
        const bool ended = process.state() == QProcess::NotRunning;
        found = find();
        return found || ended;
    });
    return done && found ? QString() : "standard error contains\n  " + seen.join("\n  ");
}

QString TranscriptRunner::endInput(const QString &)
{
    m_program->process.closeWriteChannel();
    return {};
}

QString TranscriptRunner::signal(const QString &name)
{
    return runShell(QString("kill -s %1 %2").arg(name).arg(m_program->process.processId()));
}

QString TranscriptRunner::expectStatus(const QString &status)
{
    QProcess &process = m_program->process;
    if (!waitFor([&] { return process.state() == QProcess::NotRunning; }))
        return "the program does not end";
    m_program->isChecked = true;
    const QByteArray rest = m_program->skips ? QByteArray() : process.readAllStandardOutput();
    if (!rest.isEmpty())
        return "it also printed\n  " + QString::fromUtf8(rest);
    // A shell reports a program that a signal has ended in the same way.
    const int ended =
        process.exitStatus() == QProcess::CrashExit ? 128 + process.exitCode() : process.exitCode();
    return ended == status.toInt() ? QString()
                                   : QString("the status is %1; standard error: ").arg(ended)
            + QString::fromUtf8(process.readAllStandardError());
}

QString TranscriptRunner::filledIn(QString text) const
{
    for (const auto &[name, value] : m_placeholders)
        text.replace('%' + name + '%', value);
    return text;
}

/*! Compares a whole \a line; placeholders that have no value yet take theirs from it. */
bool TranscriptRunner::matches(const QString &text, const QString &line)
{
    static const QRegularExpression placeholder("%([a-zA-Z]+|\\*)%");
    const QString filled = filledIn(text);
    QString pattern;
    QStringList names;
    int end = 0;
    for (auto it = placeholder.globalMatch(filled); it.hasNext();) {
        const QRegularExpressionMatch match = it.next();
        pattern += QRegularExpression::escape(filled.mid(end, match.capturedStart() - end));
        end = match.capturedEnd();
        const QString name = match.captured(1);
        if (name == "*") {
            pattern += ".*?";
        } else if (names.contains(name)) {
            pattern += "\\g{" + name + '}';
        } else {
            pattern += "(?<" + name + ">.*?)";
            names.append(name);
        }
    }
    pattern += QRegularExpression::escape(filled.mid(end));
    const QRegularExpressionMatch match =
        QRegularExpression(QRegularExpression::anchoredPattern(pattern)).match(line);
    if (!match.hasMatch())
        return false;
    for (const QString &name : qAsConst(names))
        m_placeholders[name] = match.captured(name);
    return true;
}

} // namespace

/*! Runs the transcript FILE, with placeholders NAME=VALUE. Status 0 if all of it holds. */
int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const QStringList arguments = app.arguments();
    if (arguments.size() < 2)
        qFatal("Usage: transcript FILE [NAME=VALUE ...]");
    QFile file(arguments.at(1));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("Cannot read %s.", qPrintable(file.fileName()));
    TranscriptRunner runner(arguments.mid(2));
    const QStringList lines = QString::fromUtf8(file.readAll()).split('\n');
    // In a document, only what is fenced as a transcript.
    bool isTranscript = !file.fileName().endsWith(".md");
    for (int i = 0; i < lines.size(); ++i) {
        if (lines.at(i).startsWith("```")) {
            isTranscript = lines.at(i) == "```transcript";
            continue;
        }
        const QString difference = isTranscript ? runner.run(lines.at(i)) : QString();
        if (difference.isEmpty())
            continue;
        qCritical("%s:%d: %s\nbut %s", qPrintable(file.fileName()), i + 1, qPrintable(lines.at(i)),
                  qPrintable(difference));
        runner.finishCase();
        return 1;
    }
    const QString difference = runner.finishCase();
    if (!difference.isEmpty())
        qCritical("%s: %s", qPrintable(file.fileName()), qPrintable(difference));
    return difference.isEmpty() ? 0 : 1;
}
