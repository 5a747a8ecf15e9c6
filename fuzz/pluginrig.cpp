// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "pluginrig.h"

#include "fakenetwork.h"
#include "fuzzing.h"
#include "values.h"

#include <plugintimer.h>

using namespace std::chrono_literals;

PluginRig::PluginRig()
{
    m_plugin.initPlugin(pluginMetadata(), this, &m_hardwareManager, m_storage.path());
    connect(&m_plugin, &IntegrationPlugin::autoThingsAppeared, this,
            [this](const ThingDescriptors &descriptors) {
                for (const ThingDescriptor &descriptor : descriptors)
                    addWallbox(descriptor);
            });
    connect(&m_plugin, &IntegrationPlugin::autoThingDisappeared, this,
            [this](const ThingId &thingId) { remove(m_things.findById(thingId)); });
}

PluginRig::~PluginRig()
{
    qDeleteAll(m_things);
}

Things PluginRig::wallboxes() const
{
    return m_things.mid(1);
}

void PluginRig::begin()
{
    while (!m_things.isEmpty())
        remove(m_things.last());
    runPostedEvents();
    m_refusals = 0;
    m_plugin.init();
    add(pluginMetadata().thingClasses().findByName(QStringLiteral("vela")).id, ThingId(), {});
}

Thing *PluginRig::add(const ThingClassId &thingClassId, const ThingId &parentId, const ParamList &params)
{
    auto *thing = new Thing(pluginMetadata().thingClasses().findById(thingClassId));
    thing->setParentId(parentId);
    for (const Param &param : params)
        thing->setParamValue(param.paramTypeId(), param.value());
    m_things.append(thing);
    return thing;
}

void PluginRig::addWallbox(const ThingDescriptor &descriptor)
{
    const ThingClass thingClass = pluginMetadata().thingClasses().findById(descriptor.thingClassId());
    require(!thingClass.id.isNull(), "an announced wallbox has a class");
    const CheckedParams checked = checkParams(descriptor.params(), thingClass.paramTypes);
    if (!checked.error.isEmpty())
        ++m_refusals;
    else
        setup(add(thingClass.id, descriptor.parentId(), checked.params));
}

void PluginRig::setupGateway(const QByteArray &groupInfo)
{
    setup(m_things.first(), groupInfo);
    runPostedEvents();
}

void PluginRig::setup(Thing *thing, const QByteArray &groupInfo)
{
    auto *info = new ThingSetupInfo(thing, 0ms);
    m_plugin.setupThing(info);
    if (thing == m_things.first())
        require(answerPost(groupInfo), "a gateway's set-up asks for the group");
    require(info->isFinished(), "an answered set-up ends");
    m_plugin.postSetupThing(thing);
}

void PluginRig::remove(Thing *thing)
{
    require(m_things.removeOne(thing), "only things that are there disappear");
    m_plugin.thingRemoved(thing);
    thing->deleteLater();
}

void PluginRig::poll(const QByteArray &values)
{
    PluginTimerManager *timers = m_hardwareManager.pluginTimerManager();
    timers->tick();
    timers->tick();
    require(answerPost(values), "every period of the timer brings a poll");
    runPostedEvents();
}
