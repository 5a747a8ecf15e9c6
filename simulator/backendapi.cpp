// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT
#include "backendapi.h"

#include "fault.h"
#include "hostname.h"
#include "requestlog.h"
#include "yard.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <httplib.h>

namespace {
constexpr char accessToken[] = "3f6c1d2e-7a4b-4c8d-9e0f-1a2b3c4d5e6f";

Reply badRequest(const char *reason)
{
    return refusal(400, QString::fromLatin1(reason));
}

Reply success(QJsonObject members = {})
{
    members.insert(QStringLiteral("success"), true);
    return jsonReply(members);
}

bool isGrouped(const char *path)
{
    return QLatin1String(path).endsWith(QLatin1Char('/'));
}

bool isLimit(const QJsonObject &limit)
{
    const QJsonValue value = limit.value(QLatin1String("value"));
    return value.isDouble() && value.toDouble() >= 0
        && limit.value(QLatin1String("unit")) == QJsonValue(QLatin1String("A"));
}

Reply misbehave(const Fault &fault)
{
    if (fault.garbage)
        return {fault.status != 0 ? fault.status : 200, QByteArrayLiteral("\x1f<garbage \"values\": {[")};
    return refusal(fault.status,
                   QStringLiteral("the backend is told to answer with status %1").arg(fault.status));
}
} // namespace

const BackendApi::Operation BackendApi::operations[] = {
    {"is_online",      "/is_online",            &BackendApi::isOnline },
    {"get_group_info", "/vela/get_group_info/", &BackendApi::groupInfo},
    {"get_values",     "/vela/get_values/",     &BackendApi::values   },
    {"set_limits",     "/vela/set_limits/",     &BackendApi::setLimits},
};

BackendApi::BackendApi(Yard &yard, FaultGate &gate, RequestLog &log, const QString &listenAddress)
    : m_yard(yard)
    , m_gate(gate)
    , m_log(log)
    , m_listenAddress(listenAddress.toStdString())
{
}

Reply BackendApi::answer(const httplib::Request &request) const
{
    const QString path = QString::fromStdString(request.path);
    const Operation *operation = findOperation(path);
    const QString name = QString::fromLatin1(operation ? operation->name : "");
    const int number = m_log.begin(name, path, QByteArray::fromStdString(request.body));
    const Fault fault = m_gate.pass();
    const bool misbehaves = fault.garbage || fault.status != 0;
    Reply reply = misbehaves ? misbehave(fault) : judge(request, operation, path);
    m_log.end(number, reply);
    return reply;
}

const BackendApi::Operation *BackendApi::findOperation(const QString &path)
{
    for (const Operation &operation : operations) {
        const QLatin1String start(operation.path);
        if (isGrouped(operation.path) ? path.startsWith(start) : path == start)
            return &operation;
    }
    return nullptr;
}

Reply BackendApi::judge(const httplib::Request &request, const Operation *operation,
                        const QString &path) const
{
    if (!isForUs(request, m_listenAddress))
        return unknownHostReply();
    if (!operation)
        return refusal(404, QStringLiteral("there is nothing at this path"));
    if (request.method != "POST")
        return refusal(405, QStringLiteral("this path takes POST only"));
    if (request.get_header_value("Authorization") != accessToken)
        return refusal(401, QStringLiteral("the access token is missing or wrong"));
    return judgeBody(QByteArray::fromStdString(request.body), *operation, path);
}

Reply BackendApi::judgeBody(const QByteArray &body, const Operation &operation, const QString &path) const
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(body, &error);
    if (error.error != QJsonParseError::NoError)
        return refusal(400, QStringLiteral("the body is not JSON: %1").arg(error.errorString()));
    const QJsonValue secret = document.object().value(QLatin1String("secret"));
    if (!secret.isString())
        return badRequest("the body must be a JSON object with a text \"secret\"");
    if (!m_yard.isSecret(secret.toString()))
        return refusal(403, QStringLiteral("the secret is wrong"));
    if (isGrouped(operation.path) && !m_yard.isGroup(path.mid(QLatin1String(operation.path).size())))
        return refusal(404, QStringLiteral("there is no such group"));
    return (this->*operation.answer)(document.object());
}

Reply BackendApi::isOnline(const QJsonObject & /*body*/) const
{
    return success();
}

Reply BackendApi::groupInfo(const QJsonObject & /*body*/) const
{
    return success({
        {QStringLiteral("evse_ids"), m_yard.groupInfo()}
    });
}

Reply BackendApi::values(const QJsonObject &body) const
{
    const QJsonValue evseIds = body.value(QLatin1String("evse_ids"));
    if (!evseIds.isArray())
        return badRequest("\"evse_ids\" must be an array of texts");
    QStringList ids;
    const QJsonArray array = evseIds.toArray();
    for (const QJsonValue &id : array) {
        if (!id.isString())
            return badRequest("\"evse_ids\" must be an array of texts");
        ids.append(id.toString());
    }
    return success({
        {QStringLiteral("values"), m_yard.values(ids)}
    });
}

Reply BackendApi::setLimits(const QJsonObject &body) const
{
    const QJsonValue limits = body.value(QLatin1String("limits"));
    if (!limits.isObject())
        return badRequest("\"limits\" must be an object");
    QMap<QString, double> amperes;
    const QJsonObject object = limits.toObject();
    for (auto limit = object.begin(); limit != object.end(); ++limit) {
        const QJsonObject record = limit.value().toObject();
        if (!isLimit(record))
            return badRequest(R"(a limit must be {"value": a number, 0 or more, "unit": "A"})");
        amperes.insert(limit.key(), record.value(QLatin1String("value")).toDouble());
    }
    m_yard.setLimits(amperes);
    return success();
}
