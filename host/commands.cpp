// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "commands.h"

#include "arguments.h"
#include "thingjson.h"
#include "values.h"

#include <QJsonArray>

#include <algorithm>

namespace {

constexpr int mostPower = 10000000; // W

tl::expected<Thing *, QString> thingNamed(const CommandContext *context, const QString &text)
{
    return findThing(context->daemon->configuredThings(), text);
}

Outcome listClasses(CommandContext *context, const QStringList &)
{
    QJsonArray objects;
    QVector<QStringList> rows;
    const ThingClasses classes = context->daemon->thingClasses();
    for (const ThingClass &thingClass : classes) {
        objects.append(classObject(thingClass));
        const QStringList origins = QStringList{thingClass.createMethods.join(QLatin1Char(','))}
            + nameList(thingClass.discoveryParamTypes);
        rows.append({thingClass.name, thingClass.displayName, origins.join(QLatin1Char(' '))});
    }
    return Message{{{QStringLiteral("classes"), objects}}, aligned(rows)};
}

Message takeOffers(CommandContext *context, const ThingDiscoveryInfo *info)
{
    context->offers = info->thingDescriptors();
    QJsonArray objects;
    QVector<QStringList> rows;
    for (const ThingDescriptor &offer : qAsConst(context->offers)) {
        const ThingClass thingClass = context->daemon->thingClasses().findById(offer.thingClassId());
        objects.append(offerObject(offer, thingClass));
        rows.append({QString::number(objects.size()), offer.title(), offer.description(), thingClass.name,
                     offer.thingId().isNull() ? QStringLiteral("new") : QStringLiteral("exists already")});
    }
    if (rows.isEmpty())
        rows.append({QStringLiteral("Nothing was found.")});
    return {{{QStringLiteral("offers"), objects}}, aligned(rows)};
}

JobStart discoverThings(CommandContext *context, const QStringList &arguments)
{
    ThingClasses classes = context->daemon->thingClasses();
    const ThingClass thingClass = classes.findByName(arguments.first());
    if (thingClass.id.isNull()) {
        const auto end = std::remove_if(classes.begin(), classes.end(), [](const ThingClass &known) {
            return !known.createMethods.contains(QLatin1String("discovery"));
        });
        classes.erase(end, classes.end());
        return tl::unexpected(QStringLiteral("There is no thing class \"%1\"; discovery finds %2.")
                                  .arg(arguments.first(), namesOf(classes)));
    }
    const auto params = readAssignments(arguments.mid(1), thingClass.discoveryParamTypes);
    return params.map([&](const ParamList &params) {
        ThingDiscoveryInfo *info = context->daemon->discover(thingClass.id, params);
        return StartedJob{info, [context, info] { return takeOffers(context, info); }};
    });
}

JobStart addOffer(CommandContext *context, const QStringList &arguments)
{
    bool isNumber = false;
    const int index = arguments.first().toInt(&isNumber) - 1;
    if (context->offers.isEmpty())
        return tl::unexpected(QStringLiteral("There is nothing to add; \"discover\" something first."));
    if (!isNumber || index < 0 || index >= context->offers.size())
        return tl::unexpected(QStringLiteral("N must be a number from 1 to %1, not \"%2\".")
                                  .arg(context->offers.size())
                                  .arg(arguments.first()));
    if (!context->daemon->configuredThings().findById(context->offers[index].thingId()))
        context->offers[index].setThingId(ThingId()); // removed since
    ThingSetupInfo *info = context->daemon->add(context->offers[index]);
    return StartedJob{
        info, [context, info, index] {
            // The offer is now for this thing: adding it again reconfigures the thing.
            if (info->status() == Thing::ThingErrorNoError)
                context->offers[index].setThingId(info->thing()->id());
            const bool isKept = context->daemon->configuredThings().contains(info->thing());
            return Message{
                {{QStringLiteral("thingId"), isKept ? idValue(info->thing()->id()) : QJsonValue()}}, {}};
        }};
}

Outcome listThings(CommandContext *context, const QStringList &)
{
    QJsonArray objects;
    QVector<QStringList> rows;
    const Things things = context->daemon->configuredThings();
    for (const Thing *thing : things) {
        objects.append(thingObject(thing));
        rows.append({thing->name(), setupText(thing), mainStates(thing)});
    }
    if (rows.isEmpty())
        rows.append({QStringLiteral("There are no things yet.")});
    return Message{{{QStringLiteral("things"), objects}}, aligned(rows)};
}

Outcome showThing(CommandContext *context, const QStringList &arguments)
{
    return thingNamed(context, arguments.first()).map([context](const Thing *thing) {
        const Thing *parent = context->daemon->configuredThings().findById(thing->parentId());
        return Message{{{QStringLiteral("things"), QJsonArray{thingObject(thing)}}},
                       description(thing, parent)};
    });
}

JobStart setState(CommandContext *context, const QStringList &arguments)
{
    const auto found = thingNamed(context, arguments.at(0));
    if (!found)
        return tl::unexpected(found.error());
    const ActionTypes types = (*found)->thingClass().actionTypes;
    const ActionType type = types.findByName(arguments.at(1));
    if (type.id.isNull())
        return tl::unexpected(QStringLiteral("%1 has no state \"%2\" that can be set; there are %3.")
                                  .arg((*found)->name(), arguments.at(1), namesOf(types)));
    const QVariant value = typedValue(arguments.at(2), type.paramTypes.constFirst().type);
    ThingActionInfo *info = context->daemon->execute(*found, type.name, value);
    return StartedJob{
        info, [info] {
            return Message{
                {}, {QStringLiteral("Done: %1 %2").arg(info->thing()->name(), mainStates(info->thing()))}};
        }};
}

JobStart setUpThing(CommandContext *context, const QStringList &arguments)
{
    return thingNamed(context, arguments.first()).map([context](Thing *thing) {
        return StartedJob{context->daemon->setup(thing), [] { return Message(); }};
    });
}

Outcome removeThing(CommandContext *context, const QStringList &arguments)
{
    return thingNamed(context, arguments.first()).map([context](Thing *thing) {
        context->daemon->remove(thing);
        return Message();
    });
}

Outcome watchWallboxes(CommandContext *, const QStringList &arguments)
{
    if (arguments.isEmpty())
        return Pause{{}, true};
    return readSeconds(arguments.first()).map([](auto time) { return Pause{time, true}; });
}

Outcome letTimePass(CommandContext *, const QStringList &arguments)
{
    return readSeconds(arguments.first()).map([](auto time) { return Pause{time, false}; });
}

Outcome balanceLoad(CommandContext *context, const QStringList &arguments)
{
    if (arguments.first() == QLatin1String("off")) {
        context->balancer->stop();
        return Message{{}, {QStringLiteral("Currents are no longer set.")}};
    }
    bool isNumber = false;
    const double power = arguments.first().toDouble(&isNumber);
    if (!isNumber || !(power >= 0 && power <= mostPower))
        return tl::unexpected(QStringLiteral("WATT must be a number from 0 to %1 or \"off\", not \"%2\".")
                                  .arg(mostPower)
                                  .arg(arguments.first()));
    context->balancer->start(power);
    const QString line = QStringLiteral("The cars share %1; \"balance off\" ends it.");
    return Message{{}, {line.arg(valueText(power, Types::UnitWatt))}};
}

Outcome showHelp(CommandContext *, const QStringList &)
{
    QJsonArray objects;
    QVector<QStringList> rows;
    for (const Command &command : commands()) {
        const QString summary = QLatin1String(command.summary);
        objects.append(QJsonObject{
            {QStringLiteral("usage"),   command.usage()},
            {QStringLiteral("summary"), summary        }
        });
        rows.append({command.usage(), summary});
    }
    return Message{{{QStringLiteral("commands"), objects}}, aligned(rows)};
}

Outcome quitHost(CommandContext *, const QStringList &)
{
    return Message{{}, {}, true};
}

} // namespace

