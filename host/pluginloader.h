// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef PLUGINLOADER_H
#define PLUGINLOADER_H

#include <integrations/pluginmetadata.h>

class IntegrationPlugin;

/*! A plugin from its file, or the sentence that says why there is none. */
struct LoadedPlugin
{
    IntegrationPlugin *plugin = nullptr; //!< the caller's; deleted, a later load makes a new one
    PluginMetadata metadata;
    QString error; //!< names the file
};

/*! Loads \a file, after checking its interface id, its API version and its metadata. The library stays in
    the process: unloading it would take code away from objects that may still need it. */
LoadedPlugin loadPlugin(const QString &file);

#endif // PLUGINLOADER_H
