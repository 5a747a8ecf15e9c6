// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "pluginloader.h"

#include <integrations/integrationplugin.h>
#include <libnymea.h>

#include <QFileInfo>
#include <QLibrary>
#include <QPluginLoader>

namespace {

LoadedPlugin failure(const QString &file, const QString &reason)
{
    LoadedPlugin result;
    result.error = QStringLiteral("Cannot load plugin %1: %2").arg(file, reason);
    return result;
}

/*! The API version that \a file was built for; empty where it does not say. */
QString apiVersion(const QString &file)
{
    using VersionFunction = QString (*)();
    const auto version = reinterpret_cast<VersionFunction>(QLibrary::resolve(file, "libnymea_api_version"));
    return version ? version() : QString();
}

} // namespace

LoadedPlugin loadPlugin(const QString &file)
{
    // Absolute: QPluginLoader looks for a relative path below the library paths.
    const QString path = QFileInfo(file).absoluteFilePath();
    if (!QFileInfo(path).isFile())
        return failure(path, QStringLiteral("there is no such file."));

    QPluginLoader loader(path);
    const QString interfaceId = loader.metaData().value(QLatin1String("IID")).toString();
    if (interfaceId.isEmpty())
        return failure(path, QStringLiteral("it is not a Qt plugin."));
    if (interfaceId != QLatin1String(qobject_interface_iid<IntegrationPlugin *>()))
        return failure(path,
                       QStringLiteral("its interface is %1, not %2.")
                           .arg(interfaceId, QLatin1String(qobject_interface_iid<IntegrationPlugin *>())));
    if (!loader.load())
        return failure(path, loader.errorString());
    const QString version = apiVersion(path);
    if (version != QLatin1String(LIBNYMEA_API_VERSION))
        return failure(path,
                       QStringLiteral("it is built for API version %1, not %2.")
                           .arg(version.isEmpty() ? QStringLiteral("unknown") : version,
                                QLatin1String(LIBNYMEA_API_VERSION)));

    LoadedPlugin result;
    result.metadata = PluginMetadata(loader.metaData().value(QLatin1String("MetaData")).toObject());
    if (!result.metadata.isValid())
        return failure(path,
                       QStringLiteral("its metadata is unusable: %1.")
                           .arg(result.metadata.validationErrors().join(QLatin1String("; "))));
    result.plugin = qobject_cast<IntegrationPlugin *>(loader.instance());
    return result.plugin ? result : failure(path, QStringLiteral("it holds no integration plugin."));
}
