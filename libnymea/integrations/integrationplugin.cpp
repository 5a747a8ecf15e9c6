// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "integrations/integrationplugin.h"

#include "integrations/otherjobs.h"

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

PluginMetadata IntegrationPlugin::metadata() const
{
    return m_metadata;
}

void IntegrationPlugin::initPlugin(const PluginMetadata &metadata, ThingManager *thingManager,
                                   HardwareManager *hardwareManager, const QString &storageFolder)
{
    m_metadata = metadata;
    m_thingManager = thingManager;
    m_hardwareManager = hardwareManager;
    delete m_storage;
    m_storage = new QSettings(storageFile(storageFolder, metadata.pluginId()), QSettings::IniFormat, this);
}

QString IntegrationPlugin::storageFile(const QString &storageFolder, const PluginId &pluginId)
{
    return QDir(storageFolder)
        .filePath(QStringLiteral("pluginconfig-%1.conf").arg(pluginId.toString(QUuid::WithoutBraces)));
}

QSettings *IntegrationPlugin::pluginStorage() const
{
    return m_storage;
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

HardwareManager *IntegrationPlugin::hardwareManager() const
{
    return m_hardwareManager;
}
