// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "pluginloader.h"

#include <libnymea.h>

#include <QFileInfo>
#include <QLibrary>
#include <QPluginLoader>

namespace {

tl::unexpected<QString> failure(const QString &file, const QString &reason)
{
    return tl::unexpected(QStringLiteral("Cannot load plugin %1: %2").arg(file, reason));
}

/*! The API version that \a file was built for; empty if it does not say. */
QString apiVersion(const QString &file)
{
    using VersionFunction = QString (*)();
    const auto version = reinterpret_cast<VersionFunction>(QLibrary::resolve(file, "libnymea_api_version"));
    return version ? version() : QString();
}

} // namespace

tl::expected<LoadedPlugin, QString> loadPlugin(const QString &file)
{
    // Absolute: QPluginLoader looks for a relative path below the library paths.
    const QString path = QFileInfo(file).absoluteFilePath();
    if (!QFileInfo(path).isFile())
        return failure(path, QStringLiteral("there is no such file."));

    QPluginLoader loader(path);
    const QString interface = loader.metaData().value(QLatin1String("IID")).toString();
    const QString expected = QLatin1String(qobject_interface_iid<IntegrationPlugin *>());
    if (interface.isEmpty())
        return failure(path, QStringLiteral("it is not a Qt plugin."));
    if (interface != expected)
        return failure(path, QStringLiteral("its interface is %1, not %2.").arg(interface, expected));
    if (!loader.load())
        return failure(path, loader.errorString());
    const QString version = apiVersion(path);
    if (version.isEmpty())
        return failure(path, QStringLiteral("it does not say for which API version it is built."));
    if (version != QLatin1String(LIBNYMEA_API_VERSION))
        return failure(path,
                       QStringLiteral("it is built for API version %1, not %2.")
                           .arg(version, QLatin1String(LIBNYMEA_API_VERSION)));

    const PluginMetadata metadata(loader.metaData().value(QLatin1String("MetaData")).toObject());
    if (!metadata.isValid())
        return failure(path,
                       QStringLiteral("its metadata is unusable: %1.")
                           .arg(metadata.validationErrors().join(QLatin1String("; "))));
    std::unique_ptr<IntegrationPlugin> plugin(qobject_cast<IntegrationPlugin *>(loader.instance()));
    if (!plugin)
        return failure(path, QStringLiteral("it holds no integration plugin."));
    return LoadedPlugin{std::move(plugin), metadata};
}
