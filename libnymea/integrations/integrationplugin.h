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

/*! Base of every integration plugin. The daemon creates the plugin and calls the virtual operations on its
    main thread, init() first. It may keep the plugin until the process ends, so what belongs to a thing is
    released in thingRemoved(), not in the destructor. An operation must not block, because the daemon and all
    other plugins wait for it.

    An operation that receives a job must finish it, at once or later. If a plugin does not override the
    operation, the base class finishes the job with ThingErrorUnsupportedFeature, unless said otherwise. */
class LIBNYMEA_EXPORT IntegrationPlugin : public QObject
{
    Q_OBJECT
public:
    explicit IntegrationPlugin(QObject *parent = nullptr);
    ~IntegrationPlugin() override;

    /*! Called once, after loading and before everything else. The storage can be used; no thing is set up
        yet. */
    virtual void init();
    /*! Called once, after init() and after the set-ups of the stored things have begun. For plugins that look
        for things by themselves and announce them with autoThingsAppeared(). */
    virtual void startMonitoringAutoThings();
    /*! Looks for things of the job's class, with the parameters that the user has entered. Called only for
        a class with the create method "discovery". */
    virtual void discoverThings(ThingDiscoveryInfo *info);
    /*! Makes the job's thing ready for use. It is new, or the daemon has restored it at its start, or its
        parameters have changed; so this may be called more than once for a thing. The base class succeeds. */
    virtual void setupThing(ThingSetupInfo *info);
    /*! Called each time that a set-up of \a thing has finished without error. The thing is now one of
        myThings(). */
    virtual void postSetupThing(Thing *thing);
    /*! Called when \a thing is removed, after its children. It is no longer one of myThings(). The pointer
        is valid until the event loop runs again. The daemon finishes the pending jobs of the thing. Not called
        for a new thing whose first set-up has failed, and not when the daemon ends. */
    virtual void thingRemoved(Thing *thing);
    /*! Pairing, for set-up methods that need the user: startPairing() asks the user, and confirmPairing()
        receives the answer. */
    virtual void startPairing(ThingPairingInfo *info);
    virtual void confirmPairing(ThingPairingInfo *info, const QString &username, const QString &secret);
    /*! Carries out an action on a thing that is set up. */
    virtual void executeAction(ThingActionInfo *info);
    /*! Browsing, for things with content, such as media libraries. */
    virtual void browseThing(BrowseResult *result);
    virtual void browserItem(BrowserItemResult *result);
    virtual void executeBrowserItem(BrowserActionInfo *info);
    virtual void executeBrowserItemAction(BrowserItemActionInfo *info);
    /*! Information about the service that the plugin uses, by name. Empty in the base class. */
    virtual QVariantMap serviceInformation() const;

    /*! The content of the plugin's own metadata document. */
    PluginMetadata metadata() const { return m_metadata; }

    /*! Called by the daemon before init(), never by a plugin. \a thingManager and \a hardwareManager must
        exist for as long as the plugin is used. The plugin's settings are kept in a file in
        \a storageFolder. */
    void initPlugin(const PluginMetadata &metadata, ThingManager *thingManager,
                    HardwareManager *hardwareManager, const QString &storageFolder);

    /*! The plugin's own settings, which are kept across restarts. Valid from init() on. The plugin owns the
        object, which stays the same. The daemon writes the settings to the disk soon after a change. */
    QSettings *pluginStorage() const { return m_storage; }

Q_SIGNALS:
    /*! The plugin has found things by itself. The daemon creates a thing for each descriptor and begins
        its set-up before the emission returns. It refuses a descriptor, with a warning, for the reasons that
        are given at ThingDescriptor, and for a thing of which a set-up is pending. */
    void autoThingsAppeared(const ThingDescriptors &thingDescriptors);
    /*! A thing that the plugin announced no longer exists. The daemon removes it and calls thingRemoved()
        before the emission returns. It refuses an unknown id with a warning. */
    void autoThingDisappeared(const ThingId &thingId);

protected:
    /*! The things of this plugin's classes, including those whose last set-up has failed. A new thing is one
        of them once its first set-up has succeeded. */
    Things myThings() const;
    /*! Null before init(). */
    HardwareManager *hardwareManager() const { return m_hardwareManager; }

private:
    PluginMetadata m_metadata;
    ThingManager *m_thingManager = nullptr;       // the daemon's
    HardwareManager *m_hardwareManager = nullptr; // the daemon's
    QSettings *m_storage = nullptr;               // our child, created by initPlugin()
};

Q_DECLARE_INTERFACE(IntegrationPlugin, "io.nymea.IntegrationPlugin")

#endif // INTEGRATIONPLUGIN_H
