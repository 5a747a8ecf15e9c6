// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef YARD_H
#define YARD_H

#include <QMap>
#include <QString>

#include <random>

class ScriptedBackend;

/*! The wallboxes behind a scripted backend, and the totals that a plugin must have made of what they said.

    A reading adds what it is above the one that arrived before it, unless that was 0. When replies arrive out
   of order, a meter seems to fall and to rise again, and the same energy is counted twice. So the yard also
   counts what the sessions drew, from the readings in the order in which they were asked for. */
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

    /*! Wh by infrastructure id, at present. */
    QMap<QString, int> meters() const;
    /*! A poll has been sent whose reply holds the present values, and which is not lost. */
    void asked(const QString &infraId);
    /*! A reading of \a meter Wh has reached the thing of \a infraId. */
    void arrived(const QString &infraId, int meter);
    /*! The thing of \a infraId has gone; the next one starts with a total of 0. */
    void forget(const QString &infraId);
    /*! kWh that the thing of \a infraId must show. */
    double total(const QString &infraId) const;
    int sessions() const { return m_sessions; }
    /*! kWh that all sessions drew between their readings. */
    double drawn() const { return m_drawn; }
    /*! kWh that all totals together have grown by. */
    double counted() const { return m_counted; }

private:
    struct Wallbox
    {
        int meter = 0;    // Wh of the session
        int asked = 0;    // Wh, the last reading in the order of the polls
        double shown = 0; // kWh, the last reading in the order of arrival
        double total = 0; // kWh
    };
    void write(const QString &infraId);

    ScriptedBackend *m_backend; // the caller's
    std::mt19937 *m_random;     // the caller's
    QMap<QString, Wallbox> m_wallboxes;
    qint64 m_timestamp = 1714564800;
    int m_sessions = 0;
    double m_drawn = 0;   // kWh
    double m_counted = 0; // kWh
};

#endif // YARD_H
