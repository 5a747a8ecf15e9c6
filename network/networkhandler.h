// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef NETWORKHANDLER_H
#define NETWORKHANDLER_H

#include <QJsonArray>
#include <QJsonObject>
#include <QObject>
#include <QString>
#include <QUrl>

#include <functional>

class QNetworkAccessManager;
class QNetworkReply;

/*! HTTP client of one group of wallboxes at an OCPP backend.

    Every operation is one POST with a JSON body. It returns at once. Its result is a signal that is emitted
    when the reply has finished. A request that fails is logged as a warning and has no result, except that of
    isOnline(). There is no time limit, and requests are not repeated: without an answer there is no signal.
    Operations may overlap; results arrive in the order in which the replies finish. In its signals and log lines,
    "daemon" means the backend, and "EVSE", "WB" and "device" mean a wallbox.
    Deleting the handler ends outstanding requests; their callbacks never run. */
class NetworkHandler : public QObject
{
    Q_OBJECT
public:
    /*! The address of the backend, and the group with its secret. */
    struct ServerInfo
    {
        QUrl url; //!< its path is replaced by that of the endpoint; a query is sent with each request
        QString groupId;
        QString groupSecret; //!< sent in every body, never logged
    };

    NetworkHandler();
    ~NetworkHandler() override;

    /*! Sends all later requests to \a url, which is used as it is. Requests under way are not affected. */
    void setServerInfo(const QString &url, const QString &groupId, const QString &secret);

    /*! Posts \a body, to which the group secret is added, to the endpoint \a path (decoded, with a leading
        slash). \a callback runs once, when the request has succeeded or failed. The reply is valid only
        during the callback and deletes itself afterwards. */
    void sendRequestPost(const QString &path, QJsonObject &body,
                         std::function<void(QNetworkReply *)> callback);

public Q_SLOTS:
    /*! Requests the group's wallboxes; the result is infraInfoReceived(). */
    void getConnectedInfra();

    /*! Checks whether the backend is online; the result is daemonReachable(). */
    void isOnline();

    /*! Requests the live values of \a devices, infrastructure ids; the result is valuesReceived(). */
    void getEvseValues(const QJsonArray &devices);

    /*! Sets the charge limits \a data: for each infrastructure id an object with "value" (ampere) and "unit"
        ("A"). There is no signal for the result. */
    void setProfileChargePowerLimit(QJsonObject &data);

Q_SIGNALS:
    /*! \a state: whether the online check succeeded. */
    void daemonReachable(bool state);

    /*! The group's wallboxes by infrastructure id; empty if the reply lists none. */
    void infraInfoReceived(QJsonObject evseIds);

    /*! The records of live values by infrastructure id; empty if the reply has none. */
    void valuesReceived(QJsonObject receivedValues);

    /*! Reserved for backends that report a single wallbox; never emitted. */
    void evseIsOnline(const QString &device, bool state);

    /*! Only emitted with false: after a request for the group has failed with any status but 418, and after a
        request for values or limits that was answered with the status 0. */
    void ocppDaemonStatus(bool state);

private:
    void handleInfraReply(QNetworkReply *reply);
    void handleOnlineReply(QNetworkReply *reply);
    void handleValuesReply(QNetworkReply *reply);
    void handleLimitsReply(QNetworkReply *reply);
    void judgeFailedEvseReply(const QNetworkReply *reply);

    ServerInfo m_serverInfo;
    QNetworkAccessManager *m_networkManager; // owned by this object, with all its replies
};

#endif // NETWORKHANDLER_H
