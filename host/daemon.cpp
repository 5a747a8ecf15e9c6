// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "daemon.h"

#include "hostlogging.h"
#include "pluginloader.h"
#include "values.h"

#include <QCoreApplication>
#include <QEvent>
#include <QFile>
#include <QHash>
#include <QSettings>

#include <algorithm>
#include <sys/stat.h>
#include <utility>

using namespace std::chrono_literals;

namespace {

constexpr qint64 settingsSpace = 16384; // bytes; a new file with the plugin's settings, and its lock

/*! Warns of a new \a error in storing something, and writes \a success to the log when it is over. */
void logStoring(const QString &error, QString *lastError, const char *success)
{
    if (!error.isEmpty() && error != *lastError)
        qCWarning(dcHost).noquote() << error << "The host keeps trying.";
    else if (error.isEmpty() && !lastError->isEmpty())
        qCInfo(dcHost) << success;
    *lastError = error;
}

/*! The number of the file of \a settings in its file system; 0 if there is none. */
ino_t fileNumber(const QSettings &settings)
{
    struct stat file;
    return ::stat(QFile::encodeName(settings.fileName()).constData(), &file) == 0 ? file.st_ino : 0;
}

template <typename Job> Job *refused(Job *job, Thing::ThingError error, const QString &message)
{
    job->finish(error, message);
    return job;
}

} // namespace

Daemon::Daemon(const DaemonOptions &options)
    : m_options(options)
    , m_folder(options.storageFolder)
    , m_store(m_folder.path())
{
    m_storeTimer.setSingleShot(true);
    m_storeTimer.setInterval(2s);
    connect(&m_storeTimer, &QTimer::timeout, this, &Daemon::commit);
}

Daemon::~Daemon()
{
    if (m_plugin)
        commit();
    // Jobs and things go before the plugin: what it has connected to them must not outlive it.
    qDeleteAll(findChildren<ThingJob *>());
    qDeleteAll(allThings());
}

QString Daemon::load()
{
    QString folderError = m_folder.claim();
    if (!folderError.isEmpty())
        return folderError;
    auto loaded = loadPlugin(m_options.pluginFile);
    if (!loaded)
        return loaded.error();
    m_metadata = loaded->metadata;
    QString storeError = m_store.read(m_metadata.thingClasses(), this, &m_things);
    if (!storeError.isEmpty())
        return storeError;
    loaded->plugin->initPlugin(m_metadata, this, &m_hardwareManager, m_folder.path());
    const QSettings *settings = loaded->plugin->pluginStorage();
    settings->allKeys(); // parses the whole file, which sets the status
    if (settings->status() != QSettings::NoError)
        return QStringLiteral("The plugin's settings in %1 cannot be used.").arg(settings->fileName());

    m_plugin = std::move(loaded->plugin);
    m_plugin->pluginStorage()->installEventFilter(this);
    connect(plugin(), &IntegrationPlugin::autoThingsAppeared, this, &Daemon::onAutoThingsAppeared);
    connect(plugin(), &IntegrationPlugin::autoThingDisappeared, this, &Daemon::onAutoThingDisappeared);
    m_plugin->init();
    restoreThings();
    m_plugin->startMonitoringAutoThings();
    return {};
}

void Daemon::restoreThings()
{
    for (Thing *thing : qAsConst(m_things))
        watch(thing);
    // A copy: the plugin may answer a set-up with new things or with some that have disappeared.
    const Things things = m_things;
    for (Thing *thing : things) {
        if (m_things.contains(thing))
            setup(thing);
    }
}

ThingDiscoveryInfo *Daemon::discover(const ThingClassId &thingClassId, const ParamList &params)
{
    const ThingClass thingClass = thingClasses().findById(thingClassId);
    const auto checked = checkParams(params, thingClass.discoveryParamTypes);
    auto *info = new ThingDiscoveryInfo(thingClassId, checked.value_or(params), m_options.jobTimeout, this);
    if (thingClass.id.isNull())
        return refused(info, Thing::ThingErrorThingClassNotFound, tr("The plugin has no such thing class."));
    if (!thingClass.createMethods.contains(QLatin1String("discovery")))
        return refused(info, Thing::ThingErrorCreationMethodNotSupported,
                       tr("Things of class %1 are not found by discovery.").arg(thingClass.name));
    if (!checked)
        return refused(info, Thing::ThingErrorInvalidParameter, checked.error());
    m_plugin->discoverThings(info);
    return info;
}

