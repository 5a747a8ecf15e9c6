// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef INTEGRATIONPLUGINLAMP_H
#define INTEGRATIONPLUGINLAMP_H

#include <integrations/integrationplugin.h>

/*! An example: one lamp that is found by discovery and switched by an action. */
class IntegrationPluginLamp : public IntegrationPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "io.nymea.IntegrationPlugin" FILE "integrationpluginlamp.json")
    Q_INTERFACES(IntegrationPlugin)

public:
    void discoverThings(ThingDiscoveryInfo *info) override;
    void executeAction(ThingActionInfo *info) override;
};

#endif // INTEGRATIONPLUGINLAMP_H
