// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef SIMULATORPROCESS_H
#define SIMULATORPROCESS_H

#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QProcess>
#include <QUrl>

/*! The simulator on a port of its own, and a client for it. Ends with this object; that it does not end well
    fails the test. */
class SimulatorProcess
{
public:
    struct Answer
    {
        int status = 0; //!< of HTTP; 0: none in time
        QByteArray body;
        QJsonObject json() const;
    };

    explicit SimulatorProcess(const QStringList &options);
    ~SimulatorProcess();
    Q_DISABLE_COPY(SimulatorProcess)

    QUrl url() const { return m_url; }

    /*! Sends a request to \a path, which is percent-encoded; the reply belongs to this object. */
    QNetworkReply *start(const QByteArray &method, const QString &path, const QByteArray &body = {},
                         const QList<QNetworkReply::RawHeaderPair> &headers = {});
    static Answer finish(QNetworkReply *reply);
    Answer get(const QString &path) { return finish(start("GET", path)); }
    Answer post(const QString &path, const QByteArray &body = {})
    {
        return finish(start("POST", path, body));
    }

    /*! The whole yard as the control endpoint tells it. */
    QJsonObject state() { return get("/control/state").json(); }
    QJsonValue wallbox(int index);

private:
    QProcess m_process;
    QUrl m_url;
    QNetworkAccessManager m_manager;
};

#endif // SIMULATORPROCESS_H
