// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

// Replies to the set-ups of a gateway, one after the other, and the wallbox things that come and go with
// them.

#include "fuzzing.h"
#include "pluginrig.h"

#include <QJsonDocument>
#include <QSet>

namespace {

constexpr int wallboxClassCount = 32;

/*! As Qt reads them: without a byte order mark in front, so that two members may have the same name. */
QSet<QString> listedIds(const QByteArray &reply)
{
    const QJsonObject group = QJsonDocument::fromJson(reply).object();
    const QStringList ids = group.value(QLatin1String("evse_ids")).toObject().keys();
    return {ids.cbegin(), ids.cend()};
}

/*! The infrastructure ids of the wallboxes that there are, each sound in itself. */
QSet<QString> checkedIds(const PluginRig &rig)
{
    QSet<QString> infraIds;
    QSet<ThingClassId> classIds;
    const Things wallboxes = rig.wallboxes();
    for (const Thing *wallbox : wallboxes) {
        infraIds.insert(wallbox->paramValue(QStringLiteral("infraID")).toString());
        classIds.insert(wallbox->thingClassId());
        require(wallbox->parentId() == rig.configuredThings().constFirst()->id(),
                "the gateway is the parent");
        const uint most = wallbox->paramValue(QStringLiteral("maxAllowedCurrent")).toUInt();
        const State current = wallbox->state(QStringLiteral("maxChargingCurrent"));
        require(most <= 32 && current.value() == most && current.maxValue() == most,
                "the limit is the allowed one");
    }
    require(infraIds.size() == wallboxes.size(), "no two wallboxes share an id");
    require(classIds.size() == wallboxes.size(), "no two wallboxes share a class");
    return infraIds;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static auto *rig = new PluginRig; // lives to the end of the process
    rig->begin();
    const QList<QByteArray> replies = inputReplies(data, size);
    for (const QByteArray &reply : replies) {
        rig->setupGateway(reply);
        const QSet<QString> listed = listedIds(reply);
        const QSet<QString> present = checkedIds(*rig);
        require(listed.contains(present), "only listed wallboxes stay");
        // A class whose wallbox was refused is not given out again.
        require(rig->refusals() > 0 || present.size() == std::min(listed.size(), wallboxClassCount),
                "every listed wallbox has a thing while there are classes");
        rig->poll(reply);
    }
    rig->setupGateway("{}");
    require(rig->wallboxes().isEmpty(), "an empty group has no wallboxes");
    return 0;
}
