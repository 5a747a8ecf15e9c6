// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "measuredplugin.h"

#include "replies.h"

#include <integrationpluginvela.h>
#include <networkhandler.h>

using namespace std::chrono_literals;

namespace {

// The plugin keeps its client to itself. C++ permits an explicit instantiation to name a private member.
NetworkHandler *clientOf(const IntegrationPluginVela *plugin);
template <NetworkHandler *IntegrationPluginVela::*Member> struct PrivateMember
{
    friend NetworkHandler *clientOf(const IntegrationPluginVela *plugin) { return plugin->*Member; }
};
template struct PrivateMember<&IntegrationPluginVela::m_networkHandler>;

} // namespace

MeasuredPlugin::MeasuredPlugin(const QString &pluginFile, const QString &url, int wallboxes)
    : m_site(pluginFile)
{
    IntegrationPlugin *plugin = m_site.daemon->plugin();
    const ThingClasses classes = m_site.daemon->thingClasses();
    const QStringList ids = infraIds(wallboxes);
    for (int i = 0; i < wallboxes; ++i) {
        const ThingClass &thingClass = classes.at(1 + i % (classes.size() - 1)); // the first is the gateway's
        auto *thing = new Thing(thingClass, ThingId::createThingId(), &m_wallboxes);
        thing->setParamValue(thingClass.paramTypes.findByName("infraID").id, ids.at(i));
        ThingSetupInfo info(thing, 0ms);
        plugin->setupThing(&info);
    }
    const Job discovery = m_site.discover(url, "yard", "s3cret");
    if (Site::result(discovery) != "NoError"
        || Site::result(m_site.add(discovery->offers.first())) != "NoError")
        qFatal("The gateway is not set up.");
    m_client = clientOf(static_cast<IntegrationPluginVela *>(plugin));
    // After the plugin's own connection: the loop ends when the states have been written.
    QObject::connect(m_client, &NetworkHandler::valuesReceived, &m_loop, &QEventLoop::quit);
    poll();
}

void MeasuredPlugin::poll()
{
    m_site.tick();
    m_loop.exec();
}

void MeasuredPlugin::apply(const QJsonObject &values)
{
    emit m_client->valuesReceived(values);
}