ThingSetupInfo *Daemon::add(const ThingDescriptor &descriptor)
{
    const auto refuse = [this](Thing::ThingError error, const QString &message) {
        auto *info = new ThingSetupInfo(nullptr, 0ms);
        info->setParent(this);
        return refused(info, error, message);
    };
    const ThingClass thingClass = thingClasses().findById(descriptor.thingClassId());
    if (thingClass.id.isNull())
        return refuse(Thing::ThingErrorThingClassNotFound, tr("The plugin has no such thing class."));
    const auto params = checkParams(descriptor.params(), thingClass.paramTypes);
    if (!params)
        return refuse(Thing::ThingErrorInvalidParameter, params.error());
    if (!descriptor.parentId().isNull() && !allThings().findById(descriptor.parentId()))
        return refuse(Thing::ThingErrorThingNotFound, tr("The parent thing does not exist."));
    const bool isNew = descriptor.thingId().isNull();
    Thing *thing = isNew ? create(descriptor, thingClass) : m_things.findById(descriptor.thingId());
    if (!thing || thing->thingClassId() != thingClass.id)
        return refuse(Thing::ThingErrorThingNotFound, tr("The thing to be reconfigured does not exist."));
    // With a set-up pending, the parameters stay as that set-up has read them.
    if (thing->setupStatus() != Thing::ThingSetupStatusInProgress) {
        for (const Param &param : *params)
            thing->setParamValue(param.paramTypeId(), param.value());
        m_unsaved |= !isNew;
    }
    return setup(thing);
}

Thing *Daemon::create(const ThingDescriptor &descriptor, const ThingClass &thingClass)
{
    auto *thing = new Thing(thingClass, ThingId(), this);
    if (!descriptor.title().isEmpty())
        thing->setName(descriptor.title());
    thing->setParentId(descriptor.parentId());
    m_newThings.append(thing);
    return thing;
}

ThingSetupInfo *Daemon::setup(Thing *thing)
{
    if (thing->setupStatus() == Thing::ThingSetupStatusInProgress)
        return refused(new ThingSetupInfo(thing, 0ms), Thing::ThingErrorThingInUse,
                       tr("A set-up of %1 is pending; wait until it has finished.").arg(thing->name()));
    thing->setSetupStatus(Thing::ThingSetupStatusInProgress);
    auto *info = new ThingSetupInfo(thing, m_options.jobTimeout);
    connect(info, &ThingJob::finished, this, [this, info] { onSetupFinished(info); });
    m_plugin->setupThing(info);
    return info;
}

void Daemon::onSetupFinished(ThingSetupInfo *info)
{
    Thing *thing = info->thing();
    if (!allThings().contains(thing))
        return; // removed meanwhile
    const bool succeeded = info->status() == Thing::ThingErrorNoError;
    thing->setSetupStatus(succeeded ? Thing::ThingSetupStatusComplete : Thing::ThingSetupStatusFailed,
                          info->status(), info->displayMessage());
    const bool isNew = m_newThings.contains(thing);
    if (isNew && succeeded)
        keep(thing);
    else if (isNew)
        discard(thing);

    commit();
    emit setupFinished(info);
    if (succeeded && m_things.contains(thing))
        m_plugin->postSetupThing(thing);
}

void Daemon::keep(Thing *thing)
{
    m_newThings.removeOne(thing);
    m_things.append(thing);
    watch(thing);
    m_unsaved = true;
    commit();
    emit thingAdded(thing);
}

void Daemon::discard(Thing *thing)
{
    qCWarning(dcHost) << thing << "is not kept: its set-up failed with" << thing->setupError()
                      << thing->setupDisplayMessage();
    const Things children = allThings().filterByParentId(thing->id());
    for (Thing *child : children)
        remove(child);
    m_newThings.removeOne(thing);
    thing->deleteLater();
}

void Daemon::watch(Thing *thing)
{
    QHash<StateTypeId, QVariant> values; // seen last: a thing also notifies when only a limit has moved
    const States states = thing->states();
    for (const State &state : states)
        values.insert(state.stateTypeId(), state.value());
    connect(thing, &Thing::stateValueChanged, this,
            [this, thing, values](const StateTypeId &stateTypeId, const QVariant &value) mutable {
                if (std::exchange(values[stateTypeId], value) == value)
                    return;
                m_changes.append({thing, stateTypeId, value});
                // Queued: what the plugin changes in one event is stored and reported together.
                if (m_changes.size() == 1)
                    QMetaObject::invokeMethod(this, &Daemon::commit, Qt::QueuedConnection);
            });
}

void Daemon::forget(Thing *thing)
{
    disconnect(thing, &Thing::stateValueChanged, this, nullptr);
    const auto isOfThing = [thing](const StateChange &change) { return change.thing == thing; };
    m_changes.erase(std::remove_if(m_changes.begin(), m_changes.end(), isOfThing), m_changes.end());
}

