// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "integrations/thingactioninfo.h"
#include "integrations/thingdiscoveryinfo.h"
#include "integrations/thingsetupinfo.h"

ThingDiscoveryInfo::ThingDiscoveryInfo(const ThingClassId &thingClassId, const ParamList &params,
                                       std::chrono::milliseconds timeout, QObject *parent)
    : ThingJob(timeout, parent)
    , m_thingClassId(thingClassId)
    , m_params(params)
{
}

ThingClassId ThingDiscoveryInfo::thingClassId() const
{
    return m_thingClassId;
}

ParamList ThingDiscoveryInfo::params() const
{
    return m_params;
}

void ThingDiscoveryInfo::addThingDescriptor(const ThingDescriptor &thingDescriptor)
{
    m_thingDescriptors.append(thingDescriptor);
}

ThingDescriptors ThingDiscoveryInfo::thingDescriptors() const
{
    return m_thingDescriptors;
}

ThingSetupInfo::ThingSetupInfo(Thing *thing, std::chrono::milliseconds timeout)
    : ThingJob(timeout, thing)
    , m_thing(thing)
{
}

Thing *ThingSetupInfo::thing() const
{
    return m_thing;
}

ThingActionInfo::ThingActionInfo(Thing *thing, const Action &action, std::chrono::milliseconds timeout)
    : ThingJob(timeout, thing)
    , m_thing(thing)
    , m_action(action)
{
}

Thing *ThingActionInfo::thing() const
{
    return m_thing;
}

Action ThingActionInfo::action() const
{
    return m_action;
}
