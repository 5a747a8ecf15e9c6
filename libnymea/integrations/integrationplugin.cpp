// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "integrations/integrationplugin.h"

#include "integrations/browseractioninfo.h"
#include "integrations/browseresult.h"
#include "integrations/browseritemactioninfo.h"
#include "integrations/browseritemresult.h"
#include "integrations/thingpairinginfo.h"

#include <QDir>

IntegrationPlugin::IntegrationPlugin(QObject *parent)
    : QObject(parent)
{
}

IntegrationPlugin::~IntegrationPlugin() = default;

void IntegrationPlugin::init() { }

void IntegrationPlugin::startMonitoringAutoThings() { }

void IntegrationPlugin::discoverThings(ThingDiscoveryInfo *info)
{
    info->finish(Thing::ThingErrorUnsupportedFeature);
}

void IntegrationPlugin::setupThing(ThingSetupInfo *info)
{
    info->finish(Thing::ThingErrorNoError);
}

void IntegrationPlugin::postSetupThing(Thing *) { }

void IntegrationPlugin::thingRemoved(Thing *) { }

void IntegrationPlugin::startPairing(ThingPairingInfo *info)
{
    info->finish(Thing::ThingErrorUnsupportedFeature);
}

void IntegrationPlugin::confirmPairing(ThingPairingInfo *info, const QString &, const QString &)
{
    info->finish(Thing::ThingErrorUnsupportedFeature);
}

void IntegrationPlugin::executeAction(ThingActionInfo *info)
{
    info->finish(Thing::ThingErrorUnsupportedFeature);
}

void IntegrationPlugin::browseThing(BrowseResult *result)
{
    result->finish(Thing::ThingErrorUnsupportedFeature);
}

void IntegrationPlugin::browserItem(BrowserItemResult *result)
{
    result->finish(Thing::ThingErrorUnsupportedFeature);
}

void IntegrationPlugin::executeBrowserItem(BrowserActionInfo *info)
{
    info->finish(Thing::ThingErrorUnsupportedFeature);
}

void IntegrationPlugin::executeBrowserItemAction(BrowserItemActionInfo *info)
{
    info->finish(Thing::ThingErrorUnsupportedFeature);
}

QVariantMap IntegrationPlugin::serviceInformation() const
{
    return {};
}

void IntegrationPlugin::initPlugin(const PluginMetadata &metadata, ThingManager *thingManager,
                                   HardwareManager *hardwareManager, const QString &storageFolder)
{
    m_metadata = metadata;
    m_thingManager = thingManager;
    m_hardwareManager = hardwareManager;
    delete m_storage;
    const QString fileName =
        QStringLiteral("pluginconfig-%1.conf").arg(metadata.pluginId().toString(QUuid::WithoutBraces));
    m_storage = new QSettings(QDir(storageFolder).filePath(fileName), QSettings::IniFormat, this);
}

Things IntegrationPlugin::myThings() const
{
    Things mine;
    const Things things = m_thingManager->configuredThings();
    for (Thing *thing : things) {
        if (m_metadata.thingClasses().contains(thing->thingClassId()))
            mine.append(thing);
    }
    return mine;
}
