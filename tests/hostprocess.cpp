// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "hostprocess.h"

#include <QJsonDocument>

#include <utility>

HostProcess::HostProcess(const QString &plugin, const QString &storage, const QStringList &options,
                         std::unique_ptr<QProcess> process)
    : m_process(std::move(process))
{
    const QStringList arguments{QStringLiteral("--json"), QStringLiteral("--plugin"), plugin,
                                QStringLiteral("--storage"), storage};
    m_process->start(QStringLiteral(VELA_HOST), arguments + options);
}

HostProcess::~HostProcess()
{
    if (m_process->state() == QProcess::NotRunning)
        return;
    send(QStringLiteral("quit"));
    if (!m_process->waitForFinished(patience))
        m_process->kill();
    m_process->waitForFinished(patience);
}

QJsonObject HostProcess::command(const QString &line)
{
    send(line);
    for (;;) {
        QJsonObject object = next();
        if (object.isEmpty() || object.contains(QLatin1String("answer")))
            return object;
    }
}

void HostProcess::send(const QString &line)
{
    m_process->write(line.toUtf8() + '\n');
}

QJsonObject HostProcess::next(int milliseconds)
{
    while (!m_process->canReadLine()) {
        if (!m_process->waitForReadyRead(milliseconds))
            return {};
    }
    QJsonObject object = QJsonDocument::fromJson(m_process->readLine()).object();
    if (object.contains(QLatin1String("event")))
        events.append(object);
    return object;
}

QVector<QJsonObject> HostProcess::eventsNamed(const QString &name) const
{
    QVector<QJsonObject> result;
    for (const QJsonObject &event : events) {
        if (event.value(QLatin1String("event")) == name)
            result.append(event);
    }
    return result;
}

void HostProcess::closeInput()
{
    m_process->closeWriteChannel();
}

void HostProcess::kill()
{
    m_process->kill();
    m_process->waitForFinished(patience);
}

int HostProcess::exitStatus()
{
    const bool ended = m_process->state() == QProcess::NotRunning || m_process->waitForFinished(patience);
    return ended && m_process->exitStatus() == QProcess::NormalExit ? m_process->exitCode() : -1;
}

QString HostProcess::log()
{
    return QString::fromUtf8(m_process->readAllStandardError());
}
