// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "options.h"
#include "probe.h"
#include "secret.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QLoggingCategory>

#include <cstdio>

namespace {

void print(const QString &text)
{
    std::fputs(qUtf8Printable(text), stdout);
    std::fflush(stdout); // a step may take long; what is known by then is shown
}

} // namespace

int main(int argc, char *argv[])
{
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
                         [](const StepReport &report) { print(stepText(report) + QLatin1Char('\n')); });
    // Queued, so that the end finds the event loop running even where the probe ends at once.
    QObject::connect(&probe, &Probe::finished, &application, &QCoreApplication::quit, Qt::QueuedConnection);
    probe.start();
    QCoreApplication::exec();

    const Report &report = probe.report();
    print(options.json ? QString::fromUtf8(QJsonDocument(toJson(report)).toJson()) : verdictText(report));
    return works(report) ? 0 : 1;
}
