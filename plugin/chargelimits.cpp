// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "chargelimits.h"

QJsonObject chargeLimit(const QJsonValue &ampere)
{
    QJsonObject limit;
    limit.insert(QLatin1String("value"), ampere);
    limit.insert(QLatin1String("unit"), QStringLiteral("A"));
    return limit;
}

bool isSilent(qint64 lastActionTime, qint64 now)
{
    constexpr qint64 longestPause = 30; // s
    return lastActionTime == 0 || now - lastActionTime > longestPause;
}
