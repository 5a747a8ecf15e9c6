// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef HOSTPROCESS_H
#define HOSTPROCESS_H

#include <QJsonArray>
#include <QJsonObject>
#include <QProcess>
#include <QVector>

#include <memory>

/*! The host program with --json, at the test's command. Ends with this object, by quit or else by kill. */
class HostProcess
{
public:
    HostProcess(const QString &plugin, const QString &storage, const QStringList &options = {},
                std::unique_ptr<QProcess> process = std::make_unique<QProcess>());
    ~HostProcess();

    /*! Sends a command and waits for its answer, which is empty when none came in time. */
    QJsonObject command(const QString &line);
    void send(const QString &line);
    static constexpr int patience = 60000; // ms, far above what anything here takes
    /*! The next object of the host's output; empty when none came in time or the host has ended. */
    QJsonObject next(int milliseconds = patience);

    /*! All events read so far, in order. */
    QVector<QJsonObject> events;
    QVector<QJsonObject> eventsNamed(const QString &name) const;

    void closeInput();
    void kill();
    /*! Waits for the end and returns the exit status, -1 for none in time or a crash. */
    int exitStatus();
    QString log();

private:
    const std::unique_ptr<QProcess> m_process;
};

#endif // HOSTPROCESS_H
