// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "simulatorprocess.h"

#include "json.h"

#include <QJsonArray>
#include <QSignalSpy>
#include <QTest>

namespace {
constexpr int patience = 60000; // ms, far above what anything here takes
}

QJsonObject SimulatorProcess::Answer::json() const
{
    return ::json(body);
}

SimulatorProcess::SimulatorProcess(const QStringList &options)
{
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(VELA_SIMULATOR, QStringList{"--port=0"} + options); // the last word on the port is theirs
    while (!m_process.canReadLine() && m_process.waitForReadyRead(patience))
        continue;
    m_url = QUrl(QString::fromUtf8(m_process.readLine().trimmed()));
}

SimulatorProcess::~SimulatorProcess()
{
    m_process.terminate();
    if (!m_process.waitForFinished(patience) && m_process.state() != QProcess::NotRunning)
        m_process.kill(); // it ends at once, whatever hangs on it
    if (m_process.exitStatus() != QProcess::NormalExit || m_process.exitCode() != 0)
        QTest::qFail("the simulator did not end well", __FILE__, __LINE__); // sanitizers speak last
}

QNetworkReply *SimulatorProcess::start(const QByteArray &method, const QString &path, const QByteArray &body,
                                       const QList<QNetworkReply::RawHeaderPair> &headers)
{
    QNetworkRequest request(m_url.resolved(QUrl(path)));
    request.setHeader(QNetworkRequest::ContentTypeHeader, "application/json");
    for (const auto &[name, value] : headers)
        request.setRawHeader(name, value);
    return m_manager.sendCustomRequest(request, method, body);
}

SimulatorProcess::Answer SimulatorProcess::finish(QNetworkReply *reply)
{
    if (!reply->isFinished() && !QSignalSpy(reply, &QNetworkReply::finished).wait(patience))
        return {};
    return {reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(), reply->readAll()};
}

QJsonValue SimulatorProcess::wallbox(int index)
{
    return state().value("wallboxes").toArray().at(index);
}
