// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "commands.h"

#include "arguments.h"
#include "shellwords.h"
#include "thinglookup.h"
#include "values.h"

#include <algorithm>

using namespace std::chrono_literals;

struct Commands::Command
{
    const char *name;
    const char *arguments; // what follows, for the reader and for counting; optional in brackets
    const char *summary;
    QString (Commands::*run)(const QStringList &arguments);
};

namespace {

/*! What is wrong with the number of arguments of \a command; empty if nothing is. */
template <typename Command> QString countError(const Command &command, int count)
{
    const QString form = QLatin1String(command.arguments);
    const int most = form.isEmpty() ? 0 : form.count(QLatin1Char(' ')) + 1;
    const int least = form.section(QLatin1Char('['), 0, 0).split(QLatin1Char(' '), Qt::SkipEmptyParts).size();
    if (count >= least && (count <= most || form.contains(QLatin1String("..."))))
        return QString();
    return QStringLiteral("Usage: %1 %2").arg(QLatin1String(command.name), form).trimmed();
}

ThingClasses discoverable(const ThingClasses &classes)
{
    ThingClasses result;
    for (const ThingClass &thingClass : classes) {
        if (thingClass.createMethods.contains(QLatin1String("discovery")))
            result.append(thingClass);
    }
    return result;
}

} // namespace

Commands::Commands(Daemon *daemon, Output *output, QObject *parent)
    : QObject(parent)
    , m_daemon(daemon)
    , m_output(output)
{
    m_waitTimer.setSingleShot(true);
    m_waitTimer.setTimerType(Qt::PreciseTimer);
    connect(&m_waitTimer, &QTimer::timeout, this, &Commands::finish);
    connect(&m_drawTimer, &QTimer::timeout, this, &Commands::drawWatch);
}

const QVector<Commands::Command> &Commands::table()
{
    static const QVector<Command> commands{
        {"classes",  "",                        "list the plugin's thing classes",        &Commands::classes },
        {"discover", "CLASS [PARAM=VALUE ...]", "look for things of a class",             &Commands::discover},
        {"add",      "N",                       "add or reconfigure the N-th offer",      &Commands::add     },
        {"things",   "",                        "list all things",                        &Commands::things  },
        {"show",     "THING",                   "show a thing's parameters and states",   &Commands::show    },
        {"set",      "THING STATE VALUE",       "set a writable state",                   &Commands::set     },
        {"setup",    "THING",                   "run a thing's set-up again",             &Commands::setup   },
        {"remove",   "THING",                   "remove a thing, its children first",     &Commands::remove  },
        {"watch",    "[SECONDS]",               "show all wallboxes live; Enter ends it", &Commands::watch   },
        {"wait",     "SECONDS",                 "let time pass",                          &Commands::wait    },
        {"help",     "",                        "show this list",                         &Commands::help    },
        {"quit",     "",                        "end the host; its things stay stored",   &Commands::quit    },
    };
    return commands;
}

void Commands::execute(const QString &line)
{
    const ShellWords split = splitShellWords(line);
    if (split.words.isEmpty() && split.error.isEmpty())
        return;
    m_daemon->commit(); // so that the answer does not overtake events
    const QString name = split.words.value(0, line.trimmed().section(QLatin1Char(' '), 0, 0));
    const auto command = std::find_if(table().cbegin(), table().cend(), [&name](const Command &entry) {
        return QLatin1String(entry.name) == name;
    });
    QString error = split.error;
    if (error.isEmpty() && command == table().cend())
        error = QStringLiteral("There is no command \"%1\"; there are %2.").arg(name, namesOf(table()));
    if (error.isEmpty())
        error = run(*command, split.words.mid(1));
    if (error.isEmpty())
        return;
    m_command.clear();
    m_output->refused(name, error);
}

QString Commands::run(const Command &command, const QStringList &arguments)
{
    QString error = countError(command, arguments.size());
    if (!error.isEmpty())
        return error;
    m_command = QLatin1String(command.name);
    return (this->*command.run)(arguments);
}

bool Commands::isPending() const
{
    return !m_command.isEmpty();
}

void Commands::interrupt()
{
    if (m_isOpenEnded)
        finish();
}

QString Commands::classes(const QStringList &)
{
    m_command.clear();
    m_output->classes(m_daemon->thingClasses());
    return QString();
}

QString Commands::discover(const QStringList &arguments)
{
    const ThingClass thingClass = m_daemon->thingClasses().findByName(arguments.first());
    if (thingClass.id.isNull())
        return QStringLiteral("There is no thing class \"%1\"; discovery finds %2.")
            .arg(arguments.first(), namesOf(discoverable(m_daemon->thingClasses())));
    ParamList params;
    QString error = readAssignments(arguments.mid(1), thingClass.discoveryParamTypes, &params);
    if (!error.isEmpty())
        return error;
    ThingDiscoveryInfo *info = m_daemon->discover(thingClass.id, params);
    connect(info, &ThingJob::finished, this, [this, info] { takeOffers(info); });
    return QString();
}

void Commands::takeOffers(const ThingDiscoveryInfo *info)
{
    m_offers = info->thingDescriptors();
    m_daemon->commit();
    m_command.clear();
    m_output->discovered(info, m_daemon->thingClasses());
    emit answered();
}

