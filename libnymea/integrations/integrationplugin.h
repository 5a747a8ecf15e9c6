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

/*! Base of every integration plugin. The daemon creates the plugin, calls the virtual operations on its
    main thread, init() first, and deletes it. An operation must not block: the daemon and all other plugins
    wait for it.

    An operation that is passed a job finishes it, at once or later. The base class finishes those that a
    plugin does not override with ThingErrorUnsupportedFeature. */
class LIBNYMEA_EXPORT IntegrationPlugin : public QObject
{
    Q_OBJECT
public:
    explicit IntegrationPlugin(QObject *parent = nullptr);
    ~IntegrationPlugin() override;

    /*! Called once, after loading and before everything else: the storage is there, no thing is set up
        yet. */
    virtual void init();
    /*! Called once, after init() and once the set-up of the stored things has begun. For plugins that look
        for things by themselves and announce them with autoThingsAppeared(). */
    virtual void startMonitoringAutoThings();
    /*! Looks for things of the job's class, with the parameters that the user has entered. Called only for
        a class with the create method "discovery". */
    virtual void discoverThings(ThingDiscoveryInfo *info);
    /*! Gets the job's thing to work: a new one, one that the daemon has restored at its start, or one whose
        parameters have changed, so it may be called more than once for a thing. Succeeds in the base
        class. */
    virtual void setupThing(ThingSetupInfo *info);
    /*! Called each time that a set-up of \a thing has finished without error; it now counts among
        myThings(). */
    virtual void postSetupThing(Thing *thing);
    /*! Called when \a thing goes, its children before it. It is missing from myThings() already. The
        pointer is valid until the event loop runs again; pending jobs of the thing are finished by the
        daemon. */
    virtual void thingRemoved(Thing *thing);
    /*! Pairing, for setup methods that need the user: startPairing() asks, confirmPairing() gets the
        answer. */
    virtual void startPairing(ThingPairingInfo *info);
    virtual void confirmPairing(ThingPairingInfo *info, const QString &username, const QString &secret);
    /*! Carries out an action on a thing that is set up. */
    virtual void executeAction(ThingActionInfo *info);
    /*! Browsing, for things with content, such as media libraries. */
    virtual void browseThing(BrowseResult *result);
    virtual void browserItem(BrowserItemResult *result);
    virtual void executeBrowserItem(BrowserActionInfo *info);
    virtual void executeBrowserItemAction(BrowserItemActionInfo *info);
    /*! Facts about the service behind the plugin, by name. Empty in the base class. */
    virtual QVariantMap serviceInformation() const;

    /*! What the plugin's own metadata document says. */
    PluginMetadata metadata() const { return m_metadata; }

    /*! Called by the daemon before init(), never by a plugin. \a thingManager and \a hardwareManager must
        outlive the plugin's use; its settings are a file of its own in \a storageFolder. */
    void initPlugin(const PluginMetadata &metadata, ThingManager *thingManager,
                    HardwareManager *hardwareManager, const QString &storageFolder);

    /*! The plugin's own settings, kept over restarts. Valid from init() on; one object for the plugin's
        life, owned by it. The daemon writes them to the disk soon after a change. */
    QSettings *pluginStorage() const { return m_storage; }

Q_SIGNALS:
    /*! The plugin has found things by itself. The daemon creates one for each descriptor and begins its
        set-up before the emission returns. It refuses a descriptor with a warning for the reasons that
        ThingDescriptor names. */
    void autoThingsAppeared(const ThingDescriptors &thingDescriptors);
    /*! A thing that the plugin announced is gone. The daemon removes it, with a call of thingRemoved(),
        before the emission returns. It refuses an id that is not there with a warning. */
    void autoThingDisappeared(const ThingId &thingId);

protected:
    /*! The things of this plugin's classes that are kept, also those whose last set-up has failed. A new
        thing is kept once its first set-up has succeeded. */
    Things myThings() const;
    /*! Null before init(). */
    HardwareManager *hardwareManager() const { return m_hardwareManager; }

private:
    PluginMetadata m_metadata;
    ThingManager *m_thingManager = nullptr;       // the daemon's
    HardwareManager *m_hardwareManager = nullptr; // the daemon's
    QSettings *m_storage = nullptr;               // our child, made by initPlugin
};

Q_DECLARE_INTERFACE(IntegrationPlugin, "io.nymea.IntegrationPlugin")

#endif // INTEGRATIONPLUGIN_H
