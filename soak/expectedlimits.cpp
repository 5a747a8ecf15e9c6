// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "expectedlimits.h"

#include <integrations/thing.h>

#include <utility>

void ExpectedLimits::act(const Thing *thing, const QString &state, const QVariant &value, qint64 now)
{
    m_lastAction = now;
    if (thing->stateValue(state) == value)
        return;
    const QString infraId = thing->paramValue("infraID").toString();
    if (state == "maxChargingCurrent")
        queue(infraId, value.toDouble());
    else if (!value.toBool())
        queue(infraId, 0);
}

bool ExpectedLimits::renew(const QMap<QString, Thing *> &things, qint64 now)
{
    if (!m_lastAction || now - *m_lastAction > 30)
        return false;
    for (auto it = things.cbegin(); it != things.cend(); ++it) {
        const bool enabled = it.value()->stateValue("power").toBool();
        queue(it.key(), enabled ? it.value()->stateValue("maxChargingCurrent").toDouble() : 0);
    }
    return true;
}

QJsonObject ExpectedLimits::take()
{
    return std::exchange(m_waiting, {});
}

void ExpectedLimits::queue(const QString &infraId, double ampere)
{
    m_waiting.insert(infraId,
                     QJsonObject{
                         {"value", ampere},
                         {"unit",  "A"   }
    });
}
