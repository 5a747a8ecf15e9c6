// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "simulatedwallbox.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr Seconds preparationTime{3}; // long enough to be seen by a client that polls every 2 s

QString noCar()
{
    return QStringLiteral("no car is plugged in");
}

} // namespace

QString SimulatedWallbox::plugIn(const Car &car)
{
    if (m_car)
        return QStringLiteral("a car is plugged in already: unplug it first");
    m_car = car;
    m_untilReady = preparationTime;
    m_finished = false;
    m_sessionEnergy = 0;
    return {};
}

QString SimulatedWallbox::unplug()
{
    if (!m_car)
        return noCar();
    m_car.reset();
    return {};
}

QString SimulatedWallbox::setPaused(bool paused)
{
    if (!m_car)
        return noCar();
    if (m_finished)
        return QStringLiteral("the session has ended: unplug the car first");
    m_car->isPaused = paused;
    return {};
}

QString SimulatedWallbox::finish()
{
    if (!m_car)
        return noCar();
    m_finished = true;
    m_car->isPaused = false;
    return {};
}

void SimulatedWallbox::advance(Seconds elapsed)
{
    if (!isBroken) {
        const Seconds preparing = std::min(elapsed, m_untilReady);
        m_untilReady -= preparing;
        elapsed -= preparing;
    }
    m_sessionEnergy += power() * std::chrono::duration<double, std::ratio<3600>>(elapsed).count();
}

QString SimulatedWallbox::status() const
{
    // The order matters, because several of these may be true. By OCPP the wallbox suspends a car to which it
    // offers nothing, whether or not the car would draw anything.
    if (isBroken)
        return QStringLiteral("Faulted");
    if (!m_car)
        return QStringLiteral("Available");
    if (m_finished)
        return QStringLiteral("Finishing");
    if (m_untilReady > Seconds::zero())
        return QStringLiteral("Preparing");
    if (offeredCurrent() < minimumCurrent)
        return QStringLiteral("SuspendedEVSE");
    return m_car->isPaused ? QStringLiteral("SuspendedEV") : QStringLiteral("Charging");
}

std::array<double, 3> SimulatedWallbox::currents() const
{
    std::array<double, 3> currents{};
    if (m_car)
        std::fill_n(currents.begin(), m_car->phases, chargingCurrent());
    return currents;
}

double SimulatedWallbox::power() const
{
    return m_car ? m_car->phases * chargingCurrent() * phaseVoltage : 0;
}

double SimulatedWallbox::offeredPower() const
{
    return m_car ? m_car->phases * offeredCurrent() * phaseVoltage : 0;
}

double SimulatedWallbox::sessionEnergy() const
{
    return std::round(m_sessionEnergy * 1000) / 1000;
}

double SimulatedWallbox::offeredCurrent() const
{
    const double maximum = maxChargingCurrent;
    return limit ? std::min(limit->ampere, maximum) : maximum;
}

double SimulatedWallbox::chargingCurrent() const
{
    return status() == QLatin1String("Charging") ? std::min(offeredCurrent(), m_car->maxCurrent) : 0;
}
