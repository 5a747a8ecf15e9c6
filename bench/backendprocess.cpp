// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "backendprocess.h"

#include <QCoreApplication>

BackendProcess::BackendProcess(int wallboxes, Yard yard)
{
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(QCoreApplication::applicationDirPath() + QLatin1String("/vela-bench-backend"),
                    {QString::number(wallboxes), nameOf(yard)});
    while (!m_process.canReadLine()) {
        if (!m_process.waitForReadyRead(-1)) // however busy the machine is
            qFatal("The backend does not start: %s", qPrintable(m_process.errorString()));
    }
    m_url = QLatin1String("http://127.0.0.1:") + QString::fromLatin1(m_process.readLine().trimmed());
}

BackendProcess::~BackendProcess()
{
    m_process.terminate();
    m_process.waitForFinished();
}

QString BackendProcess::url() const
{
    return m_url;
}

int BackendProcess::connections()
{
    m_process.waitForReadyRead(0);
    m_connections += m_process.readAll().count('\n');
    return m_connections;
}
