// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef SITE_H
#define SITE_H

#include <QEventLoop>
#include <QMetaMethod>
#include <QPluginLoader>
#include <QTemporaryDir>

#include <integrations/integrationplugin.h>

#include <memory>
#include <vector>

class Gateway;

/*! The built plugin in a daemon of the least kind: one gateway, which has been set up and polled once, and
    any number of wallbox things. More than 32 share the wallbox classes, which a daemon would not allow but
    which makes no difference to a poll. Nobody listens to the things. One site at a time. */
class Site : private ThingManager
{
public:
    /*! Loads \a pluginFile and aims it at the backend at \a url, which must know \a wallboxes wallboxes. */
    Site(const QString &pluginFile, const QString &url, int wallboxes);
    ~Site() override;

    /*! One whole poll: from the plugin timer's tick to the states. */
    void poll();

    /*! Hands \a values, by infrastructure id, to the plugin as if a reply had brought them. */
    void apply(const QJsonObject &values);

private:
    Things configuredThings() const override;
    void setUpWallboxes(int count);
    void setUpGateway(const QString &url);
    void setUp(Thing *thing);
    void findClient();

    QTemporaryDir m_storage;
    HardwareManager m_hardware;
    QPluginLoader m_loader;
    std::unique_ptr<IntegrationPlugin> m_plugin;
    std::vector<std::unique_ptr<Thing>> m_things; // the gateway last
    Gateway *m_gateway = nullptr;                 // one of m_things
    QObject *m_client = nullptr;                  // the plugin's
    QMetaMethod m_valuesReceived;                 // of m_client
    QEventLoop m_loop;
};

#endif // SITE_H