ThingActionInfo *Daemon::execute(Thing *thing, const QString &stateName, const QVariant &value)
{
    const ActionType type = thing->thingClass().actionTypes.findByName(stateName);
    ParamType rule = type.paramTypes.value(0);
    // The metadata's limits are only the first ones; the plugin may have changed them.
    rule.minValue = thing->state(stateName).minValue();
    rule.maxValue = thing->state(stateName).maxValue();
    const auto checked = checkValue(value, rule);
    const ParamList params(QList<Param>{Param(rule.id, checked.value_or(value))});
    auto *info = new ThingActionInfo(thing, Action(type.id, thing->id(), params), m_options.jobTimeout);
    if (type.id.isNull())
        return refused(info, Thing::ThingErrorActionTypeNotFound,
                       tr("%1 has no such action.").arg(thing->name()));
    if (!checked)
        return refused(info, Thing::ThingErrorInvalidParameter,
                       tr("Parameter %1 %2.").arg(stateName, checked.error()));
    if (thing->setupStatus() != Thing::ThingSetupStatusComplete)
        return refused(info, Thing::ThingErrorSetupFailed, tr("%1 is not set up.").arg(thing->name()));
    m_plugin->executeAction(info);
    emit actionExecuted(thing);
    return info;
}

void Daemon::remove(Thing *thing)
{
    const Things children = allThings().filterByParentId(thing->id());
    for (Thing *child : children)
        remove(child);
    commit();
    const bool wasKept = m_things.removeOne(thing);
    if (!wasKept && !m_newThings.removeOne(thing))
        return; // the plugin has had it removed when it was told about a child

    forget(thing);
    m_plugin->thingRemoved(thing);
    const QList<ThingJob *> jobs = thing->findChildren<ThingJob *>();
    for (ThingJob *job : jobs) {
        if (!job->isFinished())
            job->finish(Thing::ThingErrorThingNotFound, tr("%1 has been removed.").arg(thing->name()));
    }
    m_unsaved |= wasKept;
    commit();
    if (wasKept)
        emit thingRemoved(thing);
    thing->deleteLater();
}

void Daemon::onAutoThingsAppeared(const ThingDescriptors &descriptors)
{
    for (const ThingDescriptor &descriptor : descriptors) {
        const ThingSetupInfo *info = add(descriptor);
        if (!info->thing() || info->status() == Thing::ThingErrorThingInUse)
            qCWarning(dcHost).noquote()
                << "The announced thing" << descriptor.title() << "is refused:" << info->displayMessage();
    }
}

void Daemon::onAutoThingDisappeared(const ThingId &thingId)
{
    if (Thing *thing = allThings().findById(thingId))
        remove(thing);
    else
        qCWarning(dcHost) << "Unknown thing reported as gone:" << thingId;
}

bool Daemon::commit()
{
    const QVector<StateChange> changes = std::exchange(m_changes, {});
    m_unsaved |= std::any_of(changes.cbegin(), changes.cend(), [](const StateChange &change) {
        return change.thing->thingClass().stateTypes.findById(change.stateTypeId).cached;
    });
    store();
    m_reports += changes;
    // One by one from the front, because a receiver of the signal may cause further reports.
    while (!m_reports.isEmpty()) {
        const StateChange change = m_reports.takeFirst();
        emit stateChanged(change.thing, change.stateTypeId, change.value);
    }
    return !m_unsaved && !m_settingsChanged;
}

/*! Takes note that the plugin's settings have changed, and keeps it from writing by itself: see
    storeSettings(). */
bool Daemon::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::UpdateRequest)
        return ThingManager::eventFilter(watched, event);
    m_settingsChanged = true;
    QTimer::singleShot(0, this, &Daemon::commit);
    return true;
}

void Daemon::store()
{
    storeSettings();
    if (m_unsaved) {
        const QString error = m_store.write(m_things);
        m_unsaved = !error.isEmpty();
        logStoring(error, &m_storeError, "The things are stored again.");
    }
    if (m_settingsChanged || m_unsaved)
        m_storeTimer.start();
}

void Daemon::storeSettings()
{
    QSettings *settings = m_plugin->pluginStorage();
    QCoreApplication::sendPostedEvents(settings, QEvent::UpdateRequest);
    if (!m_settingsChanged)
        return;
    // QSettings in Qt 5 does not notice a full disk when it writes its new file, and replaces the old file by
    // an empty one. So it may write only where there is free space. Quotas and limits of the process are not
    // considered.
    const ino_t oldFile = fileNumber(*settings);
    const bool hasSpace = m_folder.freeSpace() >= settingsSpace;
    if (hasSpace)
        settings->sync();
    // QSettings does not forget an error. A new file shows that this attempt has succeeded.
    const bool isStored =
        hasSpace && (settings->status() == QSettings::NoError || fileNumber(*settings) != oldFile);
    m_settingsChanged = !isStored;
    const QString error = QStringLiteral("Cannot write the plugin's settings to %1; the disk may be full.");
    logStoring(isStored ? QString() : error.arg(settings->fileName()), &m_settingsError,
               "The plugin's settings are written again.");
}
