// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "simulation.h"

namespace {

constexpr int limitsKept = 1000;
constexpr int samplesKept = 300;
constexpr std::chrono::seconds samplePeriod{1};

// The cars at the first four wallboxes, and at each following four.
constexpr std::optional<Car> firstCars[] = {
    Car{3, 16, false},
    Car{1, 32, false},
    Car{3, 32, true },
    std::nullopt,
};

QString numberedId(int number)
{
    return QStringLiteral("EVSE-%1").arg(number, 2, 10, QLatin1Char('0'));
}

} // namespace

void Simulation::addFirstWallboxes(int count)
{
    for (int index = 0; index < count; ++index) {
        SimulatedWallbox &wallbox = wallboxes[numberedId(index + 1)];
        if (const std::optional<Car> &car = firstCars[size_t(index) % std::size(firstCars)])
            wallbox.plugIn(*car);
        while (wallbox.status() == QLatin1String("Preparing")) // its car has been there for a while
            wallbox.advance(Seconds(1));
    }
}

QString Simulation::freeId() const
{
    int number = 1;
    while (wallboxes.count(numberedId(number)) > 0)
        ++number;
    return numberedId(number);
}

void Simulation::receiveLimit(const QString &id, double ampere)
{
    const QString time = utcNow();
    const auto wallbox = wallboxes.find(id);
    const bool isKnown = wallbox != wallboxes.end();
    if (isKnown)
        wallbox->second.limit = {ampere, time};
    limits.append(QJsonObject{
        {QStringLiteral("number"),  ++m_limitCount},
        {QStringLiteral("time"),    time          },
        {QStringLiteral("id"),      id            },
        {QStringLiteral("value"),   ampere        },
        {QStringLiteral("applied"), isKnown       }
    });
    if (limits.size() > limitsKept)
        limits.removeFirst();
}

void Simulation::catchUp()
{
    const Clock::time_point now = Clock::now();
    for (auto &[id, wallbox] : wallboxes)
        wallbox.advance((now - m_lastUse) * speed);
    m_lastUse = now;
    if (now - m_lastSample < samplePeriod)
        return;
    m_lastSample = now;
    QJsonObject powers;
    for (const auto &[id, wallbox] : wallboxes)
        powers.insert(id, QJsonArray{wallbox.power(), wallbox.offeredPower()});
    history.append(QJsonObject{
        {QStringLiteral("time"),      utcNow()},
        {QStringLiteral("wallboxes"), powers  }
    });
    if (history.size() > samplesKept)
        history.removeFirst();
}
