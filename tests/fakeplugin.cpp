// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "fakeplugin.h"

#include <QDebug>

#include <algorithm>
#include <iterator>

namespace {

ThingClass classNamed(const PluginMetadata &metadata, const char *name)
{
    return metadata.thingClasses().findByName(QLatin1String(name));
}

/*! Ends the host, so that a test with a misspelt name does not wait for something that cannot happen. */
[[noreturn]] void refuse(const char *kind, const QString &name)
{
    qFatal("The fake plugin has no %s \"%s\".", kind, qPrintable(name));
}

Param paramOf(const ParamTypes &types, const QString &name, const QVariant &value)
{
    const ParamTypeId id = types.findByName(name).id;
    if (id.isNull())
        refuse("parameter", name);
    return Param(id, value);
}

// The ways in which a bridge can be set up.
constexpr struct
{
    const char *name;
    bool finishes;
    bool fails;
    bool announcesLamps;
    bool announcesNonsense;
} steps[] = {
    {"succeeds",            true,  false, false, false},
    {"fails",               true,  true,  false, false},
    {"hangs",               false, false, false, false},
    {"announces",           true,  false, true,  false},
    {"announces and fails", true,  true,  true,  false},
    {"announces nonsense",  true,  false, false, true },
};

void count(Thing *thing, const QString &state)
{
    thing->setStateValue(state, thing->stateValue(state).toUInt() + 1);
}

} // namespace

/*! Offers one thing; the existing one if there is one with this address. With the address "nobody" the
    discovery does not finish, and with "broken" it fails. */
void FakePlugin::discoverThings(ThingDiscoveryInfo *info)
{
    const ThingClass thingClass = metadata().thingClasses().findById(info->thingClassId());
    ParamList params; // as asked for
    for (const ParamType &type : thingClass.discoveryParamTypes) {
        if (info->params().hasParam(type.id))
            params.append(paramOf(thingClass.paramTypes, type.name, info->params().paramValue(type.id)));
    }
    const ParamTypeId addressId = thingClass.paramTypes.findByName(QStringLiteral("address")).id;
    const QString address = params.paramValue(addressId).toString();
    if (address == QLatin1String("nobody"))
        return;
    if (address == QLatin1String("broken")) {
        qWarning("It is broken.\nReplace it.");
        return info->finish(Thing::ThingErrorHardwareFailure, QStringLiteral("It is broken.\nReplace it."));
    }

    const QString kind = thingClass.displayName;
    ThingDescriptor descriptor(thingClass.id, kind + QLatin1Char(' ') + address,
                               QStringLiteral("A ") + kind.toLower());
    descriptor.setParams(params);
    const Things known = myThings().filterByParam(addressId, address);
    if (!known.isEmpty())
        descriptor.setThingId(known.first()->id());
    info->addThingDescriptor(descriptor);
    info->finish(Thing::ThingErrorNoError);
}

void FakePlugin::setupThing(ThingSetupInfo *info)
{
    pluginStorage()->setValue(QStringLiteral("setUp/") + info->thing()->name(), true);
    qDebug() << "setting up" << info->thing()->name() << "with" << myThings().size() << "things";
    if (info->thing()->thingClass().name == QLatin1String("bridge"))
        return setupBridge(info);
    if (info->thing()->thingClass().name == QLatin1String("lamp"))
        info->thing()->setStateMaxValue(QStringLiteral("brightness"),
                                        info->thing()->stateValue(QStringLiteral("maxBrightness")));
    info->finish(Thing::ThingErrorNoError);
}

void FakePlugin::setupBridge(ThingSetupInfo *info)
{
    count(info->thing(), QStringLiteral("setups"));
    const QString setup = info->thing()->paramValue(QStringLiteral("setup")).toString();
    const auto *const step = std::find_if(std::begin(steps), std::end(steps), [&setup](const auto &known) {
        return setup == QLatin1String(known.name);
    });
    if (step == std::end(steps))
        refuse("step", setup);
    if (step->finishes && step->fails)
        info->finish(Thing::ThingErrorHardwareNotAvailable, QStringLiteral("The bridge does not answer."));
    else if (step->finishes)
        info->finish(Thing::ThingErrorNoError);
    if (step->announcesLamps)
        announceLamps(info->thing());
    if (step->announcesNonsense)
        announceNonsense(info->thing());
}

