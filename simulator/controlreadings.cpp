// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "endpoints.h"

#include "fault.h"

namespace {

constexpr std::chrono::milliseconds streamPeriod{500}; // short enough for changes to seem immediate

QJsonValue carRecord(const SimulatedWallbox &wallbox)
{
    if (!wallbox.car())
        return {};
    return QJsonObject{
        {QStringLiteral("phases"),     wallbox.car()->phases    },
        {QStringLiteral("maxCurrent"), wallbox.car()->maxCurrent},
        {QStringLiteral("paused"),     wallbox.car()->isPaused  }
    };
}

QJsonValue limitInForce(const SimulatedWallbox &wallbox)
{
    if (!wallbox.limit)
        return {};
    return QJsonObject{
        {QStringLiteral("value"), wallbox.limit->ampere},
        {QStringLiteral("time"),  wallbox.limit->time  }
    };
}

QJsonObject wallboxRecord(const QString &id, const SimulatedWallbox &wallbox)
{
    const auto currents = wallbox.currents();
    return {
        {QStringLiteral("id"),                 id                                               },
        {QStringLiteral("status"),             wallbox.status()                                 },
        {QStringLiteral("broken"),             wallbox.isBroken                                 },
        {QStringLiteral("maxChargingCurrent"), wallbox.maxChargingCurrent                       },
        {QStringLiteral("car"),                carRecord(wallbox)                               },
        {QStringLiteral("limit"),              limitInForce(wallbox)                            },
        {QStringLiteral("currents"),           QJsonArray{currents[0], currents[1], currents[2]}},
        {QStringLiteral("power"),              wallbox.power()                                  },
        {QStringLiteral("offeredPower"),       wallbox.offeredPower()                           },
        {QStringLiteral("sessionEnergy"),      wallbox.sessionEnergy()                          }
    };
}

HttpReply stateReply(const Simulation &simulation)
{
    QJsonArray wallboxes;
    for (const auto &[id, wallbox] : simulation.wallboxes)
        wallboxes.append(wallboxRecord(id, wallbox));
    return jsonReply({
        {QStringLiteral("time"),         utcNow()              },
        {QStringLiteral("group"),        simulation.group      },
        {QStringLiteral("speed"),        simulation.speed      },
        {QStringLiteral("wallboxes"),    wallboxes             },
        {QStringLiteral("fault"),        simulation.faults     },
        {QStringLiteral("requestCount"), simulation.log.count()}
    });
}

HttpReply listReply(const char *name, const QJsonArray &list)
{
    return jsonReply({
        {QLatin1String(name), list}
    });
}

QByteArray serverSentEvent(const char *name, const HttpReply &reply)
{
    return QByteArrayLiteral("event: ") + name + "\ndata: " + reply.body + "\n\n";
}

/*! The limits that have arrived since the previous call with the same \a seen. */
QJsonArray newLimits(const QJsonArray &limits, int &seen)
{
    QJsonArray news;
    for (const QJsonValue &limit : limits) {
        if (limit[QLatin1String("number")].toInt() > seen)
            news.append(limit);
    }
    seen = limits.last()[QLatin1String("number")].toInt();
    return news;
}

/*! Each event contains the same as a GET of its name, but "limits" and "log" only what is new. The history is
    sent once. The log comes last, so that a page that has received it is up to date. */
HttpReply eventsReply(Simulation &simulation)
{
    HttpReply reply;
    reply.contentType = "text/event-stream";
    reply.next = [&simulation, seen = 0, seenLimit = 0, age = QElapsedTimer()]() mutable -> QByteArray {
        if (age.isValid() && !age.hasExpired(streamPeriod.count()))
            return {};
        simulation.catchUp();
        QByteArray text = serverSentEvent("state", stateReply(simulation));
        if (!age.isValid())
            text += serverSentEvent("history", listReply("history", simulation.history));
        age.start();
        text += serverSentEvent("limits", listReply("limits", newLimits(simulation.limits, seenLimit)));
        return text + serverSentEvent("log", listReply("log", simulation.log.changes(seen)));
    };
    return reply;
}

HttpReply requestReply(const RequestLog &log, const QString &number)
{
    if (const std::optional<QJsonObject> record = log.record(number.toInt()))
        return jsonReply(*record);
    return refusal(404, QStringLiteral("the log has no request \"%1\"").arg(number));
}

} // namespace

std::optional<HttpReply> answerReading(Simulation &simulation, const QString &path)
{
    const QLatin1String requestPath("/control/requests/");
    int seen = 0;
    if (path == QLatin1String("/control/state"))
        return stateReply(simulation);
    if (path == QLatin1String("/control/limits"))
        return listReply("limits", simulation.limits);
    if (path == QLatin1String("/control/log"))
        return listReply("log", simulation.log.changes(seen));
    if (path == QLatin1String("/control/requests"))
        return listReply("requests", simulation.log.records());
    if (path.startsWith(requestPath))
        return requestReply(simulation.log, path.mid(requestPath.size()));
    if (path == QLatin1String("/control/history"))
        return listReply("history", simulation.history);
    if (path == QLatin1String("/control/faults"))
        return listReply("faults", describeFaults());
    if (path == QLatin1String("/control/events"))
        return eventsReply(simulation);
    return {};
}
