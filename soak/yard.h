// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef YARD_H
#define YARD_H

#include <QMap>
#include <QString>

#include <random>

class ScriptedBackend;

/*! The wallboxes behind a scripted backend, and the totals that a plugin must have made of what they said.

    Counts in another way than the plugin does: by sessions, each worth its last reading less its first one
    above 0. */
class Yard
{
public:
    /*! Lists \a count wallboxes in \a backend's group, and writes their values there. */
    Yard(ScriptedBackend *backend, int count, std::mt19937 *random);

    void listAll();
    void list(const QString &infraId);
    void unlist(const QString &infraId);

    /*! Meters run, and now and then a session ends and another one begins. */
    void pass();
    /*! Unix time that the present values carry; another one after each pass(). */
    qint64 timestamp() const { return m_timestamp; }

    /*! The present values have reached the thing of \a infraId. */
    void read(const QString &infraId);
    /*! The thing of \a infraId has gone; the next one starts with a total of 0. */
    void forget(const QString &infraId);
    /*! kWh that the thing of \a infraId must show. */
    double total(const QString &infraId) const;
    int sessions() const { return m_sessions; }

private:
    struct Wallbox
    {
        int meter = 0;     // Wh of the session
        int firstRead = 0; // Wh, above 0 once the session has been read
        int lastRead = 0;  // Wh
        qint64 before = 0; // Wh of the thing's earlier sessions
    };
    void write(const QString &infraId);

    ScriptedBackend *m_backend; // the caller's
    std::mt19937 *m_random;     // the caller's
    QMap<QString, Wallbox> m_wallboxes;
    qint64 m_timestamp = 1714564800;
    int m_sessions = 0;
};

#endif // YARD_H
