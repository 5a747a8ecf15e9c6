// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "commandline.h"
#include "endpoints.h"
#include "endsignals.h"
#include "printable.h"
#include "standardstreams.h"

#include <QCoreApplication>
#include <QHostAddress>

#include <cstdio>

namespace {

constexpr char description[] =
    R"(Simulates the backend of a charging yard: a group of wallboxes with cars.

At the start a three-phase 16 A car charges at EVSE-01, a one-phase 32 A car at
EVSE-02, a three-phase car at EVSE-03 is full (SuspendedEV), and EVSE-04 is free.
EVSE-05 is like EVSE-01, and so on. "vela-simulator --wallboxes 32" starts with
32 of them.

Without a limit, the maxima of car and wallbox count. A limit is valid until the
next one.

Open the printed URL in a browser to see and control the yard, or use URL/control/
in scripts, for example: curl URL/control/state)";

struct SimulatorOptions
{
    Simulation simulation; // in its initial state
    int port = 0;          // 0 means any free one
};

SimulatorOptions readOptions()
{
    // clang-format off
    CommandLine line(description, {
        {"port", "Listen on this port (default 8080); 0 picks a free one.", "PORT", "8080"},
        {"listen", "Listen on this address (default 127.0.0.1).", "ADDRESS", "127.0.0.1"},
        {"group", "The group's id (default yard).", "GROUP", "yard"},
        {"secret", "The group's secret (default s3cret).", "SECRET", "s3cret"},
        {"wallboxes", "Start with this many wallboxes (default 4).", "N", "4"},
        {"speed", "Let time pass this much faster (default 1); 0 stops it.", "FACTOR", "1"},
    });
    // clang-format on
    line.read(QCoreApplication::arguments());
    SimulatorOptions options;
    Simulation &simulation = options.simulation;
    simulation.listenAddress = line.text("listen");
    simulation.group = line.text("group");
    simulation.secret = line.text("secret");
    simulation.speed = line.number("speed", 0, fastestSpeed);
    simulation.addFirstWallboxes(line.wholeNumber("wallboxes", 0, 1000));
    options.port = line.wholeNumber("port", 0, 65535);
    if (simulation.listenAddress.isEmpty())
        endWithUsageError(QStringLiteral("--listen takes an address, such as 127.0.0.1 or 0.0.0.0"));
    return options;
}

/*! Prints one line. Whatever the user has entered, it cannot control the terminal. */
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

std::optional<HttpReply> answer(Simulation &simulation, HttpRequest &request)
{
    if (request.path.startsWith(QLatin1String("/control/")))
        return answerControl(simulation, request);
    const std::optional<HttpReply> file = request.method == "GET" ? pageFile(request.path) : std::nullopt;
    return file ? file : answerBackend(simulation, request);
}

} // namespace

int main(int argc, char *argv[])
{
    openStandardStreams();
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("vela-simulator"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VELA_VERSION));
    auto [simulation, port] = readOptions();
    quitAtEndSignals();

    HttpServer server(
        [&simulation = simulation](HttpRequest &request) { return answer(simulation, request); });
    const QString &address = simulation.listenAddress;
    const QString error = server.listen(address, port);
    if (!error.isEmpty()) {
        print(stderr,
              QStringLiteral("vela-simulator: cannot listen on %1, port %2: %3")
                  .arg(address, QString::number(port), error));
        return Failed;
    }
    if (!QHostAddress(address).isLoopback() && address != QLatin1String("localhost"))
        print(stderr,
              QStringLiteral(
                  "vela-simulator: warning: with --listen %1, anyone who can reach this machine can control "
                  "the yard")
                  .arg(address));
    printUrl(address, server.port());
    return QCoreApplication::exec();
}
