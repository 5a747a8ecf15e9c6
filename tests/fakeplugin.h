// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef FAKEPLUGIN_H
#define FAKEPLUGIN_H

#include <integrations/integrationplugin.h>

/*! A plugin that does to its daemon what few real ones do. A bridge's parameter "setup" says how its set-up
    goes: "succeeds", "fails", "hangs", or "announces" (finishes, then announces
    lamps, all in one call), "announces and fails" or "announces nonsense". */
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
