// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT
#include "yard.h"

#include <QDateTime>

#include <cmath>

namespace {
constexpr std::size_t limitsKept = 1000;
constexpr std::chrono::seconds memoryPeriod{1};
constexpr std::size_t memoriesKept = 300;

// A yard that shows something from the start: what stands at the first four plugs, and again at the next
// four.
constexpr struct
{
    double maxCurrent;
    int phases; // 0: no car
    bool paused;
} firstCars[] = {
    {16, 3, false},
    {32, 1, false},
    {32, 3, true },
    {0,  0, false},
};

void parkFirstCar(Wallbox &wallbox, int number)
{
    const auto &car = firstCars[(number - 1) % std::size(firstCars)];
    if (car.phases == 0)
        return;
    wallbox.plugIn({car.phases, car.maxCurrent});
    if (car.paused)
        wallbox.pause();
    while (wallbox.status() == QLatin1String("Preparing")) // it came before we did
        wallbox.advance(Seconds(1));
}

QString numberedId(int number)
{
    return QStringLiteral("EVSE-%1").arg(number, 2, 10, QLatin1Char('0'));
}

double rounded(double value)
{
    return std::round(value * 1000) / 1000;
}
} // namespace

QString utcNow()
{
    return QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs);
}

Yard::Yard(const Settings &settings)
    : m_group(settings.group)
    , m_secret(settings.secret)
    , m_speed(settings.speed)
{
    for (int number = 1; number <= settings.wallboxes; ++number)
        parkFirstCar(m_places[numberedId(number)].wallbox, number);
}

bool Yard::isGroup(const QString &group) const
{
    const std::lock_guard lock(m_mutex);
    return group == m_group;
}

bool Yard::isSecret(const QString &secret) const
{
    const std::lock_guard lock(m_mutex);
    return secret == m_secret;
}

QJsonObject Yard::groupInfo() const
{
    const std::lock_guard lock(m_mutex);
    QJsonObject info;
    for (const auto &[id, place] : m_places) {
        const int maximum = place.wallbox.maxChargingCurrent();
        info.insert(id,
                    QJsonObject{
                        {QStringLiteral("max_charging_current"), maximum}
        });
    }
    return info;
}

QJsonObject Yard::values(const QStringList &ids)
{
    const std::lock_guard lock(m_mutex);
    catchUp();
    QJsonObject values;
    const QString time = utcNow();
    for (const QString &id : ids) {
        const auto place = m_places.find(id);
        if (place != m_places.end())
            values.insert(id, valueRecord(place->second.wallbox, time));
    }
    return values;
}

void Yard::setLimits(const QMap<QString, double> &limits)
{
    const std::lock_guard lock(m_mutex);
    catchUp();
    const QString time = utcNow();
    for (auto limit = limits.begin(); limit != limits.end(); ++limit) {
        const auto place = m_places.find(limit.key());
        const bool isKnown = place != m_places.end();
        if (isKnown) {
            place->second.wallbox.setLimit(limit.value());
            place->second.limitTime = time;
        }
        m_limits.push_back({
            {QStringLiteral("number"),  ++m_limitCount},
            {QStringLiteral("time"),    time          },
            {QStringLiteral("id"),      limit.key()   },
            {QStringLiteral("value"),   limit.value() },
            {QStringLiteral("applied"), isKnown       }
        });
    }
    while (m_limits.size() > limitsKept)
        m_limits.pop_front();
}

bool Yard::addWallbox(QString id, int maxChargingCurrent)
{
    const std::lock_guard lock(m_mutex);
    catchUp();
    if (id.isEmpty())
        id = freeId();
    return m_places.try_emplace(id, Place{Wallbox(maxChargingCurrent), {}}).second;
}

bool Yard::removeWallbox(const QString &id)
{
    const std::lock_guard lock(m_mutex);
    return m_places.erase(id) > 0;
}

bool Yard::touchWallbox(const QString &id, const std::function<void(Wallbox &)> &touch)
{
    const std::lock_guard lock(m_mutex);
    catchUp();
    const auto place = m_places.find(id);
    if (place == m_places.end())
        return false;
    touch(place->second.wallbox);
    return true;
}

