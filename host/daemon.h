// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef DAEMON_H
#define DAEMON_H

#include "storagefolder.h"
#include "thingstore.h"

#include <integrations/integrationplugin.h>

#include <QDir>
#include <QTimer>

#include <chrono>
#include <memory>

/*! What a Daemon works with. */
struct DaemonOptions
{
    QString pluginFile;
    QString storageFolder;
    std::chrono::milliseconds jobTimeout = std::chrono::seconds(30); //!< 0: jobs may wait for ever
};

/*! Acts as the daemon for one plugin: owns the things and the storage, and calls the plugin.

    Jobs: each operation returns a job that finishes later, from the event loop, with the plugin's answer,
    with ThingErrorTimeout after the time limit, or, where the request is refused without asking the plugin,
    with an error and a message that says what would be right. A job deletes itself after finished().

    What a signal or a job's finished() reports has been stored before, unless the disk is full. State changes
    are reported together once a turn of the event loop, and always before any report that follows them. */
class Daemon : public ThingManager
{
    Q_OBJECT
public:
    explicit Daemon(const DaemonOptions &options);
    ~Daemon() override;

    /*! Claims the storage, loads and initialises the plugin and starts the set-up of the stored things,
        parents first. Call it once, before everything else. Returns an empty text, or the sentence that says
        why there is no plugin to work with. */
    [[nodiscard]] QString load();

    /*! The loaded plugin, ours; null before load(). */
    IntegrationPlugin *plugin() const { return m_plugin.get(); }
    ThingClasses thingClasses() const { return m_metadata.thingClasses(); }
    /*! The path of the file \a name in the storage folder. */
    QString storageFile(const QString &name) const { return QDir(m_folder.path()).filePath(name); }
    HardwareManager *hardwareManager() { return &m_hardwareManager; }

    Things configuredThings() const override { return m_things; }

    /*! Asks the plugin for things of the class that fit \a params, by discovery parameter type. */
    ThingDiscoveryInfo *discover(const ThingClassId &thingClassId, const ParamList &params);
    /*! Creates and sets up what \a descriptor describes, or gives its parameters to the thing that it stands
        for and sets that up again. The job's thing() is null when the request is refused. */
    ThingSetupInfo *add(const ThingDescriptor &descriptor);
    /*! Runs the set-up of \a thing again, unless one is pending. */
    ThingSetupInfo *setup(Thing *thing);
    /*! Executes the action that sets the writable state \a stateName of \a thing, which must be set up. The
        value is checked against the state's type and the limits in force for it. */
    ThingActionInfo *execute(Thing *thing, const QString &stateName, const QVariant &value);
    /*! Removes \a thing, its children first; their pending jobs finish with ThingErrorThingNotFound. The
        objects are deleted later. */
    void remove(Thing *thing);

    /*! Stores what has changed, then reports the state changes so far. Call it before reporting something
        else, to keep the order. Returns whether all is stored. What could not be stored is reported
        nevertheless, with a warning, and tried again from the event loop. */
    bool commit();

Q_SIGNALS:
    /*! A new thing is kept: its first set-up has finished without error. */
    void thingAdded(Thing *thing);
    /*! \a thing has been removed; its object is deleted when the event loop runs again. */
    void thingRemoved(Thing *thing);
    /*! A set-up has ended, also one that failed. */
    void setupFinished(ThingSetupInfo *info);
    /*! The plugin has been asked to execute an action of \a thing. */
    void actionExecuted(Thing *thing);
    void stateChanged(Thing *thing, const StateTypeId &stateTypeId, const QVariant &value);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    struct StateChange
    {
        Thing *thing;
        StateTypeId stateTypeId;
        QVariant value;
    };

    void restoreThings();
    void onAutoThingsAppeared(const ThingDescriptors &descriptors);
    void onAutoThingDisappeared(const ThingId &thingId);

    Thing *create(const ThingDescriptor &descriptor, const ThingClass &thingClass);
    void onSetupFinished(ThingSetupInfo *info);
    void keep(Thing *thing);
    void discard(Thing *thing);
    void watch(Thing *thing);
    void forget(Thing *thing);
    void store();
    void storeSettings();

    Things allThings() const { return m_things + m_newThings; }

    const DaemonOptions m_options;
    StorageFolder m_folder;
    ThingStore m_store;
    HardwareManager m_hardwareManager;
    PluginMetadata m_metadata;
    std::unique_ptr<IntegrationPlugin> m_plugin;

    Things m_things;                // kept; our children
    Things m_newThings;             // first set-up pending; our children
    QVector<StateChange> m_changes; // of kept things, in order
    QVector<StateChange> m_reports; // stored, about to be reported
    bool m_unsaved = false;         // m_things holds what m_store does not
    QString m_storeError;           // of the last attempt to store them
    bool m_settingsChanged = false; // the plugin's settings differ from their file
    QString m_settingsError;        // of the last attempt to write it
    QTimer m_storeTimer;            // runs out when the next attempt is due; only after a failure
};

#endif // DAEMON_H
