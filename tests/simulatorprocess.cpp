// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "simulatorprocess.h"

#include "json.h"
#include "waiting.h"

#include <QTest>

SimulatorProcess::SimulatorProcess(const QStringList &options)
{
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    // A test that is killed leaves no simulator behind. The last word on the port is the options'.
    m_process.start("setpriv", QStringList{"--pdeathsig=KILL", VELA_SIMULATOR, "--port=0"} + options);
    if (waitFor([this] { return m_process.canReadLine() || m_process.state() == QProcess::NotRunning; }))
        m_url = QUrl(QString::fromUtf8(m_process.readLine().trimmed()));
}

SimulatorProcess::~SimulatorProcess()
{
    m_process.terminate();
    if (!m_process.waitForFinished(60000) && m_process.state() != QProcess::NotRunning)
        m_process.kill();
    if (m_process.exitStatus() != QProcess::NormalExit || m_process.exitCode() != 0)
        QTest::qFail("the simulator did not end well", __FILE__, __LINE__); // sanitizers speak last
}

QNetworkReply *SimulatorProcess::start(const QString &path, const QByteArray &body)
{
    QNetworkRequest request(m_url.resolved(QUrl(path)));
    request.setHeader(QNetworkRequest::ContentTypeHeader, "application/json");
    request.setRawHeader("Authorization", "3f6c1d2e-7a4b-4c8d-9e0f-1a2b3c4d5e6f");
    return body.isEmpty() ? m_manager.get(request) : m_manager.post(request, body);
}

QByteArray SimulatorProcess::ask(const QString &path, const QByteArray &body)
{
    QNetworkReply *reply = start(path, body);
    if (!waitFor([reply] { return reply->isFinished(); }) || reply->error() != QNetworkReply::NoError)
        QTest::qFail(qPrintable(path + ": " + reply->errorString()), __FILE__, __LINE__);
    return reply->readAll();
}

QJsonObject SimulatorProcess::state()
{
    return json(ask("/control/state"));
}

std::unique_ptr<QTcpSocket> SimulatorProcess::connection() const
{
    auto socket = std::make_unique<QTcpSocket>();
    socket->connectToHost(m_url.host(), quint16(m_url.port()));
    [[maybe_unused]] const bool connected = socket->waitForConnected(); // else nothing will come back
    return socket;
}

QByteArray exchange(QTcpSocket &socket, const QByteArray &text, const QByteArray &end)
{
    socket.write(text);
    QByteArray received;
    const auto read = [&] { return (received += socket.readAll()).contains(end); };
    const bool done = waitFor([&] { return read() || socket.state() == QAbstractSocket::UnconnectedState; });
    return done ? received : "nothing more in time after: " + received;
}
