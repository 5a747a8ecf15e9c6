// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "commandline.h"
#include "options.h"
#include "printable.h"
#include "probe.h"
#include "report.h"
#include "standardstreams.h"

#include <QCoreApplication>
#include <QLoggingCategory>

#include <cstdio>

int main(int argc, char *argv[])
{
    openStandardStreams();
    // A message of Qt may quote the backend.
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &context, const QString &message) {
        std::fprintf(stderr, "%s\n", qUtf8Printable(printable(qFormatLogMessage(type, context, message))));
    });
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("vela-probe"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VELA_VERSION));
    // The report says what the client does. QT_LOGGING_RULES can enable its debug messages again.
    QLoggingCategory::setFilterRules(QStringLiteral("Vela.debug=false"));

    const ProbeOptions options = readOptions(QCoreApplication::arguments());
    const Report report = Probe(options).run([&options](const Step &step) {
        if (!options.json)
            std::puts(qUtf8Printable(stepText(step)));
        std::fflush(stdout); // the next step may take long
    });
    std::printf("%s",
                options.json ? (printableJson(toJson(report)) + '\n').constData()
                             : qUtf8Printable(verdictText(report)));
    const bool isPrinted = std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
    return isPrinted && count(report, Problem) == 0 ? Succeeded : Failed;
}
