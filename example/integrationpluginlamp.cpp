// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "integrationpluginlamp.h"

#include <libnymea.h>

extern "C" Q_DECL_EXPORT QString libnymea_api_version()
{
    return QStringLiteral(LIBNYMEA_API_VERSION);
}

void IntegrationPluginLamp::discoverThings(ThingDiscoveryInfo *info)
{
    info->addThingDescriptor(
        ThingDescriptor(info->thingClassId(), QStringLiteral("Lamp"), QStringLiteral("An example")));
    info->finish(Thing::ThingErrorNoError);
}

void IntegrationPluginLamp::executeAction(ThingActionInfo *info)
{
    // The action, its parameter and the state share one id: the metadata declares a writable state.
    const QUuid id(info->action().actionTypeId());
    info->thing()->setStateValue(StateTypeId(id), info->action().params().paramValue(ParamTypeId(id)));
    info->finish(Thing::ThingErrorNoError);
}
