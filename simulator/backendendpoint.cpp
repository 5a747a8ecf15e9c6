// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "endpoints.h"
#include "fault.h"

#include <QJsonDocument>

#include <algorithm>

namespace {

constexpr char accessToken[] = "3f6c1d2e-7a4b-4c8d-9e0f-1a2b3c4d5e6f";

/*! A reply with one more member, unless its name is empty. */
HttpReply success(const QString &name = {}, const QJsonValue &value = {})
{
    QJsonObject members;
    if (!name.isEmpty())
        members.insert(name, value);
    members.insert(QStringLiteral("success"), true);
    return jsonReply(members);
}

HttpReply answerOnline(Simulation &, const QJsonObject &)
{
    return success();
}

HttpReply answerGroupInfo(Simulation &simulation, const QJsonObject &)
{
    QJsonObject info;
    for (const auto &[id, wallbox] : simulation.wallboxes) {
        const QJsonObject record{
            {QStringLiteral("max_charging_current"), wallbox.maxChargingCurrent}
        };
        info.insert(id, record);
    }
    return success(QStringLiteral("evse_ids"), info);
}

QJsonObject valueRecord(const SimulatedWallbox &wallbox)
{
    const auto currents = wallbox.currents();
    return {
        {QStringLiteral("timestamp"),   utcNow()               },
        {QStringLiteral("status"),      wallbox.status()       },
        {QStringLiteral("phase_1"),     currents[0]            },
        {QStringLiteral("phase_2"),     currents[1]            },
        {QStringLiteral("phase_3"),     currents[2]            },
        {QStringLiteral("meter_value"), wallbox.sessionEnergy()}
    };
}

HttpReply answerValues(Simulation &simulation, const QJsonObject &body)
{
    const QJsonValue ids = body.value(QLatin1String("evse_ids"));
    HttpReply wrongShape = refusal(400, QStringLiteral("\"evse_ids\" must be an array of strings"));
    if (!ids.isArray())
        return wrongShape;
    QJsonObject values;
    const QJsonArray array = ids.toArray();
    for (const QJsonValue &id : array) {
        if (!id.isString())
            return wrongShape;
        const auto wallbox = simulation.wallboxes.find(id.toString());
        if (wallbox != simulation.wallboxes.end())
            values.insert(wallbox->first, valueRecord(wallbox->second));
    }
    return success(QStringLiteral("values"), values);
}

bool isLimit(const QJsonValue &limit)
{
    const QJsonValue value = limit[QLatin1String("value")];
    return value.isDouble() && value.toDouble() >= 0 && limit[QLatin1String("unit")] == QLatin1String("A");
}

HttpReply answerLimits(Simulation &simulation, const QJsonObject &body)
{
    if (!body.value(QLatin1String("limits")).isObject())
        return refusal(400, QStringLiteral("\"limits\" must be an object"));
    const QJsonObject limits = body.value(QLatin1String("limits")).toObject();
    // One invalid limit makes the whole request invalid.
    if (!std::all_of(limits.begin(), limits.end(), &isLimit))
        return refusal(400, QStringLiteral(R"(a limit must be {"value": a number, 0 or more, "unit": "A"})"));
    for (auto limit = limits.begin(); limit != limits.end(); ++limit)
        simulation.receiveLimit(limit.key(), limit.value()[QLatin1String("value")].toDouble());
    return success();
}

constexpr struct Operation
{
    const char *name;
    const char *path;
    bool hasGroup; // the path continues with the group's id
    HttpReply (*answer)(Simulation &simulation, const QJsonObject &body);
} operations[] = {
    {"is_online",      "/is_online",            false, &answerOnline   },
    {"get_group_info", "/vela/get_group_info/", true,  &answerGroupInfo},
    {"get_values",     "/vela/get_values/",     true,  &answerValues   },
    {"set_limits",     "/vela/set_limits/",     true,  &answerLimits   },
};

const Operation *findOperation(const QString &path)
{
    for (const Operation &operation : operations) {
        const QLatin1String start(operation.path);
        if (operation.hasGroup ? path.startsWith(start) : path == start)
            return &operation;
    }
    return nullptr;
}

HttpReply judgeBody(Simulation &simulation, const Operation &operation, const HttpRequest &request)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(request.body, &error);
    if (error.error != QJsonParseError::NoError)
        return refusal(400, QStringLiteral("the body is not JSON: %1").arg(error.errorString()));
    const QJsonValue secret = document.object().value(QLatin1String("secret"));
    if (!secret.isString())
        return refusal(400, QStringLiteral("the body must be a JSON object with a string \"secret\""));
    if (secret.toString() != simulation.secret)
        return refusal(403, QStringLiteral("the secret is wrong"));
    const QString group = request.path.mid(QLatin1String(operation.path).size());
    if (operation.hasGroup && group != simulation.group)
        return refusal(404, QStringLiteral("there is no such group"));
    return operation.answer(simulation, document.object());
}

HttpReply judge(Simulation &simulation, const Operation *operation, const HttpRequest &request)
{
    if (!request.isFor(simulation.listenAddress))
        return unknownHostReply();
    if (!operation)
        return refusal(404, QStringLiteral("there is nothing at this path"));
    if (request.method != "POST")
        return refusal(405, QStringLiteral("this path takes POST only"));
    if (request.authorization != accessToken)
        return refusal(401, QStringLiteral("the access token is missing or wrong"));
    simulation.catchUp();
    return judgeBody(simulation, *operation, request);
}

} // namespace

std::optional<HttpReply> answerBackend(Simulation &simulation, HttpRequest &request)
{
    const Operation *operation = findOperation(request.path);
    if (request.number == 0) {
        const QString name = QString::fromLatin1(operation ? operation->name : "");
        simulation.log.begin(name, request);
    }
    const FaultEffect fault = effectOf(simulation.faults);
    if (std::chrono::milliseconds(request.age.elapsed()) < fault.hold)
        return {};
    const HttpReply reply = fault.reply ? *fault.reply : judge(simulation, operation, request);
    simulation.log.end(request, reply);
    return reply;
}