void Yard::setSpeed(double speed)
{
    const std::lock_guard lock(m_mutex);
    catchUp(); // the past went by at the old speed
    m_speed = speed;
}

void Yard::setGroup(const QString &group)
{
    const std::lock_guard lock(m_mutex);
    m_group = group;
}

void Yard::setSecret(const QString &secret)
{
    const std::lock_guard lock(m_mutex);
    m_secret = secret;
}

QJsonObject Yard::state()
{
    const std::lock_guard lock(m_mutex);
    catchUp();
    QJsonArray wallboxes;
    for (const auto &[id, place] : m_places)
        wallboxes.append(stateRecord(id, place));
    return {
        {QStringLiteral("time"),      utcNow() },
        {QStringLiteral("group"),     m_group  },
        {QStringLiteral("speed"),     m_speed  },
        {QStringLiteral("wallboxes"), wallboxes}
    };
}

QJsonArray Yard::limits() const
{
    const std::lock_guard lock(m_mutex);
    QJsonArray limits;
    for (const QJsonObject &limit : m_limits)
        limits.append(limit);
    return limits;
}

QJsonArray Yard::history() const
{
    const std::lock_guard lock(m_mutex);
    QJsonArray history;
    for (const QJsonObject &memory : m_history)
        history.append(memory);
    return history;
}

void Yard::catchUp()
{
    const Clock::time_point now = Clock::now();
    const Seconds elapsed = (now - m_lastCatchUp) * m_speed;
    m_lastCatchUp = now;
    for (auto &[id, place] : m_places)
        place.wallbox.advance(elapsed);
    if (now - m_lastMemory >= memoryPeriod)
        remember();
}

void Yard::remember()
{
    m_lastMemory = m_lastCatchUp;
    QJsonObject powers;
    for (const auto &[id, place] : m_places)
        powers.insert(id, QJsonArray{place.wallbox.power(), place.wallbox.offeredPower()});
    m_history.push_back({
        {QStringLiteral("time"),      utcNow()},
        {QStringLiteral("wallboxes"), powers  }
    });
    if (m_history.size() > memoriesKept)
        m_history.pop_front();
}

QString Yard::freeId() const
{
    int number = 1;
    while (m_places.count(numberedId(number)) > 0)
        ++number;
    return numberedId(number);
}

QJsonObject Yard::valueRecord(const Wallbox &wallbox, const QString &time)
{
    const auto currents = wallbox.currents();
    return {
        {QStringLiteral("timestamp"),   time                            },
        {QStringLiteral("status"),      wallbox.status()                },
        {QStringLiteral("phase_1"),     currents[0]                     },
        {QStringLiteral("phase_2"),     currents[1]                     },
        {QStringLiteral("phase_3"),     currents[2]                     },
        {QStringLiteral("meter_value"), rounded(wallbox.sessionEnergy())}
    };
}

QJsonObject Yard::stateRecord(const QString &id, const Place &place)
{
    const Wallbox &wallbox = place.wallbox;
    QJsonValue car;
    if (wallbox.car())
        car = QJsonObject{
            {QStringLiteral("phases"),     wallbox.car()->phases    },
            {QStringLiteral("maxCurrent"), wallbox.car()->maxCurrent},
            {QStringLiteral("paused"),     wallbox.isPaused()       }
        };
    QJsonValue limit;
    if (wallbox.limit())
        limit = QJsonObject{
            {QStringLiteral("value"), *wallbox.limit()},
            {QStringLiteral("time"),  place.limitTime }
        };
    const auto currents = wallbox.currents();
    return {
        {QStringLiteral("id"),                 id                                               },
        {QStringLiteral("status"),             wallbox.status()                                 },
        {QStringLiteral("broken"),             wallbox.isBroken()                               },
        {QStringLiteral("maxChargingCurrent"), wallbox.maxChargingCurrent()                     },
        {QStringLiteral("car"),                car                                              },
        {QStringLiteral("limit"),              limit                                            },
        {QStringLiteral("currents"),           QJsonArray{currents[0], currents[1], currents[2]}},
        {QStringLiteral("power"),              wallbox.power()                                  },
        {QStringLiteral("offeredPower"),       wallbox.offeredPower()                           },
        {QStringLiteral("sessionEnergy"),      rounded(wallbox.sessionEnergy())                 }
    };
}
