// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef INTEGRATIONPLUGIN_H
#define INTEGRATIONPLUGIN_H

#include "hardwaremanager.h"
#include "integrations/pluginmetadata.h"
#include "integrations/thingactioninfo.h"
#include "integrations/thingdiscoveryinfo.h"
#include "integrations/thingmanager.h"
#include "integrations/thingsetupinfo.h"

#include <QSettings>
#include <QVariantMap>

class BrowseResult;
class BrowserActionInfo;
class BrowserItemActionInfo;
class BrowserItemResult;
class ThingPairingInfo;

/*! Base of every integration plugin. The daemon calls the virtual operations on its main thread, init()
    first; a job passed to one of them is finished at once or later. */
class LIBNYMEA_EXPORT IntegrationPlugin : public QObject
{
    Q_OBJECT
public:
    explicit IntegrationPlugin(QObject *parent = nullptr);
    ~IntegrationPlugin() override;

    /*! Called once, after loading and before everything else. Does nothing here. */
    virtual void init();
    /*! Called after init(), for plugins that look for things by themselves. Does nothing here. */
    virtual void startMonitoringAutoThings();
    /*! Looks for things of \a info's class. Unsupported here. */
    virtual void discoverThings(ThingDiscoveryInfo *info);
    /*! Gets \a info's thing to work. Succeeds here. */
    virtual void setupThing(ThingSetupInfo *info);
    /*! Called when \a thing's set-up has finished without error. Does nothing here. */
    virtual void postSetupThing(Thing *thing);
    /*! Called when \a thing, already missing from myThings(), goes; it is deleted later. */
    virtual void thingRemoved(Thing *thing);
    /*! Pairing, in two steps. Unsupported here. */
    virtual void startPairing(ThingPairingInfo *info);
    virtual void confirmPairing(ThingPairingInfo *info, const QString &username, const QString &secret);
    /*! Carries out an action. Unsupported here. */
    virtual void executeAction(ThingActionInfo *info);
    /*! Browsing a thing's content. Unsupported here. */
    virtual void browseThing(BrowseResult *result);
    virtual void browserItem(BrowserItemResult *result);
    virtual void executeBrowserItem(BrowserActionInfo *info);
    virtual void executeBrowserItemAction(BrowserItemActionInfo *info);
    /*! Facts about the service behind the plugin. Empty here. */
    virtual QVariantMap serviceInformation() const;

    PluginMetadata metadata() const;

    /*! Called by the daemon before init(). \a thingManager and \a hardwareManager must outlive the plugin's
        use; the plugin's storage is a file of its own in \a storageFolder. */
    void initPlugin(const PluginMetadata &metadata, ThingManager *thingManager,
                    HardwareManager *hardwareManager, const QString &storageFolder);
    /*! The file in \a storageFolder that holds a plugin's storage. */
    static QString storageFile(const QString &storageFolder, const PluginId &pluginId);

    /*! The plugin's own settings, kept over restarts. One object for the plugin's life, owned by it. */
    QSettings *pluginStorage() const;

Q_SIGNALS:
    /*! The plugin has found things by itself; the daemon creates and sets up one for each descriptor. */
    void autoThingsAppeared(const ThingDescriptors &thingDescriptors);
    /*! A thing that the plugin announced is gone; the daemon removes it. */
    void autoThingDisappeared(const ThingId &thingId);

protected:
    /*! The kept things of this plugin's classes. */
    Things myThings() const;
    HardwareManager *hardwareManager() const;

private:
    PluginMetadata m_metadata;
    ThingManager *m_thingManager = nullptr;       // the daemon's
    HardwareManager *m_hardwareManager = nullptr; // the daemon's
    QSettings *m_storage = nullptr;               // our child, made by initPlugin
};

Q_DECLARE_INTERFACE(IntegrationPlugin, "io.nymea.IntegrationPlugin")

#endif // INTEGRATIONPLUGIN_H
