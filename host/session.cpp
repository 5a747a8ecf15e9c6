// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "session.h"

#include "arguments.h"
#include "thingjson.h"

#include <algorithm>
#include <unistd.h>

using namespace std::chrono_literals;

namespace {

QString commandNames()
{
    QStringList names;
    for (const Command &command : commands())
        names.append(QLatin1String(command.name));
    return names.join(QStringLiteral(", "));
}

} // namespace

Session::Session(Daemon *daemon, Output *output, QObject *parent)
    : QObject(parent)
    , m_daemon(daemon)
    , m_output(output)
    , m_context{daemon, {}}
    , m_reader(STDIN_FILENO)
{
    m_pauseTimer.setSingleShot(true);
    m_pauseTimer.setTimerType(Qt::PreciseTimer);
    connect(&m_pauseTimer, &QTimer::timeout, this, &Session::endPause);
    connect(&m_drawTimer, &QTimer::timeout, this, &Session::drawWallboxes);
    connect(&m_reader, &LineReader::ready, this, &Session::executeNext);
    reportEvents();
    m_output->awaitCommand();
}

void Session::reportEvents()
{
    connect(m_daemon, &Daemon::thingAdded, this,
            [this](const Thing *thing) { m_output->print(thingAddedEvent(thing)); });
    connect(m_daemon, &Daemon::thingRemoved, this,
            [this](const Thing *thing) { m_output->print(thingRemovedEvent(thing)); });
    connect(m_daemon, &Daemon::setupFinished, this,
            [this](const ThingSetupInfo *info) { m_output->print(setupFinishedEvent(info)); });
    connect(m_daemon, &Daemon::stateChanged, this,
            [this](const Thing *thing, const StateTypeId &id, const QVariant &value) {
                m_output->print(stateChangedEvent(thing, id, value));
            });
}

void Session::executeNext()
{
    for (;;) {
        if (m_isOpenEnded && (m_reader.hasLine() || m_reader.isAtEnd()))
            endPause();
        if (m_quit || m_isPending || !m_reader.hasLine())
            break;
        m_output->commandRead();
        execute(m_reader.takeLine());
    }
    if (m_quit || (m_reader.isAtEnd() && !m_isPending))
        emit ended();
    else if (!m_isPending)
        m_output->awaitCommand();
}

void Session::execute(const QString &line)
{
    const auto words = splitWords(line);
    if (words && words->isEmpty())
        return;
    m_name = words ? words->first() : line.trimmed().section(QLatin1Char(' '), 0, 0);
    const auto command = std::find_if(commands().cbegin(), commands().cend(), [this](const Command &known) {
        return m_name == QLatin1String(known.name);
    });
    m_command = command == commands().cend() ? nullptr : &*command;
    if (!words)
        return refuse(words.error());
    if (!m_command)
        return refuse(
            QStringLiteral("There is no command \"%1\"; there are %2.").arg(m_name, commandNames()));
    const QStringList arguments = words->mid(1);
    if (!m_command->takes(arguments.size()))
        return refuse(QStringLiteral("Usage: ") + m_command->usage().trimmed());
    std::visit(
        [&](auto function) {
            const auto result = function(&m_context, arguments);
            if (result)
                answer(*result);
            else
                refuse(result.error());
        },
        m_command->run);
}

void Session::answer(const StartedJob &started)
{
    m_isPending = true;
    connect(started.job, &ThingJob::finished, this, [this, job = started.job, complete = started.message] {
        answerJob(complete(), job->status(), job->displayMessage(), errorText(job));
    });
}

void Session::answer(const Pause &pause)
{
    m_isPending = true;
    m_isOpenEnded = !pause.time;
    if (pause.time)
        m_pauseTimer.start(*pause.time);
    if (pause.showsWallboxes) {
        drawWallboxes();
        m_drawTimer.start(1s);
    }
}

void Session::endPause()
{
    m_isOpenEnded = false;
    m_pauseTimer.stop();
    m_drawTimer.stop();
    answer(Message());
}

/*! All answers to a command that starts a job have the same members, also when no job has begun. */
void Session::refuse(const QString &reason)
{
    if (m_command && m_command->startsJob())
        answerJob({}, Thing::ThingErrorInvalidParameter, reason, reason);
    else
        answer(Message(), reason);
}

void Session::answerJob(Message message, Thing::ThingError status, const QString &displayMessage,
                        const QString &error)
{
    message.json.insert(QStringLiteral("thingError"), errorName(status));
    message.json.insert(QStringLiteral("message"), displayMessage);
    answer(message, error);
}

void Session::answer(Message message, const QString &error)
{
    m_daemon->commit(); // so that the answer does not overtake events
    message.json.insert(QStringLiteral("answer"), m_name);
    message.json.insert(QStringLiteral("ok"), error.isEmpty());
    if (!error.isEmpty()) {
        message.json.insert(QStringLiteral("error"), error);
        message.lines = QStringList{QStringLiteral("Error: ") + error};
    }
    m_output->print(message);
    m_quit = message.isLast;
    if (m_isPending)
        QMetaObject::invokeMethod(this, &Session::executeNext, Qt::QueuedConnection);
    m_isPending = false;
}

void Session::drawWallboxes()
{
    Things wallboxes;
    const Things things = m_daemon->configuredThings();
    for (Thing *thing : things) {
        if (thing->thingClass().interfaces.contains(QLatin1String("evcharger")))
            wallboxes.append(thing);
    }
    std::sort(wallboxes.begin(), wallboxes.end(),
              [](const Thing *a, const Thing *b) { return a->name() < b->name(); });
    m_output->draw(wallboxes);
}
