// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "integrationpluginvela.h"

#include "chargelimits.h"
#include "credentials.h"
#include "livestates.h"
#include "livevalues.h"
#include "loggingcategory.h"
#include "networkhandler.h"
#include "plugininfo.h"

#include <QDateTime>
#include <QJsonArray>
#include <QTimer>

#include <hardwaremanager.h>
#include <plugintimer.h>

#include <chrono>

using namespace std::chrono_literals;

namespace {

constexpr std::chrono::seconds pollPeriod = 2s;
// Well within the 30 s after which the energy manager counts as silent.
constexpr std::chrono::milliseconds chargeLimitPeriod = 20s;

// The values in m_availableClassIds: whether a wallbox class is free or in use.
const QLatin1String availableMark("available");
const QLatin1String usedMark("used");

bool isGateway(const Thing *thing)
{
    return thing->thingClassId() == velaThingClassId;
}

QString infraIdOf(const Thing *thing)
{
    return thing->paramValue(QStringLiteral("infraID")).toString();
}

} // namespace

IntegrationPluginVela::IntegrationPluginVela() = default;

// The client and the plugin timer are released with the last thing, not here, because this object lives until
// the process ends.
IntegrationPluginVela::~IntegrationPluginVela() = default;

void IntegrationPluginVela::init()
{
    qCDebug(dcVela) << "Initialize VELA Plugin.";
    prepareParamList();
    initAvailableClassIds();
}

void IntegrationPluginVela::prepareParamList()
{
    for (const WallboxClass &wallbox : wallboxClasses)
        m_infraIdParamTypeIds.insert(wallbox.thingClassId, wallbox.infraIdParamTypeId);
    for (const WallboxClass &wallbox : wallboxClasses)
        m_maxAllowedCurrentParamTypeIds.insert(wallbox.thingClassId, wallbox.maxAllowedCurrentParamTypeId);
}

void IntegrationPluginVela::initAvailableClassIds()
{
    for (const WallboxClass &wallbox : wallboxClasses)
        m_availableClassIds.insert(wallbox.thingClassId, availableMark);
}

void IntegrationPluginVela::discoverThings(ThingDiscoveryInfo *info)
{
    qCDebug(dcVela) << "Starting discovery.";
    if (!m_networkHandler)
        m_networkHandler = new NetworkHandler();

    Credentials credentials = enteredCredentials(info->params());
    if (!completeCredentials(&credentials, pluginStorage(), info->thingClassId())) {
        qCWarning(dcVela) << "discoverThings() - Discovery params not entered.";
        info->finish(Thing::ThingErrorSetupFailed,
                     QStringLiteral("Not all parameters are known. Please enter the discovery parameters."));
        return;
    }

    m_networkHandler->setServerInfo(credentials.url, credentials.groupId, credentials.groupSecret);
    // The context is the job: once the platform has deleted it, late answers are ignored.
    connect(m_networkHandler, &NetworkHandler::infraInfoReceived, info,
            [this, info, credentials](const QJsonObject &evseIds) {
                // The client is shared, so answers to other requests arrive here too.
                if (!info->isFinished())
                    offerGateway(info, credentials, evseIds);
            });
    m_networkHandler->getConnectedInfra();
}

/*! Finishes a discovery: offers a backend that lists wallboxes, and stores its \a credentials. */
void IntegrationPluginVela::offerGateway(ThingDiscoveryInfo *info, const Credentials &credentials,
                                         const QJsonObject &evseIds)
{
    if (evseIds.isEmpty()) {
        qCWarning(dcVela) << "discoverThings() - OCPP Backend could not be reached.";
        info->finish(Thing::ThingErrorSetupFailed,
                     QStringLiteral("The OCPP Backend could not be reached!\nPlease check the entered URL."));
        return;
    }
    qCDebug(dcVela) << "discoverThings() - OCPP reached successfully.";
    writeCredentials(pluginStorage(), info->thingClassId(), credentials);

    ThingDescriptor descriptor(velaThingClassId, QStringLiteral("Tavensolis VELA"), credentials.url);
    const Things existing = myThings().filterByParam(velaThingBackendUrlParamTypeId, credentials.url);
    if (existing.size() == 1) {
        qCWarning(dcVela) << "This OCPP backend already exists";
        descriptor.setThingId(existing.first()->id());
    }
    ParamList params;
    params.append(Param(velaThingBackendUrlParamTypeId, credentials.url));
    descriptor.setParams(params);
    info->addThingDescriptor(descriptor);
    info->finish(Thing::ThingErrorNoError, QString());
}

