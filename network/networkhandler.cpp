// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "networkhandler.h"

#include "backendapi.h"
#include "loggingcategory.h"

#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>

#include <utility>

namespace {

// Gives the platform access to the backend. It is the same for every group; a group is protected by its secret.
constexpr char accessToken[] = "3f6c1d2e-7a4b-4c8d-9e0f-1a2b3c4d5e6f";

bool hasFailed(const QNetworkReply *reply)
{
    return reply->error() != QNetworkReply::NoError;
}

/*! The HTTP status of \a reply; 0 if there was no HTTP response. */
int httpStatus(const QNetworkReply *reply)
{
    return reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
}

void warnAbout(const QNetworkReply *reply, const char *failure)
{
    qCWarning(dcVela) << failure << "Error: " << reply->error() << "\n"
                      << "Error code: " << httpStatus(reply) << "\n"
                      << "Error reply: " << reply->errorString();
}

/*! The JSON object in the body of \a reply; empty if the body is anything else. */
QJsonObject jsonObject(QNetworkReply *reply)
{
    // The whole body has arrived. readAll() would read it in parts of 16 kB, and copy them.
    return QJsonDocument::fromJson(reply->read(reply->bytesAvailable())).object();
}

} // namespace

NetworkHandler::NetworkHandler()
    : m_networkManager(new QNetworkAccessManager)
{
}

NetworkHandler::~NetworkHandler()
{
    delete m_networkManager;
    m_networkManager = nullptr;
}

void NetworkHandler::setServerInfo(const QString &url, const QString &groupId, const QString &secret)
{
    m_serverInfo.url = QUrl(url, QUrl::TolerantMode);
    m_serverInfo.groupId = groupId;
    m_serverInfo.groupSecret = secret;
    qCDebug(dcVela) << "Full URL is" << m_serverInfo.url;
}

void NetworkHandler::sendRequestPost(const QString &path, QJsonObject &body,
                                     std::function<void(QNetworkReply *)> callback)
{
    qCDebug(dcVela) << "Send Post Request" << path;
    QUrl url = m_serverInfo.url;
    url.setPath(path, QUrl::DecodedMode);
    QNetworkRequest request(url);
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    request.setRawHeader(QByteArrayLiteral("Authorization"), QByteArray(accessToken));
    body.insert(QLatin1String("secret"), m_serverInfo.groupSecret);

    QNetworkReply *reply = m_networkManager->post(request, QJsonDocument(body).toJson());
    // The order matters: the reply is already marked for deletion when the callback runs, whatever that does.
    connect(reply, &QNetworkReply::finished, reply, &QNetworkReply::deleteLater);
    connect(reply, &QNetworkReply::finished, reply,
            [reply, callback = std::move(callback)] { callback(reply); });
}

void NetworkHandler::getConnectedInfra()
{
    qCDebug(dcVela) << "Get info about connected WBs.";
    QJsonObject body;
    sendRequestPost(BackendApi::groupInfoPath(m_serverInfo.groupId), body,
                    [this](QNetworkReply *reply) { handleInfraReply(reply); });
}

void NetworkHandler::handleInfraReply(QNetworkReply *reply)
{
    if (hasFailed(reply)) {
        warnAbout(reply, "getConnectedInfra() - Could not get info about connected devices.\n");
        if (httpStatus(reply) == 418)
            qCWarning(dcVela) << "getConnectedInfra() - received status code 418";
        else
            emit ocppDaemonStatus(false);
        return;
    }
    qCDebug(dcVela) << "getConnectedInfra() - Received information about connected infrastructure.";
    emit infraInfoReceived(jsonObject(reply).value(QLatin1String("evse_ids")).toObject());
}

void NetworkHandler::isOnline()
{
    qCDebug(dcVela) << "Check if the OCPP daemon is running.";
    QJsonObject body;
    sendRequestPost(BackendApi::onlinePath(), body,
                    [this](QNetworkReply *reply) { handleOnlineReply(reply); });
}

void NetworkHandler::handleOnlineReply(QNetworkReply *reply)
{
    if (hasFailed(reply)) {
        warnAbout(reply, "isOnline() - OCPP Daemon is not online.\n");
        emit daemonReachable(false);
        return;
    }
    qCDebug(dcVela) << "isOnline() - OCPP Daemon is online.";
    emit daemonReachable(true);
}

void NetworkHandler::getEvseValues(const QJsonArray &devices)
{
    qCDebug(dcVela) << "Get info EVSE values.";
    QJsonObject body = BackendApi::valuesBody(devices);
    sendRequestPost(BackendApi::valuesPath(m_serverInfo.groupId), body,
                    [this](QNetworkReply *reply) { handleValuesReply(reply); });
}

void NetworkHandler::handleValuesReply(QNetworkReply *reply)
{
    if (hasFailed(reply)) {
        warnAbout(reply, "getEvseValues() - Could not get info about EVSE values.\n");
        judgeFailedEvseReply(reply);
        return;
    }
    const QJsonObject answer = jsonObject(reply);
    const QJsonObject values = answer.value(QLatin1String("values")).toObject();
    qCDebug(dcVela) << answer;
    if (answer.value(QLatin1String("success")).toBool())
        qCDebug(dcVela) << "values" << values;
    // Emitted even without "success": wallboxes that are missing then count as not connected.
    emit valuesReceived(values);
}

void NetworkHandler::setProfileChargePowerLimit(QJsonObject &data)
{
    qCDebug(dcVela) << "Setting profile charge power limit.";
    QJsonObject body = BackendApi::limitsBody(data);
    sendRequestPost(BackendApi::limitsPath(m_serverInfo.groupId), body,
                    [this](QNetworkReply *reply) { handleLimitsReply(reply); });
}

void NetworkHandler::handleLimitsReply(QNetworkReply *reply)
{
    if (hasFailed(reply)) {
        warnAbout(reply, "setProfileChargePowerLimit() - Could not set profile power limit.\n");
        judgeFailedEvseReply(reply);
        return;
    }
    qCDebug(dcVela) << "setProfileChargePowerLimit() - Setting profile power limit succesfull.";
}

/*! Draws conclusions about the backend from a failed request for single wallboxes. */
void NetworkHandler::judgeFailedEvseReply(const QNetworkReply *reply)
{
    if (httpStatus(reply) == 400) {
        qCDebug(dcVela) << "isEvseOnline() - WB likely not connected anymore.";
    } else if (reply->attribute(QNetworkRequest::HttpStatusCodeAttribute) == QVariant(0)) {
        // The backend has really sent status 0. Without any response, the attribute is empty, not 0.
        qCDebug(dcVela) << "isEvseOnline() - OCPP likely not running.";
        emit ocppDaemonStatus(false);
    }
}
