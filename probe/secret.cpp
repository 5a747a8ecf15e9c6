// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "secret.h"

#include "options.h"

#include <QFile>

#include <csignal>
#include <cstdio>
#include <iostream>
#include <string>

#include <termios.h>
#include <unistd.h>

namespace {

constexpr char variable[] = "VELA_SECRET";

termios terminalBefore; // while the user is asked; within reach of the signal handler

void restoreTerminal()
{
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &terminalBefore);
}

// A prompt that is interrupted must not leave a terminal behind that shows nothing of what is typed.
void endInterrupted(int signal)
{
    restoreTerminal();
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

QString ask(const char *prompt)
{
    tcgetattr(STDIN_FILENO, &terminalBefore);
    std::signal(SIGINT, endInterrupted);
    std::signal(SIGTERM, endInterrupted);
    termios silent = terminalBefore;
    silent.c_lflag &= ~tcflag_t(ECHO);
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent);

    std::fputs(prompt, stderr); // only now: whoever answers it is not seen
    std::string line;
    std::getline(std::cin, line);
    std::fputc('\n', stderr); // in place of the user's, which was not shown either

    restoreTerminal();
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
    return QString::fromLocal8Bit(line.data(), int(line.size()));
}

QString readFile(const QString &name)
{
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly))
        failUsage(QStringLiteral("cannot read %1: %2").arg(name, file.errorString()));
    QByteArray content = file.readAll();
    if (content.endsWith('\n'))
        content.chop(1);
    if (content.endsWith('\r'))
        content.chop(1);
    if (content.contains('\n'))
        failUsage(QStringLiteral("%1 holds more than one line").arg(name));
    return QString::fromUtf8(content);
}

QString findSecret(const QString &file)
{
    if (!file.isEmpty())
        return readFile(file);
    if (qEnvironmentVariableIsSet(variable))
        return qEnvironmentVariable(variable);
    if (isatty(STDIN_FILENO) == 0)
        failUsage(QStringLiteral("no secret: name a file with --secret-file, or set VELA_SECRET"));
    return ask("Group secret: ");
}

} // namespace

QString readSecret(const QString &file)
{
    QString secret = findSecret(file);
    if (secret.isEmpty())
        failUsage(QStringLiteral("the secret is empty; nymea takes no empty one either"));
    return secret;
}
