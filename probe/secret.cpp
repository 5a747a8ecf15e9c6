// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "secret.h"

#include "commandline.h"

#include <QFile>

#include <csignal>
#include <cstdio>
#include <iostream>
#include <string>

#include <termios.h>
#include <unistd.h>

namespace {

constexpr char secretVariable[] = "VELA_SECRET";
constexpr int endSignals[] = {SIGINT, SIGQUIT, SIGTERM};

termios terminalBefore; // while the user is asked; global for the signal handler

void restoreTerminal()
{
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &terminalBefore);
}

/*! An interrupted prompt must not leave a terminal that does not echo. */
void endInterrupted(int signal)
{
    restoreTerminal();
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

QString readSecretFile(const QString &name)
{
    if (name.isEmpty())
        endWithUsageError(QStringLiteral("--secret-file takes the name of a file"));
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly))
        endWithUsageError(QStringLiteral("cannot read %1: %2").arg(name, file.errorString()));
    QByteArray content = file.readAll();
    for (const char end : {'\n', '\r'}) {
        if (content.endsWith(end))
            content.chop(1);
    }
    if (content.contains('\n'))
        endWithUsageError(QStringLiteral("%1 has more than one line").arg(name));
    return QString::fromUtf8(content);
}

QString askForSecret()
{
    if (isatty(STDIN_FILENO) == 0)
        endWithUsageError(QStringLiteral("no secret: name a file with --secret-file, or set VELA_SECRET"));
    tcgetattr(STDIN_FILENO, &terminalBefore);
    for (const int signal : endSignals)
        std::signal(signal, endInterrupted);
    termios silent = terminalBefore;
    silent.c_lflag &= ~tcflag_t(ECHO);
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent);
    std::fputs("Group secret: ", stderr); // only now, when input is no longer echoed
    std::string line;
    std::getline(std::cin, line);
    std::fputc('\n', stderr); // the line break that the user has typed was not echoed
    restoreTerminal();
    for (const int signal : endSignals)
        std::signal(signal, SIG_DFL);
    return QString::fromLocal8Bit(line.data(), int(line.size()));
}

} // namespace

QString readSecret(const CommandLine &line)
{
    QString secret;
    if (line.isSet("secret-file"))
        secret = readSecretFile(line.text("secret-file"));
    else if (qEnvironmentVariableIsSet(secretVariable))
        secret = qEnvironmentVariable(secretVariable);
    else
        secret = askForSecret();
    if (secret.isEmpty())
        endWithUsageError(QStringLiteral("the secret is empty; nymea does not accept an empty one either"));
    return secret;
}
