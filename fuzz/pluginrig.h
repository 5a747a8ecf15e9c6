// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef PLUGINRIG_H
#define PLUGINRIG_H

#include "integrationpluginvela.h"

#include <QTemporaryDir>

/*! The plugin on a test bench: does for it what a daemon does, at once and in memory, with one gateway.
    The backend's replies come from the caller. */
class PluginRig : public ThingManager
{
public:
    PluginRig();
    ~PluginRig() override;
    Q_DISABLE_COPY(PluginRig)

    Things configuredThings() const override { return m_things; }
    Things wallboxes() const;
    /*! Announced wallboxes that were not taken since begin(): their parameters break the class's rules. */
    int refusals() const { return m_refusals; }

    /*! Starts a new life: the plugin as after init(), with nothing but a gateway that is not set up. */
    void begin();
    /*! Sets the gateway up; \a groupInfo is the backend's reply. */
    void setupGateway(const QByteArray &groupInfo);
    /*! One period of the plugin's timer passes; \a values is the reply to the poll. */
    void poll(const QByteArray &values);

private:
    Thing *add(const ThingClassId &thingClassId, const ThingId &parentId, const ParamList &params);
    void setup(Thing *thing, const QByteArray &groupInfo = QByteArray());
    void remove(Thing *thing);
    void addWallbox(const ThingDescriptor &descriptor);

    QTemporaryDir m_storage;
    HardwareManager m_hardwareManager;
    IntegrationPluginVela m_plugin;
    Things m_things; // ours; the gateway first
    int m_refusals = 0;
};

#endif // PLUGINRIG_H
