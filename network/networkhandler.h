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

    Every operation is one POST with a JSON body. It returns at once, and its result is a signal, emitted
    when the reply has finished. There is no time limit and no retry: without an answer there is no signal.
    Operations may overlap; results come in the order in which the replies finish. Deleting the handler ends
    outstanding requests; their callbacks never run. */
class NetworkHandler : public QObject
{
    Q_OBJECT
public:
    /*! Where the backend is and what opens the group. */
    struct ServerInfo
    {
        QUrl url; //!< scheme, host and port count; a path is replaced by the endpoint's
        QString groupId;
        QString groupSecret; //!< sent in every body, never logged
    };

    NetworkHandler();
    ~NetworkHandler() override;

    /*! Aims all later requests at \a url, taken as it is; requests under way keep their target. */
    void setServerInfo(const QString &url, const QString &groupId, const QString &secret);

    /*! Posts \a body, to which the group secret is added, to the endpoint \a path (decoded, with a leading
        slash). \a callback runs once, when the request has finished well or badly. The reply is valid during
        the callback only, and deletes itself afterwards. */
    void sendRequestPost(const QString &path, QJsonObject &body,
                         std::function<void(QNetworkReply *)> callback);

public Q_SLOTS:
    /*! Asks for the group's wallboxes; answered by infraInfoReceived(). */
    void getConnectedInfra();

    /*! Asks whether the backend runs at all; answered by daemonReachable(). */
    void isOnline();

    /*! Asks for the live values of \a devices, infrastructure ids; answered by valuesReceived(). */
    void getEvseValues(const QJsonArray &devices);

    /*! Sets charge limits: by infrastructure id an object of "value" (ampere) and "unit" ("A"). Not answered.
     */
    void setProfileChargePowerLimit(QJsonObject &data);

Q_SIGNALS:
    /*! \a state: whether the online check succeeded. */
    void daemonReachable(bool state);

    /*! The group's wallboxes by infrastructure id; empty when the reply names none. */
    void infraInfoReceived(QJsonObject evseIds);

    /*! The records of live values by infrastructure id; empty when the reply has none. */
    void valuesReceived(QJsonObject receivedValues);

    /*! Reserved for backends that report a single wallbox; not emitted. */
    void evseIsOnline(const QString &device, bool state);

    /*! Emitted with false alone, when a group request failed in a way that points at the backend itself. */
    void ocppDaemonStatus(bool state);

private:
    void handleInfraReply(QNetworkReply *reply);
    void handleOnlineReply(QNetworkReply *reply);
    void handleValuesReply(QNetworkReply *reply);
    void handleLimitsReply(QNetworkReply *reply);
    void judgeFailedEvseReply(const QNetworkReply *reply);

    ServerInfo m_serverInfo;
    QNetworkAccessManager *m_networkManager; // ours, with all its replies; deleted in the destructor
};

#endif // NETWORKHANDLER_H
