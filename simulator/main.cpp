// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT
#include "backendapi.h"
#include "controlapi.h"
#include "fault.h"
#include "hostname.h"
#include "httpserver.h"
#include "options.h"
#include "page.h"
#include "printable.h"
#include "requestlog.h"
#include "standardstreams.h"
#include "yard.h"

#include <QCoreApplication>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <thread>

#include <unistd.h>

namespace {
// Blocked in every thread and waited for in one, so that the end needs no signal handler.
sigset_t blockEndSignals()
{
    sigset_t endSignals;
    sigemptyset(&endSignals);
    sigaddset(&endSignals, SIGINT);
    sigaddset(&endSignals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &endSignals, nullptr);
    return endSignals;
}

// One line that does not steer the terminal, whatever the user has entered.
void print(FILE *stream, const QString &line)
{
    std::fprintf(stream, "%s\n", qUtf8Printable(printable(line)));
    std::fflush(stream);
}

void printUrl(const QString &address, int port)
{
    const QString host = address.contains(QLatin1Char(':')) ? QStringLiteral("[%1]").arg(address) : address;
    print(stdout, QStringLiteral("http://%1:%2").arg(host, QString::number(port)));
}

int failToListen(const Options &options, int error)
{
    print(stderr,
          QStringLiteral("vela-simulator: cannot listen on %1, port %2: %3")
              .arg(options.listenAddress, QString::number(options.port),
                   QString::fromLocal8Bit(error != 0 ? std::strerror(error) : "no such address")));
    return 1;
}

// Returns once one of the signals has arrived and all connections have ended, or the listening has failed.
bool serveUntil(const sigset_t &endSignals, HttpServer &server, FaultGate &gate, const QString &address,
                int port)
{
    std::thread watch;
    const bool served = server.serve([&endSignals, &server, &gate, &watch, &address, port] {
        watch = std::thread([&endSignals, &server, &gate] {
            int signal = 0;
            sigwait(&endSignals, &signal);
            server.end();
            gate.open();
        });
        printUrl(address, port);
    });
    if (!watch.joinable())
        return false;
    if (!served)
        ::kill(::getpid(), SIGTERM);
    watch.join();
    return served;
}
} // namespace

int main(int argc, char *argv[])
{
    openStandardStreams();
    const sigset_t endSignals = blockEndSignals();
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("vela-simulator"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VELA_VERSION));
    const Options options = readOptions(QCoreApplication::arguments());

    Yard yard(options.yard);
    FaultGate gate;
    RequestLog log;
    const BackendApi backend(yard, gate, log, options.listenAddress);
    const ControlApi control(yard, gate, log, options.listenAddress);
    const Reply page = pageReply();
    HttpServer server([&backend, &control, &page](const httplib::Request &request) {
        if (ControlApi::isControlPath(request.path))
            return control.answer(request);
        return request.method == "GET" && request.path == "/" ? page : backend.answer(request);
    });
    const int port = server.bind(options.listenAddress.toStdString(), options.port);
    if (port < 0)
        return failToListen(options, errno);
    if (!isLoopback(options.listenAddress.toStdString()))
        print(stderr,
              QStringLiteral(
                  "vela-simulator: warning: with --listen %1, anyone who can reach this machine can control "
                  "the yard")
                  .arg(options.listenAddress));
    return serveUntil(endSignals, server, gate, options.listenAddress, port) ? 0 : 1;
}
