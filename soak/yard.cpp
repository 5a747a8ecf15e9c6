// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "yard.h"

#include "scriptedbackend.h"

#include <QDateTime>

Yard::Yard(ScriptedBackend *backend, int count, std::mt19937 *random)
    : m_backend(backend)
    , m_random(random)
{
    for (int i = 1; i <= count; ++i)
        m_wallboxes.insert(QString("EVSE-%1").arg(i, 2, 10, QChar('0')), {});
    listAll();
    pass();
}

void Yard::listAll()
{
    m_backend->wallboxes = {};
    for (auto it = m_wallboxes.cbegin(); it != m_wallboxes.cend(); ++it)
        m_backend->setWallbox(it.key(), 32);
}

void Yard::list(const QString &infraId)
{
    m_backend->setWallbox(infraId, 32);
    write(infraId);
}

void Yard::unlist(const QString &infraId)
{
    m_backend->wallboxes.remove(infraId);
    m_backend->values.remove(infraId);
}

void Yard::pass()
{
    ++m_timestamp;
    for (auto it = m_wallboxes.begin(); it != m_wallboxes.end(); ++it) {
        const unsigned chance = (*m_random)() % 100;
        if (chance == 0)
            it->meter = 0; // unplugged
        else if (chance == 1)
            it->meter = int((*m_random)() % 20); // the next car came before the next poll
        else if (chance < 70)
            it->meter += 1 + int((*m_random)() % 12);
        if (m_backend->wallboxes.contains(it.key()))
            write(it.key());
    }
}

void Yard::write(const QString &infraId)
{
    const int meter = m_wallboxes.value(infraId).meter;
    m_backend->values.insert(
        infraId,
        QJsonObject{
            {"timestamp", QDateTime::fromSecsSinceEpoch(m_timestamp, Qt::UTC).toString(Qt::ISODateWithMs)},
            {"status",           meter % 5 == 0 ? "SuspendedEV" : "Charging"                                            },
            {"phase_1",           6 + meter % 10},
            {"phase_2",           meter % 3                                            },
            {"phase_3",           0.5},
            {"meter_value",           meter                                        },
    });
}

QMap<QString, int> Yard::meters() const
{
    QMap<QString, int> result;
    for (auto it = m_wallboxes.cbegin(); it != m_wallboxes.cend(); ++it)
        result.insert(it.key(), it->meter);
    return result;
}

void Yard::asked(const QString &infraId)
{
    Wallbox &wallbox = m_wallboxes[infraId];
    if (wallbox.meter > 0 && (wallbox.asked == 0 || wallbox.meter < wallbox.asked))
        ++m_sessions;
    else if (wallbox.asked > 0 && wallbox.meter > wallbox.asked)
        m_drawn += double(wallbox.meter - wallbox.asked) / 1000;
    wallbox.asked = wallbox.meter;
}

void Yard::arrived(const QString &infraId, int meter)
{
    Wallbox &wallbox = m_wallboxes[infraId];
    const double energy = double(meter) / 1000;
    const double growth = energy - wallbox.shown;
    if (wallbox.shown != 0 && growth > 0) {
        wallbox.total += growth;
        m_counted += growth;
    }
    wallbox.shown = energy;
}

void Yard::forget(const QString &infraId)
{
    m_wallboxes[infraId] = {m_wallboxes.value(infraId).meter};
}

double Yard::total(const QString &infraId) const
{
    return m_wallboxes.value(infraId).total;
}
