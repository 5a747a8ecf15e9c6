// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef PLUGINLOADER_H
#define PLUGINLOADER_H

#include <integrations/integrationplugin.h>

#include <memory>
#include <tl/expected.hpp>

struct LoadedPlugin
{
    std::unique_ptr<IntegrationPlugin> plugin; //!< once it is deleted, a later load makes a new one
    PluginMetadata metadata;
};

/*! Loads \a file, after checking its interface id, its API version and its metadata. The library stays in
    the process: unloading it would take code away from objects that may still need it. The error is a sentence
    that names the file. */
tl::expected<LoadedPlugin, QString> loadPlugin(const QString &file);

#endif // PLUGINLOADER_H