QString Commands::add(const QStringList &arguments)
{
    bool isNumber = false;
    const int index = arguments.first().toInt(&isNumber) - 1;
    if (m_offers.isEmpty())
        return QStringLiteral("There is nothing to add; \"discover\" something first.");
    if (!isNumber || index < 0 || index >= m_offers.size())
        return QStringLiteral("N must be a number from 1 to %1, not \"%2\".")
            .arg(m_offers.size())
            .arg(arguments.first());
    ThingDescriptor &offer = m_offers[index];
    if (!m_daemon->configuredThings().findById(offer.thingId()))
        offer.setThingId(ThingId()); // removed since
    ThingSetupInfo *info = m_daemon->add(offer);
    connect(info, &ThingJob::finished, this, [this, info, index] {
        // The offer stands for what it has become: adding it again reconfigures that.
        if (info->status() == Thing::ThingErrorNoError)
            m_offers[index].setThingId(info->thing()->id());
        answerWith(info, info->thing());
    });
    return QString();
}

QString Commands::things(const QStringList &)
{
    m_command.clear();
    m_output->things(m_daemon->configuredThings());
    return QString();
}

QString Commands::show(const QStringList &arguments)
{
    const Things things = m_daemon->configuredThings();
    const FoundThing found = findThing(things, arguments.first());
    if (!found.thing)
        return found.error;
    m_command.clear();
    m_output->thing(found.thing, things.findById(found.thing->parentId()));
    return QString();
}

QString Commands::set(const QStringList &arguments)
{
    const FoundThing found = findThing(m_daemon->configuredThings(), arguments.at(0));
    if (!found.thing)
        return found.error;
    const QString &stateName = arguments.at(1);
    const ThingClass thingClass = found.thing->thingClass();
    const ActionType action = thingClass.actionTypes.findByName(stateName);
    if (action.id.isNull())
        return QStringLiteral("%1 has no state \"%2\" that can be set; there are %3.")
            .arg(found.thing->name(), stateName, namesOf(thingClass.actionTypes));
    // The limits are the daemon's to check: they move.
    const ValueRule rule{action.paramTypes.constFirst().type, {}, {}, Types::UnitNone};
    const CheckedValue value = parseValue(arguments.at(2), rule);
    if (!value.error.isEmpty())
        return QStringLiteral("%1 %2.").arg(stateName, value.error);
    ThingActionInfo *info = m_daemon->execute(found.thing, stateName, value.value);
    connect(info, &ThingJob::finished, this, [this, info] { answerWith(info, info->thing()); });
    return QString();
}

QString Commands::setup(const QStringList &arguments)
{
    const FoundThing found = findThing(m_daemon->configuredThings(), arguments.first());
    if (!found.thing)
        return found.error;
    ThingSetupInfo *info = m_daemon->setup(found.thing);
    connect(info, &ThingJob::finished, this, [this, info] { answerWith(info, info->thing()); });
    return QString();
}

QString Commands::remove(const QStringList &arguments)
{
    const FoundThing found = findThing(m_daemon->configuredThings(), arguments.first());
    if (!found.thing)
        return found.error;
    m_daemon->remove(found.thing);
    m_output->done(m_command);
    m_command.clear();
    return QString();
}

QString Commands::watch(const QStringList &arguments)
{
    std::chrono::milliseconds time{};
    m_isOpenEnded = arguments.isEmpty();
    if (!m_isOpenEnded) {
        QString error = readSeconds(arguments.first(), &time);
        if (!error.isEmpty())
            return error;
        m_waitTimer.start(time);
    }
    drawWatch();
    m_drawTimer.start(1s);
    return QString();
}

QString Commands::wait(const QStringList &arguments)
{
    std::chrono::milliseconds time{};
    QString error = readSeconds(arguments.first(), &time);
    if (error.isEmpty())
        m_waitTimer.start(time);
    return error;
}

QString Commands::help(const QStringList &)
{
    QVector<CommandHelp> entries;
    for (const Command &command : table())
        entries.append(
            {QStringLiteral("%1 %2").arg(QLatin1String(command.name), QLatin1String(command.arguments)),
             QLatin1String(command.summary)});
    m_command.clear();
    m_output->help(entries);
    return QString();
}

QString Commands::quit(const QStringList &)
{
    m_output->done(m_command);
    m_command.clear();
    emit quitRequested();
    return QString();
}

/*! \a thing is what \a job was for, or null where the daemon has refused the request. */
void Commands::answerWith(ThingJob *job, Thing *thing)
{
    m_daemon->commit();
    const bool isKept = m_daemon->configuredThings().contains(thing);
    m_output->jobDone(m_command, job, isKept ? thing : nullptr);
    m_command.clear();
    emit answered();
}

void Commands::drawWatch()
{
    Things wallboxes;
    const Things things = m_daemon->configuredThings();
    for (Thing *thing : things) {
        if (thing->thingClass().interfaces.contains(QLatin1String("evcharger")))
            wallboxes.append(thing);
    }
    std::sort(wallboxes.begin(), wallboxes.end(),
              [](const Thing *a, const Thing *b) { return a->name() < b->name(); });
    m_output->watched(wallboxes);
}

/*! The end of "wait" or "watch". */
void Commands::finish()
{
    m_waitTimer.stop();
    m_drawTimer.stop();
    m_isOpenEnded = false;
    m_daemon->commit();
    m_output->done(m_command);
    m_command.clear();
    emit answered();
}