/*! Announces the lamps that the bridge should have and that do not exist yet. */
void FakePlugin::announceLamps(const Thing *bridge)
{
    const ThingClass lamp = classNamed(metadata(), "lamp");
    const uint lamps = bridge->paramValue(QStringLiteral("children")).toUInt();
    const auto known = uint(myThings().filterByParentId(bridge->id()).size());
    for (uint i = known + 1; i <= lamps; ++i) {
        ThingDescriptor descriptor(lamp.id, QStringLiteral("Lamp %1").arg(i), QString(), bridge->id());
        descriptor.setParams(QList<Param>{paramOf(lamp.paramTypes, QStringLiteral("number"), i)});
        emit autoThingsAppeared(QList<ThingDescriptor>{descriptor});
    }
}

void FakePlugin::announceNonsense(const Thing *bridge)
{
    const ThingClass lamp = classNamed(metadata(), "lamp");
    ThingDescriptor tooMuch(lamp.id, QStringLiteral("too much"), QString(), bridge->id());
    tooMuch.setParams(QList<Param>{paramOf(lamp.paramTypes, QStringLiteral("number"), 9)});
    ThingDescriptor text(lamp.id, QStringLiteral("no number"), QString(), bridge->id());
    text.setParams(QList<Param>{paramOf(lamp.paramTypes, QStringLiteral("number"), QStringLiteral("1"))});
    const ThingDescriptor noClass(ThingClassId(), QStringLiteral("no class"), QString(), bridge->id());
    const ThingDescriptor noParent(lamp.id, QStringLiteral("no parent"), QString(), ThingId::createThingId());
    ThingDescriptor pending(bridge->thingClassId(), QStringLiteral("pending"));
    pending.setThingId(bridge->id());
    emit autoThingsAppeared(QList<ThingDescriptor>{tooMuch, text, noClass, noParent, pending});
    emit autoThingDisappeared(ThingId::createThingId());
}

void FakePlugin::postSetupThing(Thing *thing)
{
    if (thing->thingClass().name == QLatin1String("bridge"))
        count(thing, QStringLiteral("postSetups"));
}

void FakePlugin::executeAction(ThingActionInfo *info)
{
    const StateTypeId stateTypeId(info->action().actionTypeId());
    const QVariant value = info->action().params().constFirst().value();
    const QString name = info->thing()->thingClass().stateTypes.findById(stateTypeId).name;
    if (name == QLatin1String("order"))
        return obey(info, value.toString());
    info->thing()->setStateValue(stateTypeId, value);
    if (name == QLatin1String("maxBrightness"))
        info->thing()->setStateMaxValue(QStringLiteral("brightness"), value);
    info->finish(Thing::ThingErrorNoError);
}

void FakePlugin::obey(ThingActionInfo *info, const QString &order)
{
    if (order == QLatin1String("hang"))
        return;
    if (order == QLatin1String("fail"))
        return info->finish(Thing::ThingErrorHardwareFailure, QStringLiteral("The lamp is broken."));
    if (order == QLatin1String("vanish")) {
        pluginStorage()->setValue(QStringLiteral("vanished"), true);
        return emit autoThingDisappeared(info->thing()->id());
    }
    if (order != QLatin1String("blink"))
        refuse("order", order);
    for (const bool on : {true, false, true, false})
        info->thing()->setStateValue(QStringLiteral("power"), on);
    info->finish(Thing::ThingErrorNoError);
}

void FakePlugin::thingRemoved(Thing *thing)
{
    qDebug() << "removed" << thing->name() << "of" << myThings().size() + 1;
}

extern "C" Q_DECL_EXPORT QString libnymea_api_version()
{
    return QStringLiteral(FAKE_API_VERSION);
}
