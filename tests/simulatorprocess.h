// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef SIMULATORPROCESS_H
#define SIMULATORPROCESS_H

#include <QJsonArray>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QProcess>
#include <QTcpSocket>
#include <QUrl>

#include <memory>

/*! The simulator on a port of its own, and a client for it. Ends with this object; that it does not end well
    fails the test. */
class SimulatorProcess
{
public:
    explicit SimulatorProcess(const QStringList &options);
    ~SimulatorProcess();
    Q_DISABLE_COPY(SimulatorProcess)

    QUrl url() const { return m_url; }

    /*! Sends a request with the access token to \a path, which is percent-encoded; a POST if there is a body.
        The reply belongs to this object. */
    QNetworkReply *start(const QString &path, const QByteArray &body = {});
    /*! The same with its answer, of which the HTTP status is expected to be 200. */
    QByteArray ask(const QString &path, const QByteArray &body = {});

    /*! The whole yard as the control endpoint tells it. */
    QJsonObject state();
    QJsonValue wallbox(int index) { return state().value("wallboxes")[index]; }
    int requestCount() { return state().value("requestCount").toInt(); }

    /*! A bare connection to it. */
    std::unique_ptr<QTcpSocket> connection() const;

private:
    QProcess m_process;
    QUrl m_url;
    QNetworkAccessManager m_manager;
};

/*! Writes \a text and returns what comes back until \a end is in it. */
QByteArray exchange(QTcpSocket &socket, const QByteArray &text, const QByteArray &end);

#endif // SIMULATORPROCESS_H
