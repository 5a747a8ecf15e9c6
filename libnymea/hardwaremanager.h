// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef HARDWAREMANAGER_H
#define HARDWAREMANAGER_H

#include "libnymea.h"

#include <QObject>

class PluginTimerManager;

/*! The daemon's shared resources, as far as this stand-in has them: the timers. Owned by the daemon, which
    keeps it for as long as a plugin is loaded. A plugin reaches it through
    IntegrationPlugin::hardwareManager(). */
class LIBNYMEA_EXPORT HardwareManager : public QObject
{
    Q_OBJECT
public:
    explicit HardwareManager(QObject *parent = nullptr);

    /*! Never null, and owned by this object. */
    PluginTimerManager *pluginTimerManager() const;

private:
    PluginTimerManager *m_pluginTimerManager; // our child
};

#endif // HARDWAREMANAGER_H
