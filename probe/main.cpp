// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "options.h"
#include "printable.h"
#include "probe.h"
#include "secret.h"
#include "standardstreams.h"

#include <QCoreApplication>
#include <QLoggingCategory>

#include <cstdio>

namespace {

void print(const QByteArray &text)
{
    std::fputs(text.constData(), stdout);
    std::fflush(stdout); // a step may take long; what is known by then is shown
}

/*! Prints a message of Qt, which may quote the backend. */
void printMessage(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    std::fprintf(stderr, "%s\n", qUtf8Printable(printable(qFormatLogMessage(type, context, message))));
}

} // namespace

int main(int argc, char *argv[])
{
    openStandardStreams();
    qInstallMessageHandler(printMessage);
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("vela-probe"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VELA_VERSION));
    // The client's story is the report's; QT_LOGGING_RULES still brings it back.
    QLoggingCategory::setFilterRules(QStringLiteral("Vela.debug=false"));

    const Options options = readOptions(QCoreApplication::arguments());
    const QString secret = readSecret(options.secretFile);
    Probe probe({options.url, options.groupId, secret, options.limit, options.timeout});
    if (!options.json)
        QObject::connect(&probe, &Probe::stepDone, &probe,
                         [](const StepReport &report) { print(stepText(report).toUtf8() + '\n'); });
    // Queued, so that the end finds the event loop running even where the probe ends at once.
    QObject::connect(&probe, &Probe::finished, &application, &QCoreApplication::quit, Qt::QueuedConnection);
    probe.start();
    QCoreApplication::exec();

    const Report &report = probe.report();
    print(options.json ? printableJson(toJson(report)) + '\n' : verdictText(report).toUtf8());
    return works(report) ? 0 : 1;
}