const QVector<Command> &commands()
{
    static const QVector<Command> table{
        {"classes",  "",                        "list the plugin's thing classes",                  listClasses   },
        {"discover", "CLASS [PARAM=VALUE ...]", "look for things of a class",                       discoverThings},
        {"add",      "N",                       "add or reconfigure the N-th offer",                addOffer      },
        {"things",   "",                        "list all things",                                  listThings    },
        {"show",     "THING",                   "show a thing's parameters and states",             showThing     },
        {"set",      "THING STATE VALUE",       "set a writable state",                             setState      },
        {"setup",    "THING",                   "run a thing's set-up again",                       setUpThing    },
        {"remove",   "THING",                   "remove a thing, its children first",               removeThing   },
        {"watch",    "[SECONDS]",               "show all wallboxes live; Enter ends it",           watchWallboxes},
        {"balance",  "WATT",                    "share this power among the cars, or \"off\"",      balanceLoad   },
        {"wait",     "SECONDS",                 "let time pass",                                    letTimePass   },
        {"help",     "",                        "show this list (also \"?\")",                      showHelp      },
        {"quit",     "",                        "end the host (also \"exit\"); things stay stored", quitHost      },
    };
    return table;
}

QStringList commandNames()
{
    QStringList names;
    for (const Command &command : commands())
        names.append(QLatin1String(command.name));
    return names;
}

const Command *findCommand(const QString &name)
{
    const QString known = name == QLatin1String("?") ? QStringLiteral("help")
        : name == QLatin1String("exit")              ? QStringLiteral("quit")
                                                     : name;
    const auto command = std::find_if(commands().cbegin(), commands().cend(), [&known](const Command &other) {
        return known == QLatin1String(other.name);
    });
    return command == commands().cend() ? nullptr : &*command;
}

QString Command::usage() const
{
    return QStringLiteral("%1 %2").arg(QLatin1String(name), QLatin1String(arguments));
}

bool Command::takes(int argumentCount) const
{
    const QString needed = QString(QLatin1String(arguments)).section(QLatin1Char('['), 0, 0);
    return argumentCount >= needed.split(QLatin1Char(' '), Qt::SkipEmptyParts).size()
        && (argumentCount == 0 || !argument(argumentCount - 1).isEmpty());
}

QString Command::argument(int index) const
{
    QStringList names = QString(QLatin1String(arguments))
                            .remove(QLatin1Char('['))
                            .remove(QLatin1Char(']'))
                            .split(QLatin1Char(' '));
    const bool repeatsLast = names.removeAll(QStringLiteral("...")) > 0;
    return names.value(repeatsLast ? std::min(index, names.size() - 1) : index);
}
