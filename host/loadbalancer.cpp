// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "loadbalancer.h"

#include "wallboxes.h"

#include <algorithm>
#include <cmath>

using namespace std::chrono_literals;

namespace {

constexpr double voltage = 230; // V, of each phase

/*! In W. A car that does not charge yet may use all three phases. */
double powerAt(const Thing *wallbox, const QVariant &ampere)
{
    const double phases = isOn(wallbox, "charging") ? number(wallbox, "phaseCount") : 3;
    return ampere.toDouble() * phases * voltage;
}

State limitOf(const Thing *wallbox)
{
    return wallbox->state(QStringLiteral("maxChargingCurrent"));
}

/*! In A. A full car gets the least current only; if it resumes, the next round gives it its share. */
double mostFor(const Thing *wallbox)
{
    const State limit = limitOf(wallbox);
    return (isInState(wallbox, {"SuspendedEV"}) ? limit.minValue() : limit.maxValue()).toDouble();
}

} // namespace

LoadBalancer::LoadBalancer(Daemon *daemon)
    : m_daemon(daemon)
{
    m_timer.setInterval(10s);
    connect(&m_timer, &QTimer::timeout, this, &LoadBalancer::balance);
}

void LoadBalancer::start(double power)
{
    m_power = power;
    m_timer.start();
    balance();
}

void LoadBalancer::balance()
{
    Things cars;
    double left = m_power;
    const Things wallboxes = wallboxesOf(m_daemon->configuredThings());
    for (Thing *wallbox : wallboxes) {
        const bool hasCar = isInState(wallbox, {"Preparing", "Charging", "SuspendedEVSE", "SuspendedEV"});
        const double least = powerAt(wallbox, limitOf(wallbox).minValue());
        if (hasCar && least <= left) {
            cars.append(wallbox);
            left -= least;
        } else {
            // Also if it is disabled already: the action keeps its limit of 0 A in force.
            m_daemon->execute(wallbox, QStringLiteral("power"), false);
        }
    }
    share(cars, left);
}

/*! Shares \a left, in W, among \a cars, in addition to the least that each of them needs. */
void LoadBalancer::share(Things cars, double left)
{
    // The car that can take least comes first, so that the others get what it leaves.
    std::sort(cars.begin(), cars.end(),
              [](const Thing *a, const Thing *b) { return powerAt(a, mostFor(a)) < powerAt(b, mostFor(b)); });
    for (int i = 0; i < cars.size(); ++i) {
        const double least = limitOf(cars.at(i)).minValue().toDouble();
        const double share = std::floor(left / (cars.size() - i) / powerAt(cars.at(i), 1));
        const double ampere = std::min(least + share, mostFor(cars.at(i)));
        left -= powerAt(cars.at(i), ampere - least);
        m_daemon->execute(cars.at(i), QStringLiteral("maxChargingCurrent"), ampere);
        if (!isOn(cars.at(i), "power")) // A current that was already set does not enable it.
            m_daemon->execute(cars.at(i), QStringLiteral("power"), true);
    }
}
