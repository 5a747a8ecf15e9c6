// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT
#include "wallbox.h"

#include <algorithm>

namespace {
constexpr Seconds preparationTime{3}; // long enough for the poll of every other second to see it

QString noCar()
{
    return QStringLiteral("no car is plugged in");
}

QString sessionOver()
{
    return QStringLiteral("the session has ended: unplug the car first");
}
} // namespace

Wallbox::Wallbox(int maxChargingCurrent)
    : m_maxChargingCurrent(maxChargingCurrent)
{
}

QString Wallbox::plugIn(const Car &car)
{
    if (m_car)
        return QStringLiteral("a car is plugged in already: unplug it first");
    m_car = car;
    m_untilReady = preparationTime;
    m_paused = false;
    m_finished = false;
    m_sessionEnergy = 0;
    return {};
}

QString Wallbox::unplug()
{
    if (!m_car)
        return noCar();
    m_car.reset();
    m_paused = false;
    m_finished = false;
    return {};
}

QString Wallbox::pause()
{
    if (!m_car)
        return noCar();
    if (m_finished)
        return sessionOver();
    m_paused = true;
    return {};
}

QString Wallbox::resume()
{
    if (!m_car)
        return noCar();
    if (m_finished)
        return sessionOver();
    m_paused = false;
    return {};
}

QString Wallbox::finish()
{
    if (!m_car)
        return noCar();
    m_finished = true;
    m_paused = false;
    return {};
}

QString Wallbox::breakDown()
{
    m_broken = true;
    return {};
}

QString Wallbox::mend()
{
    m_broken = false;
    return {};
}

void Wallbox::setLimit(double ampere)
{
    m_limit = ampere;
}

void Wallbox::setMaxChargingCurrent(int ampere)
{
    m_maxChargingCurrent = ampere;
}

void Wallbox::advance(Seconds elapsed)
{
    if (!m_broken) {
        const Seconds preparing = std::min(elapsed, m_untilReady);
        m_untilReady -= preparing;
        elapsed -= preparing;
    }
    m_sessionEnergy += power() * std::chrono::duration<double, std::ratio<3600>>(elapsed).count();
}

QString Wallbox::status() const
{
    // The order matters: what comes first hides what comes later. By OCPP a car is suspended by the wallbox
    // as long as nothing is offered to it, whether or not it would take anything.
    if (m_broken)
        return QStringLiteral("Faulted");
    if (!m_car)
        return QStringLiteral("Available");
    if (m_finished)
        return QStringLiteral("Finishing");
    if (m_untilReady > Seconds::zero())
        return QStringLiteral("Preparing");
    if (offeredCurrent() < minimumCurrent)
        return QStringLiteral("SuspendedEVSE");
    return m_paused ? QStringLiteral("SuspendedEV") : QStringLiteral("Charging");
}

std::array<double, 3> Wallbox::currents() const
{
    std::array<double, 3> currents{};
    if (m_car)
        std::fill_n(currents.begin(), m_car->phases, chargingCurrent());
    return currents;
}

double Wallbox::power() const
{
    return m_car ? m_car->phases * chargingCurrent() * phaseVoltage : 0;
}

double Wallbox::offeredPower() const
{
    return m_car ? m_car->phases * offeredCurrent() * phaseVoltage : 0;
}

double Wallbox::offeredCurrent() const
{
    return std::min(m_limit.value_or(m_maxChargingCurrent), double(m_maxChargingCurrent));
}

double Wallbox::chargingCurrent() const
{
    return status() == QLatin1String("Charging") ? std::min(offeredCurrent(), m_car->maxCurrent) : 0;
}
