// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef INTEGRATIONPLUGINVELA_H
#define INTEGRATIONPLUGINVELA_H

#include <QHash>
#include <QJsonObject>

#include <integrations/integrationplugin.h>

class NetworkHandler;
class PluginTimer;
class QTimer;
struct Credentials;

/*! Connects nymea with a group of wallboxes at an OCPP backend: one gateway thing, a wallbox thing for each
    wallbox that the backend lists, live values every 2 s, and actions that become charge limits.

    The functions are in the order in which the daemon calls them, all on its main thread. The backend client
    and both timers are shared by all gateways. They are created on first use and released together when the
    last thing is removed. */
class IntegrationPluginVela : public IntegrationPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "io.nymea.IntegrationPlugin" FILE "integrationpluginvela.json")
    Q_INTERFACES(IntegrationPlugin)

public:
    IntegrationPluginVela();
    ~IntegrationPluginVela() override;

    void init() override;
    void discoverThings(ThingDiscoveryInfo *info) override;
    void setupThing(ThingSetupInfo *info) override;
    void postSetupThing(Thing *thing) override;
    void executeAction(ThingActionInfo *info) override;
    void thingRemoved(Thing *thing) override;

Q_SIGNALS:
    /*! Every new wallbox of a group has been announced. */
    void checkAutoCreateFinished();

    /*! Part of the interface for listeners, but never emitted. */
    void missingBootNotification();

private:
    void prepareParamList();
    void initAvailableClassIds();

    void offerGateway(ThingDiscoveryInfo *info, const Credentials &credentials, const QJsonObject &evseIds);

    void setupGateway(ThingSetupInfo *info);
    void setupWallbox(ThingSetupInfo *info);
    void checkAutoCreate(const ThingId &parentId, const QJsonObject &infraInfo);
    void removeVanishedWallboxes(const QJsonObject &infraInfo);
    void autoCreateMeterThing(const QString &infraId, const ThingClassId &thingClassId,
                              const ThingId &parentId, int maxCurrent);
    void setupConnects(Thing *thing);
    void applyValues(const QJsonObject &receivedValues);

    void updateCurrentValues();
    void renewChargeLimits();

    void setMaxChargingCurrent(ThingActionInfo *info);
    void setChargingEnabled(ThingActionInfo *info);
    void queueChargeLimit(const QString &infraId, const QJsonValue &ampere);

    PluginTimer *m_pluginTimer = nullptr;       // owned by the platform; returned with the last thing
    QTimer *m_chargeLimitTimer = nullptr;       // child of this object; deleted with the last thing
    qint64 m_lastActionTime = 0;                // s since the Unix epoch; 0 before the first action
    NetworkHandler *m_networkHandler = nullptr; // owned by this object; deleted with the last thing
    QHash<ThingClassId, ParamTypeId> m_infraIdParamTypeIds;           // of each wallbox class
    QHash<ThingClassId, ParamTypeId> m_maxAllowedCurrentParamTypeIds; // of each wallbox class
    QHash<ThingClassId, QString> m_availableClassIds; // wallbox class to "available" or "used"
    QHash<QString, Thing *> m_infraThings;            // by infrastructure id; the things are the platform's
    QJsonObject m_chargeLimits;                       // waiting for the next poll, by infrastructure id
};

#endif // INTEGRATIONPLUGINVELA_H
