// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

// Replies to the set-ups of a gateway, one after the other, and the wallbox things that come and go with
// them.

#include "answeredsite.h"
#include "fuzzing.h"
#include "wallboxbounds.h"

#include <QJsonDocument>
#include <QSet>

#include <algorithm>

namespace {

/*! As Qt reads them: without a byte order mark in front, so that two members may have the same name. */
QSet<QString> listedIds(const QByteArray &reply)
{
    const QJsonObject group = QJsonDocument::fromJson(reply).object();
    const QStringList ids = group.value("evse_ids").toObject().keys();
    return {ids.cbegin(), ids.cend()};
}

/*! A site whose wallboxes are kept here: the daemon would store its things with each of them. */
class UnstoredSite : public AnsweredSite
{
public:
    UnstoredSite()
    {
        IntegrationPlugin *plugin = daemon->plugin();
        setupGateway("{}");
        plugin->disconnect(daemon.get());
        QObject::connect(plugin, &IntegrationPlugin::autoThingsAppeared, daemon.get(),
                         [this](const ThingDescriptors &descriptors) { add(descriptors.first()); });
        QObject::connect(plugin, &IntegrationPlugin::autoThingDisappeared, daemon.get(),
                         [this](const ThingId &thingId) { remove(thingId); });
    }

    /*! Checks each wallbox, and returns the infrastructure ids of all. */
    QSet<QString> checkedIds() const
    {
        QSet<QString> infraIds;
        QSet<ThingClassId> classIds;
        for (const Thing *wallbox : wallboxes) {
            infraIds.insert(infraIdOf(wallbox));
            classIds.insert(wallbox->thingClassId());
            require(wallbox->parentId() == gateway()->id(), "the gateway is the parent");
            const uint most = wallbox->paramValue("maxAllowedCurrent").toUInt();
            const State current = wallbox->state("maxChargingCurrent");
            require(current.value() == most && current.maxValue() == most, "the limit is the allowed one");
        }
        require(infraIds.size() == wallboxes.size(), "no two wallboxes share an id");
        require(classIds.size() == wallboxes.size(), "no two wallboxes share a class");
        return infraIds;
    }

    Things wallboxes;

private:
    void add(const ThingDescriptor &descriptor)
    {
        const ThingClass thingClass = daemon->thingClasses().findById(descriptor.thingClassId());
        require(!thingClass.id.isNull(), "an announced wallbox has a class");
        wallboxes.append(new Thing(thingClass));
        wallboxes.last()->setParentId(descriptor.parentId());
        const ParamList params = descriptor.params();
        for (const Param &param : params)
            wallboxes.last()->setParamValue(param.paramTypeId(), param.value());
        ThingSetupInfo info(wallboxes.last(), std::chrono::milliseconds(0));
        daemon->plugin()->setupThing(&info);
        require(info.status() == Thing::ThingErrorNoError, "a wallbox is set up at once");
    }

    void remove(const ThingId &thingId)
    {
        Thing *thing = wallboxes.findById(thingId);
        require(wallboxes.removeOne(thing), "only wallboxes that are there disappear");
        daemon->plugin()->thingRemoved(thing);
        thing->deleteLater();
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static auto *site = new UnstoredSite; // exists until the end of the process
    site->renewGateway("{}");
    const QList<QByteArray> replies = inputReplies(data, size);
    for (const QByteArray &reply : replies) {
        site->setupGateway(reply);
        const QSet<QString> listed = listedIds(reply);
        const QSet<QString> present = site->checkedIds();
        require(listed.contains(present), "only listed wallboxes stay");
        require(present.size() == std::min(listed.size(), wallboxCount),
                "every listed wallbox has a thing while there are classes");
        site->poll(reply);
    }
    site->setupGateway("{}");
    require(site->wallboxes.isEmpty(), "an empty group has no wallboxes");
    return 0;
}