void IntegrationPluginVela::setupThing(ThingSetupInfo *info)
{
    qCDebug(dcVela) << "Setup OCPP Plugin:" << info->thing();
    if (isGateway(info->thing()))
        setupGateway(info);
    else
        setupWallbox(info);
}

void IntegrationPluginVela::setupGateway(ThingSetupInfo *info)
{
    Thing *thing = info->thing();
    if (!m_networkHandler)
        m_networkHandler = new NetworkHandler();

    const Credentials credentials = storedCredentials(pluginStorage(), thing->thingClassId());
    m_networkHandler->setServerInfo(credentials.url, credentials.groupId, credentials.groupSecret);
    thing->setStateValue(QStringLiteral("connected"), true);
    // The context is the job: once the platform has deleted it, later answers are ignored.
    connect(m_networkHandler, &NetworkHandler::infraInfoReceived, info,
            [this, info, thing](const QJsonObject &evseIds) {
                if (info->isFinished())
                    return; // an earlier answer has finished it, but the platform has not deleted it yet
                qCDebug(dcVela) << evseIds;
                info->finish(Thing::ThingErrorNoError, QString());
                checkAutoCreate(thing->id(), evseIds);
                setupConnects(thing);
            });
    m_networkHandler->getConnectedInfra();
}

void IntegrationPluginVela::setupWallbox(ThingSetupInfo *info)
{
    qCDebug(dcVela) << "Should setup wallbox";
    Thing *thing = info->thing();
    thing->setStateValue(QStringLiteral("connected"), true);
    // Set the maximum first, because a platform may restrict the value to it.
    const uint maxAllowedCurrent = thing->paramValue(QStringLiteral("maxAllowedCurrent")).toUInt();
    thing->setStateMaxValue(QStringLiteral("maxChargingCurrent"), maxAllowedCurrent);
    thing->setStateValue(QStringLiteral("maxChargingCurrent"), maxAllowedCurrent);
    m_infraThings.insert(infraIdOf(thing), thing);
    info->finish(Thing::ThingErrorNoError, QString());
}

/*! Removes and creates wallbox things to match \a infraInfo, the group's wallboxes by infrastructure id. */
void IntegrationPluginVela::checkAutoCreate(const ThingId &parentId, const QJsonObject &infraInfo)
{
    removeVanishedWallboxes(infraInfo);
    qCDebug(dcVela) << "checkAutoCreate() called";
    for (auto it = infraInfo.constBegin(); it != infraInfo.constEnd(); ++it) {
        const int maxCurrent = it.value().toObject().value(QLatin1String("max_charging_current")).toInt();
        if (m_infraThings.contains(it.key()))
            continue;
        const ThingClassId freeClassId = m_availableClassIds.key(availableMark);
        if (freeClassId.isNull()) {
            qCWarning(dcVela) << "checkAutoCreate() - No thing for wallbox" << it.key() << "since all"
                              << wallboxClasses.size() << "wallbox classes are in use.";
            continue;
        }
        m_availableClassIds.insert(freeClassId, usedMark);
        autoCreateMeterThing(it.key(), freeClassId, parentId, maxCurrent);
    }
    emit checkAutoCreateFinished();
}

void IntegrationPluginVela::removeVanishedWallboxes(const QJsonObject &infraInfo)
{
    const QStringList listedIds = infraInfo.keys();
    // Iterate over a copy: the platform may remove a thing, and so its entry, before the emit returns.
    const QStringList infraIds = m_infraThings.keys();
    for (const QString &infraId : infraIds) {
        if (listedIds.contains(infraId))
            continue;
        const Thing *thing = m_infraThings.value(infraId);
        if (!thing)
            continue; // it was removed together with another one
        qCDebug(dcVela) << "Wallbox" << infraId << "is not connected anymore";
        qCDebug(dcVela) << "Freeing thing with classId" << thing->thingClassId();
        m_availableClassIds.insert(thing->thingClassId(), availableMark);
        emit autoThingDisappeared(thing->id());
    }
}

