// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "hostlogging.h"

#include "printable.h"

#include <QDateTime>

#include <cstdio>
#include <unistd.h>

Q_LOGGING_CATEGORY(dcHost, "Host")

namespace {

QLatin1String levelName(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg:
        return QLatin1String("debug");
    case QtInfoMsg:
        return QLatin1String("info");
    case QtWarningMsg:
        return QLatin1String("warning");
    case QtCriticalMsg:
        return QLatin1String("critical");
    case QtFatalMsg:
        break;
    }
    return QLatin1String("fatal");
}

void writeRecord(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    QStringList lines = message.split(QLatin1Char('\n'));
    for (QString &line : lines)
        line = printable(line);
    const QString text = lines.join(QLatin1String("\n    "));
    const QString time = QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss.zzz"));
    const QString record =
        QStringLiteral("%1 %2 %3: ").arg(time, levelName(type), QLatin1String(context.category));
    const QByteArray line = (record + text).toUtf8() + '\n';
    // In one piece, so that records of several processes on one terminal do not mix.
    std::fwrite(line.constData(), 1, static_cast<size_t>(line.size()), stderr);
}

} // namespace

void setLogRules(const QString &rules)
{
    // In the environment, where Qt's highest rules are.
    constexpr char variable[] = "QT_LOGGING_RULES";
    if (!rules.isEmpty())
        qputenv(variable, rules.toUtf8());
    else if (!qEnvironmentVariableIsSet(variable) && ::isatty(STDERR_FILENO))
        qputenv(variable, "*.debug=false");
}

void installLogHandler()
{
    qInstallMessageHandler(writeRecord);
}
