// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "reported.h"

#include <algorithm>
#include <utility>

namespace {

// Grow only; what was stored last may be newer than what was reported.
constexpr const char *growing[] = {"totalEnergyConsumed", "timestamp"};

QString infraId(const QJsonObject &thing)
{
    return thing.value("params").toObject().value("infraID").toString();
}

} // namespace

void Reported::note(const QJsonObject &object)
{
    const QString event = object.value("event").toString();
    const QJsonObject thing = object.value("thing").toObject();
    const QString id = thing.value("id").toString();
    if (event == "thingAdded")
        m_things.insert(id, thing);
    if (event == "thingRemoved") {
        m_things.remove(id);
        m_removed.insert(id);
    }
    if (event == "stateChanged" && m_things.contains(object.value("thingId").toString())) {
        QJsonObject &changed = m_things[object.value("thingId").toString()];
        QJsonObject states = changed.value("states").toObject();
        states[object.value("state").toString()] = object.value("value");
        changed["states"] = states;
    }
    if (object.value("answer") == "set" && !m_acting.isEmpty())
        m_acting.removeFirst();
    if (object.value("answer") == "remove")
        m_removing = false;
}

void Reported::hostHasEnded()
{
    for (const QString &name : qAsConst(m_acting))
        m_undecided.insert(name);
    m_acting.clear();
}

QString Reported::judge(const QJsonArray &things)
{
    QString error = lost(things);
    if (error.isEmpty())
        error = doubled(things);
    settle(things);
    return error;
}

QString Reported::judgeStored(const QStringList &stored, const QJsonArray &things)
{
    QString error = doubled(things);
    QSet<QString> present;
    for (const QJsonValue &thing : things)
        present.insert(thing.toObject().value("id").toString());
    for (const QString &id : stored) {
        if (!present.contains(id) && !m_removed.contains(id) && !m_removing)
            error = "A stored thing is lost: " + id;
    }
    m_removed -= present;
    settle(things);
    return error;
}

/*! From here on \a things are what there is. */
void Reported::settle(const QJsonArray &things)
{
    adopt(things);
    m_undecided.clear();
    m_removing = false;
}

QString Reported::lost(const QJsonArray &things) const
{
    QHash<QString, QJsonObject> present;
    for (const QJsonValue &value : things)
        present.insert(value.toObject().value("id").toString(), value.toObject());
    for (const QString &id : m_removed) {
        if (present.contains(id))
            return "A removed thing is back: " + id;
    }
    for (const QJsonObject &thing : m_things) {
        const QString id = thing.value("id").toString();
        if (!present.contains(id) && m_removing)
            continue; // removed, and not yet reported
        if (!present.contains(id))
            return "A thing is lost: " + thing.value("name").toString() + ' ' + id;
        QString error = changed(present.value(id));
        if (!error.isEmpty())
            return error;
    }
    return QString();
}

/*! How \a thing differs from what was reported of it. */
QString Reported::changed(const QJsonObject &thing) const
{
    const QJsonObject reported = m_things.value(thing.value("id").toString());
    const QString name = thing.value("name").toString();
    for (const char *member : {"name", "class", "parentId", "params"}) {
        if (thing.value(QLatin1String(member)) != reported.value(QLatin1String(member)))
            return QString("%1 has another %2").arg(name, member);
    }
    const QJsonObject before = reported.value("states").toObject();
    const QJsonObject now = thing.value("states").toObject();
    for (const char *state : growing) {
        if (now.value(state).toDouble() < before.value(state).toDouble())
            return QString("%1 of %2 fell").arg(state, name);
    }
    if (!m_undecided.contains(name) && now.value("power") != before.value("power"))
        return "power of " + name + " is not what was reported";
    return QString();
}

QString Reported::doubled(const QJsonArray &things) const
{
    QSet<QString> seen;
    for (const QJsonValue &value : things) {
        const QString key = infraId(value.toObject()); // empty for the gateway, of which there is one
        if (seen.contains(key))
            return "There are two things for the wallbox \"" + key + '"';
        seen.insert(key);
    }
    return QString();
}

void Reported::adopt(const QJsonArray &things)
{
    const QHash<QString, QJsonObject> before = std::exchange(m_things, {});
    for (const QJsonValue &value : things) {
        const QJsonObject thing = value.toObject();
        m_unreported += !before.contains(thing.value("id").toString());
        m_things.insert(thing.value("id").toString(), thing);
    }
}

bool Reported::hasGateway() const
{
    return std::any_of(m_things.cbegin(), m_things.cend(),
                       [](const QJsonObject &thing) { return infraId(thing).isEmpty(); });
}