void IntegrationPluginVela::autoCreateMeterThing(const QString &infraId, const ThingClassId &thingClassId,
                                                 const ThingId &parentId, int maxCurrent)
{
    qCDebug(dcVela) << "Setup thing for" << infraId;
    ThingDescriptor descriptor(thingClassId);
    descriptor.setParentId(parentId);
    descriptor.setTitle(infraId);
    ParamList params;
    params.append(Param(m_infraIdParamTypeIds.value(thingClassId), infraId));
    params.append(Param(m_maxAllowedCurrentParamTypeIds.value(thingClassId), maxCurrent));
    descriptor.setParams(params);
    ThingDescriptors descriptors;
    descriptors.append(descriptor);
    emit autoThingsAppeared(descriptors);
}

void IntegrationPluginVela::setupConnects(Thing *thing)
{
    qCDebug(dcVela) << "OCPP: Setup nymea connections.";
    // A new gateway counts as a thing only after its set-up. If the answer has just removed the last of the
    // previous things, the client was deleted with it.
    if (!m_networkHandler) {
        qCWarning(dcVela)
            << "setupConnects() - Nothing is polled or sent for this gateway, since the last thing"
            << "was removed and the backend client with it. Set up the gateway again.";
        return;
    }
    // The context is the gateway: once it is deleted, the values are ignored.
    connect(m_networkHandler, &NetworkHandler::valuesReceived, thing,
            [this](const QJsonObject &receivedValues) { applyValues(receivedValues); });
}

void IntegrationPluginVela::applyValues(const QJsonObject &receivedValues)
{
    qCDebug(dcVela) << "setupConnects() - valuesReceived";
    // Absent wallboxes come first, so that no listener sees new values while an absent wallbox still counts as
    // connected. This is a copy, because a listener may remove a wallbox that is not connected.
    QHash<QString, Thing *> absentThings = m_infraThings;
    for (auto it = receivedValues.constBegin(); it != receivedValues.constEnd(); ++it)
        absentThings.remove(it.key());
    for (Thing *thing : qAsConst(absentThings))
        thing->setStateValue(QStringLiteral("connected"), false);
    for (auto it = receivedValues.constBegin(); it != receivedValues.constEnd(); ++it) {
        const QJsonObject record = it.value().toObject();
        qCDebug(dcVela) << "Values for device" << it.key();
        qCDebug(dcVela) << "Received values" << record;
        if (Thing *thing = m_infraThings.value(it.key()))
            writeLiveStates(thing, mapLiveValues(record));
    }
}

void IntegrationPluginVela::postSetupThing(Thing *thing)
{
    qCDebug(dcVela) << "Post Setup OCPP Plugin.";
    if (!isGateway(thing))
        return;
    if (!m_pluginTimer) {
        m_pluginTimer = hardwareManager()->pluginTimerManager()->registerTimer(int(pollPeriod.count()));
        connect(m_pluginTimer, &PluginTimer::timeout, this, &IntegrationPluginVela::updateCurrentValues);
        m_pluginTimer->start();
    }
    if (!m_chargeLimitTimer) {
        m_chargeLimitTimer = new QTimer(this);
        connect(m_chargeLimitTimer, &QTimer::timeout, this, &IntegrationPluginVela::renewChargeLimits);
    }
    m_chargeLimitTimer->setInterval(chargeLimitPeriod);
    m_chargeLimitTimer->start();
}

/*! One poll: sends the waiting limits, then requests the values of all wallboxes. */
void IntegrationPluginVela::updateCurrentValues()
{
    if (!m_networkHandler)
        return; // see setupConnects(); values arrive again only after another set-up of a gateway
    if (!m_chargeLimits.isEmpty()) {
        qCDebug(dcVela) << "Sending charge limits" << m_chargeLimits;
        m_networkHandler->setProfileChargePowerLimit(m_chargeLimits);
        m_chargeLimits = QJsonObject();
    }
    qCDebug(dcVela) << "Update the values for all connected wallboxes.";
    m_networkHandler->getEvseValues(QJsonArray::fromStringList(m_infraThings.keys()));
}

/*! Queues all limits again, so that the backend keeps them in force, unless the energy manager, Holvex, is
    silent. */
