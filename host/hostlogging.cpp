// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "hostlogging.h"

#include "printable.h"

#include <cstdio>
#include <unistd.h>

Q_LOGGING_CATEGORY(dcHost, "Host")

namespace {

thread_local LogSink *logSink = nullptr;

void writeRecord(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    QStringList lines = qFormatLogMessage(type, context, message).split(QLatin1Char('\n'));
    for (QString &line : lines)
        line = printable(line);
    const QByteArray record = lines.join(QLatin1String("\n    ")).toUtf8() + '\n';
    if (logSink)
        return logSink->writeRecord(type, message, record);
    // In one piece, so that records of several processes on one terminal do not mix.
    std::fwrite(record.constData(), 1, size_t(record.size()), stderr);
}

} // namespace

void setLogSink(LogSink *sink)
{
    logSink = sink;
}

QString takeEnvironmentLogRules()
{
    QString rules = qEnvironmentVariable("QT_LOGGING_RULES");
    qunsetenv("QT_LOGGING_RULES");
    return rules;
}

void startLogging(QString rules)
{
    if (rules.isEmpty() && ::isatty(STDERR_FILENO))
        rules = QStringLiteral("*.debug=false");
    QLoggingCategory::setFilterRules(rules.replace(QLatin1Char(';'), QLatin1Char('\n')));
    qSetMessagePattern(QStringLiteral("%{time yyyy-MM-ddTHH:mm:ss.zzz} %{type} %{category}: %{message}"));
    qInstallMessageHandler(writeRecord);
}
