// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef FAKEPLUGIN_H
#define FAKEPLUGIN_H

#include <integrations/integrationplugin.h>

/*! A plugin for tests of a daemon. It does what few real plugins do. The parameter "setup" of a bridge
    names a step of the table in the source, the state "order" of a lamp what the lamp does: "hang", "fail",
    "vanish" or "blink". A name that it does not know ends the process. */
class FakePlugin : public IntegrationPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "io.nymea.IntegrationPlugin" FILE "fakeplugin.json")
    Q_INTERFACES(IntegrationPlugin)
public:
    void discoverThings(ThingDiscoveryInfo *info) override;
    void setupThing(ThingSetupInfo *info) override;
    void postSetupThing(Thing *thing) override;
    void executeAction(ThingActionInfo *info) override;
    void thingRemoved(Thing *thing) override;

private:
    void setupBridge(ThingSetupInfo *info);
    void announceLamps(const Thing *bridge);
    void announceNonsense(const Thing *bridge);
    void obey(ThingActionInfo *info, const QString &order);
};

#endif // FAKEPLUGIN_H