void IntegrationPluginVela::renewChargeLimits()
{
    qCDebug(dcVela) << "postSetupThing() - m_chargeLimitTimer timeout.";
    if (isSilent(m_lastActionTime, QDateTime::currentSecsSinceEpoch())) {
        qCDebug(dcVela) << "Have not heard from Holvex for more than 30s; do not send any signals";
        return;
    }
    for (auto it = m_infraThings.constBegin(); it != m_infraThings.constEnd(); ++it) {
        qCDebug(dcVela) << "postSetupThing() - Set charge power limit again." << it.key();
        QJsonValue ampere = 0;
        if (it.value()->stateValue(QStringLiteral("power")).toBool())
            ampere = it.value()->stateValue(QStringLiteral("maxChargingCurrent")).toDouble();
        queueChargeLimit(it.key(), ampere);
    }
}

void IntegrationPluginVela::executeAction(ThingActionInfo *info)
{
    qCDebug(dcVela) << "Executing action for" << info->thing();
    // The action that sets a state has the same id as the state.
    const Thing *thing = info->thing();
    const QString maxChargingCurrentId =
        thing->state(QStringLiteral("maxChargingCurrent")).stateTypeId().toString();
    const QString powerId = thing->state(QStringLiteral("power")).stateTypeId().toString();
    // Every action shows that the energy manager is active, even if the action has no effect.
    m_lastActionTime = QDateTime::currentSecsSinceEpoch();

    const QString actionTypeId = info->action().actionTypeId().toString();
    if (actionTypeId == maxChargingCurrentId)
        setMaxChargingCurrent(info);
    else if (actionTypeId == powerId)
        setChargingEnabled(info);
}

void IntegrationPluginVela::setMaxChargingCurrent(ThingActionInfo *info)
{
    qCDebug(dcVela) << "executeAction() - Set max chargeCurrent";
    Thing *thing = info->thing();
    const double previous = thing->stateValue(QStringLiteral("maxChargingCurrent")).toDouble();
    const double wanted = info->action().params().value(0).value().toDouble();
    if (wanted != previous) {
        thing->setStateValue(QStringLiteral("maxChargingCurrent"), wanted);
        thing->setStateValue(QStringLiteral("power"), true);
        queueChargeLimit(infraIdOf(thing), wanted);
    }
    info->finish(Thing::ThingErrorNoError, QString());
}

void IntegrationPluginVela::setChargingEnabled(ThingActionInfo *info)
{
    qCDebug(dcVela) << "executeAction() - Charging enabled action";
    Thing *thing = info->thing();
    const bool wanted = info->action().params().value(0).value().toBool();
    const bool previous = thing->stateValue(QStringLiteral("power")).toBool();
    if (wanted && !previous) {
        // The next renewal of the limits sends the current. It takes place because of this action.
        thing->setStateValue(QStringLiteral("power"), true);
    } else if (!wanted && previous) {
        qCDebug(dcVela) << "executeAction() - "
                        << "Disable charging by setting charge current to 0";
        queueChargeLimit(infraIdOf(thing), 0);
        thing->setStateValue(QStringLiteral("power"), false);
    }
    info->finish(Thing::ThingErrorNoError, QString());
}

void IntegrationPluginVela::queueChargeLimit(const QString &infraId, const QJsonValue &ampere)
{
    m_chargeLimits.insert(infraId, chargeLimit(ampere));
}

void IntegrationPluginVela::thingRemoved(Thing *thing)
{
    qCDebug(dcVela) << "Vela Plugin removed";
    if (!m_infraThings.isEmpty())
        m_infraThings.remove(infraIdOf(thing));
    if (myThings().isEmpty() && m_chargeLimitTimer) {
        qCDebug(dcVela) << "thingRemoved() - Stopping chargeLimit Timer.";
        m_chargeLimitTimer->stop();
        delete m_chargeLimitTimer;
        m_chargeLimitTimer = nullptr;
    }
    if (myThings().isEmpty() && m_pluginTimer) {
        qCDebug(dcVela) << "thingRemoved() - Stopping update timer.";
        hardwareManager()->pluginTimerManager()->unregisterTimer(m_pluginTimer);
        m_pluginTimer = nullptr;
    }
    if (myThings().isEmpty() && m_networkHandler) {
        qCDebug(dcVela) << "thingRemoved() - Deleting networkHandler.";
        delete m_networkHandler; // this ends outstanding requests; their callbacks never run
        m_networkHandler = nullptr;
    }
}
