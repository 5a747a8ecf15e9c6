// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "site.h"

#include "replies.h"

#include <QJsonObject>
#include <QTimer>

#include <plugintimer.h>

#include <chrono>

using namespace std::chrono_literals;

/*! A gateway that can tell whose signal its handlers are answering. */
class Gateway : public Thing
{
public:
    using Thing::Thing;
    QObject *caller() const { return sender(); }
};

Site::Site(const QString &pluginFile, const QString &url, int wallboxes)
    : m_loader(pluginFile)
{
    // Polls come when poll() says so.
    m_hardware.pluginTimerManager()->findChild<QTimer *>()->stop();
    const QJsonObject document = m_loader.metaData().value(QLatin1String("MetaData")).toObject();
    m_plugin.reset(qobject_cast<IntegrationPlugin *>(m_loader.instance()));
    if (!m_plugin)
        qFatal("The plugin does not load: %s", qPrintable(m_loader.errorString()));
    m_plugin->initPlugin(PluginMetadata(document), this, &m_hardware, m_storage.path());
    m_plugin->init();
    // As after a restart of the daemon: the things are there before the backend has answered.
    setUpWallboxes(wallboxes);
    setUpGateway(url);
    findClient();
}

Site::~Site()
{
    // The plugin lets go of everything when the last thing has gone.
    while (!m_things.empty()) {
        const std::unique_ptr<Thing> thing = std::move(m_things.back());
        m_things.pop_back();
        m_plugin->thingRemoved(thing.get());
    }
}

Things Site::configuredThings() const
{
    Things things;
    for (const auto &thing : m_things)
        things.append(thing.get());
    return things;
}

void Site::setUpWallboxes(int count)
{
    const ThingClasses classes = m_plugin->metadata().thingClasses();
    const QStringList ids = infraIds(count);
    for (int i = 0; i < count; ++i) {
        const ThingClass &thingClass = classes.at(1 + i % (classes.size() - 1)); // the first is the gateway's
        m_things.push_back(std::make_unique<Thing>(thingClass));
        m_things.back()->setParamValue(thingClass.paramTypes.findByName(QStringLiteral("infraID")).id,
                                       ids.at(i));
        setUp(m_things.back().get());
    }
}

void Site::setUpGateway(const QString &url)
{
    const ThingClass thingClass = m_plugin->metadata().thingClasses().constFirst();
    QSettings *storage = m_plugin->pluginStorage();
    storage->beginGroup(thingClass.id.toString());
    storage->setValue(QStringLiteral("url"), url);
    storage->setValue(QStringLiteral("groupId"), QStringLiteral("yard"));
    storage->setValue(QStringLiteral("groupSecret"), QStringLiteral("s3cret"));
    storage->endGroup();
    auto gateway = std::make_unique<Gateway>(thingClass);
    m_gateway = gateway.get();
    m_things.push_back(std::move(gateway));
    setUp(m_gateway);
}

void Site::setUp(Thing *thing)
{
    auto *info = new ThingSetupInfo(thing, 0ms); // the thing's; deletes itself once it has finished
    QObject::connect(info, &ThingSetupInfo::finished, &m_loop, &QEventLoop::quit);
    m_plugin->setupThing(info);
    m_loop.exec();
    m_plugin->postSetupThing(thing);
}

/*! The plugin keeps its client to itself; but while values are applied, the client is who calls. */
void Site::findClient()
{
    QObject context;
    QObject::connect(m_things.front().get(), &Thing::stateValueChanged, &context, [this] {
        m_client = m_gateway->caller();
        m_loop.quit();
    });
    poll();
    const QMetaObject *type = m_client->metaObject();
    m_valuesReceived = type->method(type->indexOfSignal("valuesReceived(QJsonObject)"));
    const QMetaObject &loopType = QEventLoop::staticMetaObject;
    // Behind the plugin's own connection: the loop ends when the states have been written.
    QObject::connect(m_client, m_valuesReceived, &m_loop, loopType.method(loopType.indexOfSlot("quit()")));
}

void Site::poll()
{
    emit m_hardware.findChild<PluginTimer *>()->timeout();
    m_loop.exec();
}

void Site::apply(const QJsonObject &values)
{
    m_valuesReceived.invoke(m_client, Qt::DirectConnection, Q_ARG(QJsonObject, values));
}
