// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef KILLEDHOSTS_H
#define KILLEDHOSTS_H

#include <QJsonArray>
#include <QJsonObject>
#include <QMap>
#include <QProcess>
#include <QSet>
#include <QTemporaryDir>

#include <memory>
#include <random>

/*! Kills hosts on one storage folder, and checks what the next one finds there. */
class KilledHosts
{
public:
    /*! The hosts use the simulator at \a backend. */
    KilledHosts(const QString &backend, unsigned seed);
    ~KilledHosts();
    Q_DISABLE_COPY(KilledHosts)

    /*! Mounts a file system of 64 kB as the folder. It is nearly full in half of the rounds. Needs root. */
    void mountSmallDisk();
    /*! One round: starts a host, and kills it at a random moment. */
    void killOne();
    /*! Starts a host that is not killed, and checks what it finds and that it works. */
    void lastStart();

    static constexpr int wallboxCount = 8;
    QMap<QString, int> counts; //!< of what has happened, by name

private:
    void fillDisk();
    void start();
    void checkStart();
    void checkThings(const QJsonArray &things);
    void checkStates(const QJsonObject &before, const QJsonObject &now);
    void checkFiles();
    void send(const QString &line, const QString &thing = QString());
    QJsonObject next(int milliseconds = 60000);

    bool chance(unsigned percent) { return m_random() % 100 < percent; }

    const QString m_discovery; // the command
    std::mt19937 m_random;
    const bool m_hasNamespaces; // each host gets one
    QTemporaryDir m_folder;
    bool m_diskIsSmall = false;
    bool m_diskWasFull = false; // for a host since the last checkStart()
    std::unique_ptr<QProcess> m_host;
    QString m_activity;                  // the command that was answered last, or "polling"
    QStringList m_pending;               // the things of the commands that are not answered, in their order
    QStringList m_undecided;             // the same of hosts that were killed since the last checkStart()
    QMap<QString, QJsonObject> m_things; // by id, as reported last
    QSet<QString> m_removed;             // ids of things
    QSet<QString> m_found;               // ids of the things that were there at the last checkStart()
    QStringList m_leftovers;             // files that the next host must remove
};

#endif // KILLEDHOSTS_H
