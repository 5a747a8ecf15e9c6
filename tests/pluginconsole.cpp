// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "pluginconsole.h"

#include "json.h"
#include "nameresolution.h"
#include "waiting.h"
#include "watchedapplication.h"

#include <plugintimer.h>

#include <QCoreApplication>
#include <QDir>
#include <QJsonArray>
#include <QMetaEnum>
#include <QLoggingCategory>
#include <QMetaMethod>
#include <QRegularExpression>
#include <QSettings>
#include <QTextStream>
#include <QTimer>

#include <utility>

namespace {

QString takeWord(QStringList &words)
{
    if (words.isEmpty())
        qFatal("A word is missing.");
    return words.takeFirst();
}

int takeNumber(QStringList &words)
{
    const QString word = takeWord(words);
    bool isNumber = false;
    const int number = word.toInt(&isNumber);
    if (!isNumber)
        qFatal("\"%s\" is not a whole number.", qPrintable(word));
    return number;
}

QByteArray takeRest(QStringList &words)
{
    const QString rest = words.join(' ');
    words.clear();
    return rest.toUtf8();
}

ScriptedBackend::Operation takeOperation(QStringList &words)
{
    const QString name = takeWord(words);
    bool known = false;
    const int value =
        QMetaEnum::fromType<ScriptedBackend::Operation>().keyToValue(name.toUtf8().constData(), &known);
    if (!known)
        qFatal("There is no operation \"%s\".", qPrintable(name));
    return static_cast<ScriptedBackend::Operation>(value);
}

/*! The number, truth value or text that \a word stands for. */
QVariant value(const QString &word)
{
    const QJsonArray array = QJsonDocument::fromJson('[' + word.toUtf8() + ']').array();
    return array.isEmpty() ? word : array.first().toVariant();
}

QString compact(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

#ifdef VELA_SANITIZED
constexpr int timeFactor = 10;        // a program with sanitizers may take this many times as long
constexpr int repetitionDivisor = 50; // and repeats as much less often: allocating is slower still
#else
constexpr int timeFactor = 1;
constexpr int repetitionDivisor = 1;
#endif

/*! The bytes that the rest of \a words stands for: "<<3 x TEXT>>" is a repetition, in which # is the number; then
    come the escapes \r, \n and \xHH. */
QByteArray takeBytes(QStringList &words)
{
    static const QRegularExpression repetition("<<(\\d+) x (.+?)>>");
    QString text = takeRest(words);
    for (auto match = repetition.match(text); match.hasMatch(); match = repetition.match(text)) {
        QString repeated;
        for (int i = 0; i < match.captured(1).toInt() / repetitionDivisor; ++i)
            repeated += match.captured(2).replace('#', QString::number(i));
        text.replace(match.capturedStart(), match.capturedLength(), repeated);
    }
    QByteArray result = text.toUtf8().replace("\\r", "\r").replace("\\n", "\n");
    for (int at = result.indexOf("\\x"); at >= 0; at = result.indexOf("\\x", at))
        result.replace(at, 4, QByteArray::fromHex(result.mid(at + 2, 2)));
    return result;
}

} // namespace

PluginConsole::PluginConsole()
{
    addBackendCommands();
    addFaultCommands();
    addClientCommands();
    addJobCommands();
    addOtherCommands();
    addListeners();
    addQueries();
    m_site.log.onLine = [this](const QString &line) {
        if (m_shown.contains("log") || line.startsWith("warning: "))
            print(line);
    };
    connect(&m_site.backend, &ScriptedBackend::received, this, &PluginConsole::printRequest);
    connect(&m_other, &ScriptedBackend::received, this, [this](const ScriptedBackend::Request &request) {
        show("requests", m_other.url() + request.target + ' ' + compact(request.json()));
    });
    listen();
}

PluginConsole::~PluginConsole()
{
    m_shown.clear(); // what happens while the site is taken down is not printed
}

void PluginConsole::run(const QString &line)
{
    QString text = line;
    Words words = text.replace("URL", m_site.backend.url()).replace("OTHER", m_other.url()).split(' ');
    const auto command = m_commands.value(words.takeFirst());
    if (!command)
        qFatal("There is no command \"%s\".", qPrintable(line));
    command(words);
    if (!words.isEmpty())
        qFatal("\"%s\" has too many words.", qPrintable(line));
    settle();
    printFinishedJobs();
    flush();
}

void PluginConsole::addBackendCommands()
{
    ScriptedBackend &backend = m_site.backend;
    m_commands["wallbox"] = [&](Words &words) {
        const QString infraId = takeWord(words);
        backend.setWallbox(infraId, takeNumber(words));
    };
    m_commands["wallboxes"] = [&](Words &words) {
        const int count = takeNumber(words);
        for (int i = 1; i <= count; ++i)
            backend.setWallbox(numberedId(i), 16);
    };
    m_commands["unlist"] = [&](Words &words) {
        const QString infraId = takeWord(words);
        if (backend.wallboxes.take(infraId).isUndefined())
            qFatal("There is no wallbox \"%s\".", qPrintable(infraId));
    };
    m_commands["group"] = [&](Words &words) { backend.wallboxes = json(takeRest(words)); };
    m_commands["values"] = [&](Words &words) { backend.values = json(takeRest(words)); };
    m_commands["answer"] = [&](Words &words) {
        const auto operation = takeOperation(words);
        const int status = takeNumber(words);
        backend.answer(operation, status, takeBytes(words));
    };
    m_commands["normal"] = [&](Words &words) { backend.answerNormally(takeOperation(words)); };
    m_commands["endless"] = [&](Words &words) {
        backend.sendRaw(takeOperation(words),
                        "HTTP/1.1 200 OK\r\nSet-Cookie: a=b\r\n\r\n" + QByteArray(65 << 20, ' '));
    };
    m_commands["serve"] = [&](Words &words) {
        const auto operation = takeOperation(words);
        QTextStream(stdout) << backend.url() << '\n';
        const int before = backend.requests(operation).size();
        if (!waitFor([&] { return backend.requests(operation).size() > before; }))
            qFatal("Another program has not sent the request.");
    };
    m_commands["hold"] = [&](Words &words) { backend.hold(takeOperation(words)); };
    m_commands["release"] = [&](Words &words) {
        if (!backend.releaseAll(takeOperation(words)))
            qFatal("No request is held.");
    };
}

void PluginConsole::addFaultCommands()
{
    ScriptedBackend &backend = m_site.backend;
    m_commands["shutdown"] = [&](const Words &) { backend.shutDown(); };
    m_commands["startup"] = [&](const Words &) { backend.startUp(); };
    m_commands["close"] = [&](const Words &) { backend.closeConnections(); };
    m_commands["reset"] = [&](Words &words) { backend.reset(takeOperation(words)); };
    m_commands["hangup"] = [&](Words &words) {
        const auto operation = takeOperation(words);
        backend.hangUp(operation, takeBytes(words));
    };
    m_commands["part"] = [&](Words &words) {
        const auto operation = takeOperation(words);
        if (!backend.sendPart(operation, takeBytes(words)))
            qFatal("No request is held.");
    };
    m_commands["namesfail"] = [](const Words &) { setNamesResolve(false); };
    m_commands["namesresolve"] = [](const Words &) { setNamesResolve(true); };
    // Uses all connections, so that later polls bring no new objects.
    m_commands["census"] = [&](const Words &) {
        backend.hold(ScriptedBackend::Values);
        for (int i = 0; i < connectionsOfQt; ++i)
            m_site.tick();
        settle();
        backend.releaseAll(ScriptedBackend::Values);
        const Census census = Census::takeSettled();
        print(QString("%1 objects and %2 descriptors more")
                  .arg(census.objects - m_census.objects)
                  .arg(census.descriptors - m_census.descriptors));
        m_census = census;
    };
}

/*! Commands for a client without a plugin around it, which prints what it signals. */
void PluginConsole::addClientCommands()
{
    connect(&m_client, &NetworkHandler::daemonReachable, this,
            [this](bool state) { print(QString("reachable %1").arg(state)); });
    connect(&m_client, &NetworkHandler::infraInfoReceived, this,
            [this](const QJsonObject &evseIds) { print("group " + compact(evseIds)); });
    connect(&m_client, &NetworkHandler::valuesReceived, this,
            [this](const QJsonObject &values) { print("values " + compact(values)); });
    connect(&m_client, &NetworkHandler::evseIsOnline, this,
            [this](const QString &device) { print("online " + device); });
    connect(&m_client, &NetworkHandler::ocppDaemonStatus, this,
            [this](bool state) { print(QString("backend %1").arg(state)); });
    m_commands["client-aim"] = [&](Words &words) {
        const QString url = takeWord(words);
        const QString groupId = takeWord(words);
        m_client.setServerInfo(url, groupId, takeWord(words));
    };
    m_commands["client-online"] = [&](const Words &) { m_client.isOnline(); };
    m_commands["client-group"] = [&](const Words &) { m_client.getConnectedInfra(); };
    m_commands["client-values"] = [&](const Words &) { m_client.getEvseValues({"a", "b"}); };
    m_commands["client-limits"] = [&](const Words &) {
        QJsonObject limits = json(R"({"a": {"value": 16, "unit": "A"}})");
        m_client.setProfileChargePowerLimit(limits);
    };
}

void PluginConsole::addJobCommands()
{
    m_commands["discover"] = [&](Words &words) {
        if (words.isEmpty())
            return m_jobs.append({"discovery", m_site.discover()});
        const auto takeParam = [&words] {
            const QString word = takeWord(words);
            return word == "?" ? QString() : word == "-" ? QString("") : word;
        };
        const QString url = takeParam();
        const QString groupId = takeParam();
        m_jobs.append({"discovery", m_site.discover(url, groupId, takeParam())});
    };
    m_commands["add"] = [&](const Words &) { m_jobs.append({"set-up", m_site.add(m_offers.first())}); };
    m_commands["addwallbox"] = [&](Words &words) {
        const ThingClass thingClass = m_site.daemon->thingClasses().findByName(takeWord(words));
        ThingDescriptor descriptor(thingClass.id, takeWord(words));
        descriptor.setParams({{Param(thingClass.paramTypes.findByName("infraID").id, takeWord(words))}});
        m_jobs.append({"set-up", m_site.add(descriptor)});
    };
    m_commands["gateway"] = [&](const Words &) {
        const QString error = m_site.addGateway();
        if (!error.isEmpty())
            print(error);
    };
    m_commands["setup"] = [&](Words &words) {
        m_jobs.append({"set-up", m_site.setup(thing(takeWord(words)))});
    };
    m_commands["set"] = [&](Words &words) {
        const QString name = takeWord(words);
        const QString state = takeWord(words);
        m_jobs.append({"action", m_site.set(name, state, value(takeWord(words)))});
    };
}

void PluginConsole::addOtherCommands()
{
    m_commands["show"] = [&](Words &words) {
        static const QStringList kinds{"announced", "changes", "limits", "log", "requests"};
        m_shown.clear();
        while (!words.isEmpty()) {
            m_shown.append(takeWord(words));
            if (!kinds.contains(m_shown.constLast()))
                qFatal("There are no events of the kind \"%s\".", qPrintable(m_shown.constLast()));
        }
    };
    m_commands["remove"] = [&](Words &words) { m_site.remove(thing(takeWord(words))); };
    m_commands["restart"] = [&](const Words &) {
        m_site.restart();
        listen();
    };
    m_commands["poll"] = [&](Words &words) {
        const int count = words.isEmpty() ? 1 : takeNumber(words);
        for (int i = 0; i < count; ++i) {
            m_site.tick();
            settle();
        }
    };
    m_commands["quiet"] = [](const Words &) { QLoggingCategory::setFilterRules("Vela.debug=false"); };
    m_commands["busy"] = [&](Words &words) {
        auto *application = static_cast<WatchedApplication *>(QCoreApplication::instance());
        if (!words.isEmpty() && takeNumber(words) * timeFactor < application->longest)
            print(QString("busy for %1 ms").arg(application->longest));
        application->longest = 0;
    };
    m_commands["renew"] = [&](const Words &) { m_site.fireChargeLimitTimer(); };
    m_commands["zone"] = [](Words &words) { qputenv("TZ", takeWord(words).toUtf8()); };
    m_commands["clock"] = [](Words &words) { Site::moveClock(takeNumber(words)); };
    m_commands["write"] = [&](Words &words) {
        const QString name = takeWord(words);
        const QString state = takeWord(words);
        thing(name, {state})->setStateValue(state, value(takeWord(words)));
    };
    m_commands["param"] = [&](Words &words) {
        Thing *changed = thing(takeWord(words));
        const QString name = takeWord(words);
        const ParamType type = changed->thingClass().paramTypes.findByName(name);
        if (type.id.isNull())
            qFatal("There is no parameter \"%s\".", qPrintable(name));
        changed->setParamValue(type.id, value(takeWord(words)));
    };
    m_commands["credentials"] = [&](Words &words) {
        QSettings *storage = m_site.daemon->plugin()->pluginStorage();
        storage->remove(QString());
        storage->beginGroup(m_site.daemon->thingClasses().findByName("vela").id.toString());
        for (const char *key : {"url", "groupId", "groupSecret"}) {
            const QString word = takeWord(words);
            if (word != "-")
                storage->setValue(key, word);
        }
        storage->endGroup();
    };
}

/*! Commands for what listeners to the plugin and its things may do. */
void PluginConsole::addListeners()
{
    m_commands["overwrite"] = [&](Words &words) {
        const QString name = takeWord(words);
        const QString state = takeWord(words);
        Thing *changed = thing(name, {state});
        connect(changed, &Thing::stateValueChanged, this,
                [changed, state, written = value(takeWord(words))](const StateTypeId &id) {
                    if (changed->thingClass().stateTypes.findById(id).name == state)
                        changed->setStateValue(state, written);
                });
    };
    const auto removeAllBut = [this](int count) {
        while (m_site.wallboxes().size() > count)
            m_site.remove(m_site.wallboxes().constFirst());
    };
    m_commands["keepone"] = [=](const Words &) {
        const Things wallboxes = m_site.wallboxes();
        for (const Thing *wallbox : wallboxes)
            connect(wallbox, &Thing::stateValueChanged, this, [removeAllBut] { removeAllBut(1); });
    };
    m_commands["keepnone"] = [=](const Words &) {
        connect(m_site.daemon->plugin(), &IntegrationPlugin::autoThingDisappeared, this,
                [removeAllBut] { removeAllBut(0); });
    };
}

void PluginConsole::addQueries()
{
    m_commands["things"] = [&](const Words &) {
        const Things things = m_site.daemon->configuredThings();
        for (const Thing *thing : things)
            print(thing->name() + ' ' + thing->thingClass().name + ' ' + thing->id().toString());
    };
    m_commands["count"] = [&](const Words &) {
        QSet<ThingClassId> classes;
        const Things wallboxes = m_site.wallboxes();
        for (const Thing *wallbox : wallboxes)
            classes.insert(wallbox->thingClassId());
        print(QString("%1 wallboxes of %2 classes").arg(wallboxes.size()).arg(classes.size()));
    };
    m_commands["state"] = [&](Words &words) {
        const QString name = takeWord(words);
        Words values;
        while (!words.isEmpty()) {
            const QString state = takeWord(words);
            values.append(thing(name, {state})->stateValue(state).toString());
        }
        print(values.join(' '));
    };
    m_commands["params"] = [&](Words &words) {
        const Thing *shown = thing(takeWord(words));
        print(paramTexts(shown->thingClass(), shown->params()));
    };
    m_commands["storage"] = [&](const Words &) {
        const QSettings *storage = m_site.daemon->plugin()->pluginStorage();
        const Words keys = storage->allKeys();
        for (const QString &key : keys)
            print(key.section('/', 1) + ' ' + storage->value(key).toString());
    };
    m_commands["timers"] = [&](const Words &) {
        const auto pluginTimers = m_site.pluginTimers();
        for (const PluginTimer *timer : pluginTimers)
            print(QString("%1 s%2").arg(timer->interval()).arg(timer->running() ? "" : ", stopped"));
        const auto timers = m_site.chargeLimitTimers();
        for (const QTimer *timer : timers)
            print(QString("%1 ms%2")
                      .arg(timer->interval())
                      .arg(timer->isActive() && !timer->isSingleShot() ? "" : ", stopped"));
    };
    m_commands["connections"] = [&](const Words &) {
        print(QString::number(m_site.backend.openConnections()));
    };
}

/*! Connects to a daemon that has just been started. */
void PluginConsole::listen()
{
    connect(m_site.daemon.get(), &Daemon::thingAdded, this, &PluginConsole::watch);
    const Things things = m_site.daemon->configuredThings();
    for (Thing *thing : things)
        watch(thing);
    const IntegrationPlugin *plugin = m_site.daemon->plugin();
    connect(plugin, &IntegrationPlugin::autoThingsAppeared, this, &PluginConsole::printAppeared);
    connect(plugin, &IntegrationPlugin::autoThingDisappeared, this,
            [this](const ThingId &id) { show("announced", "disappeared " + id.toString()); });
    // By name, because the class of the plugin is not linked here.
    const QMetaObject *type = plugin->metaObject();
    connect(plugin, type->method(type->indexOfSignal("checkAutoCreateFinished()")), this,
            staticMetaObject.method(staticMetaObject.indexOfSlot("onGroupComplete()")));
}

void PluginConsole::print(const QString &line)
{
    if (line != m_line)
        flush();
    m_line = line;
    ++m_repetitions;
}

/*! Prints the last line; "3 x TEXT" if it came three times in a row. */
void PluginConsole::flush()
{
    QString text = m_line;
    text.replace('\n', "\\n").replace(m_site.backend.url(), "URL").replace(m_other.url(), "OTHER");
    if (m_repetitions > 1)
        text.prepend(QString("%1 x ").arg(m_repetitions));
    if (m_repetitions > 0)
        QTextStream(stdout) << text << '\n';
    m_repetitions = 0;
}

void PluginConsole::show(const QString &kind, const QString &line)
{
    if (m_shown.contains(kind))
        print(line);
}

void PluginConsole::printRequest(const ScriptedBackend::Request &request)
{
    QJsonObject body = request.json();
    if (request.operation == ScriptedBackend::Values) {
        Words ids = body["evse_ids"].toVariant().toStringList();
        ids.sort(); // sent in no particular order
        body["evse_ids"] = QJsonArray::fromStringList(ids);
    }
    show("requests", request.target + ' ' + compact(body));
    if (request.operation == ScriptedBackend::Limits)
        show("limits", "limits " + compact(body["limits"].toObject()));
}

void PluginConsole::printAppeared(const ThingDescriptors &descriptors)
{
    const auto jobs = m_site.daemon->findChildren<ThingSetupInfo *>();
    const bool early = std::any_of(jobs.cbegin(), jobs.cend(), [](const ThingSetupInfo *job) {
        return !job->isFinished() && job->thing()->thingClass().name == "vela"; // a refused job has no thing
    });
    for (const ThingDescriptor &descriptor : descriptors)
        show("announced", (early ? "early " : "appeared ") + describe(descriptor));
}

void PluginConsole::printFinishedJobs()
{
    QVector<QPair<QString, Job>> pending;
    for (const auto &[name, job] : qAsConst(m_jobs)) {
        if (job->text == "pending") {
            pending.append({name, job});
            continue;
        }
        print(name + ": " + job->text);
        for (const ThingDescriptor &offer : job->offers)
            print("offer " + describe(offer));
        if (name == "discovery")
            m_offers = job->offers;
    }
    m_jobs = pending;
}

/*! Shows each change of a state as "THING STATE VALUE", and of its maximum as "THING STATE max VALUE". */
void PluginConsole::watch(Thing *thing)
{
    QHash<StateTypeId, QVariant> maxima;
    const States states = thing->states();
    for (const State &state : states)
        maxima.insert(state.stateTypeId(), state.maxValue());
    connect(thing, &Thing::stateValueChanged, this,
            [this, thing, maxima](const StateTypeId &id, const QVariant &value, const QVariant &,
                                  const QVariant &max) mutable {
                const QString name = thing->name() + ' ' + thing->thingClass().stateTypes.findById(id).name;
                const bool hasMoved = std::exchange(maxima[id], max) != max;
                show("changes", name + (hasMoved ? " max " + max.toString() : ' ' + value.toString()));
            });
}

QString PluginConsole::describe(const ThingDescriptor &descriptor) const
{
    const ThingClass thingClass = m_site.daemon->thingClasses().findById(descriptor.thingClassId());
    const QString stem =
        QString("%1 \"%2\" \"%3\"").arg(thingClass.name, descriptor.title(), descriptor.description());
    return stem + " of " + descriptor.parentId().toString() + " for " + descriptor.thingId().toString() + ' '
        + paramTexts(thingClass, descriptor.params());
}

QString PluginConsole::paramTexts(const ThingClass &thingClass, const ParamList &params)
{
    Words texts;
    for (const Param &param : params)
        texts.append(thingClass.paramTypes.findById(param.paramTypeId()).name + '='
                     + param.value().toString());
    return texts.join(' ');
}

/*! The thing of that name, which must have these states. "gateway" is the first gateway, and "newest" the
    thing created last, kept or not. */
Thing *PluginConsole::thing(const QString &name, const Words &states) const
{
    const auto things = m_site.daemon->findChildren<Thing *>();
    const auto found = std::find_if(things.cbegin(), things.cend(), [&](const Thing *thing) {
        return thing->name() == name || (name == "gateway" && thing == m_site.gateway())
            || (name == "newest" && thing == things.constLast());
    });
    if (found == things.cend())
        qFatal("There is no thing \"%s\".", qPrintable(name));
    for (const QString &state : states) {
        if ((*found)->state(state).stateTypeId().isNull())
            qFatal("\"%s\" has no state \"%s\".", qPrintable(name), qPrintable(state));
    }
    return *found;
}

int main(int argc, char *argv[])
{
    const WatchedApplication application(argc, argv);
    qputenv("TMPDIR", QFile::encodeName(QDir::currentPath())); // which a transcript removes, whatever happens
    PluginConsole console;
    QTextStream input(stdin);
    input.setCodec("UTF-8");
    for (QString line; input.readLineInto(&line);)
        console.run(line);
    return 0;
}
