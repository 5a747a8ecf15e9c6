// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "hardwaremanager.h"

#include "plugintimer.h"

HardwareManager::HardwareManager(QObject *parent)
    : QObject(parent)
    , m_pluginTimerManager(new PluginTimerManager(this))
{
}

PluginTimerManager *HardwareManager::pluginTimerManager() const
{
    return m_pluginTimerManager;
}
