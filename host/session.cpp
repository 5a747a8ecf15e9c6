// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "session.h"

#include "arguments.h"
#include "thingjson.h"
#include "wallboxes.h"

#include <QCoreApplication>
#include <QDateTime>

using namespace std::chrono_literals;

namespace {

// Five polls
constexpr qint64 longestSilence = 10000; // ms

/*! All answers to a command that starts a job have these members, also when no job has begun. */
Message withStatus(Message message, Thing::ThingError status, const QString &displayMessage)
{
    message.json.insert(QStringLiteral("thingError"), errorName(status));
    message.json.insert(QStringLiteral("message"), displayMessage);
    return message;
}

} // namespace

Session::Session(Daemon *daemon, LineSource *source, Output *output)
    : m_daemon(daemon)
    , m_source(source)
    , m_output(output)
    , m_balancer(daemon)
    , m_context{daemon, &m_balancer}
{
    m_pauseTimer.setSingleShot(true);
    m_pauseTimer.setTimerType(Qt::PreciseTimer);
    connect(&m_pauseTimer, &QTimer::timeout, this, &Session::endPause);
    connect(&m_drawTimer, &QTimer::timeout, this, &Session::drawWallboxes);
    connect(m_source, &LineSource::ready, this, &Session::executeNext);
    m_sinceValues.start();
    reportEvents();
    QMetaObject::invokeMethod(this, &Session::executeNext, Qt::QueuedConnection);
}

void Session::reportEvents()
{
    connect(m_daemon, &Daemon::thingAdded, this,
            [this](const Thing *thing) { m_output->print(thingAddedEvent(thing)); });
    connect(m_daemon, &Daemon::thingRemoved, this,
            [this](const Thing *thing) { m_output->print(thingRemovedEvent(thing)); });
    connect(m_daemon, &Daemon::setupFinished, this,
            [this](const ThingSetupInfo *info) { m_output->print(setupFinishedEvent(info)); });
    connect(m_daemon, &Daemon::actionExecuted, this, [this](const Thing *thing) {
        const Things siblings = m_daemon->configuredThings().filterByParentId(thing->parentId());
        for (const Thing *sibling : siblings)
            m_managed.insert(sibling->id());
    });
    connect(m_daemon, &Daemon::stateChanged, this,
            [this](const Thing *thing, const StateTypeId &id, const QVariant &value) {
                if (!thing->thingClass().stateTypes.findById(id).writable)
                    m_sinceValues.start();
                m_output->print(stateChangedEvent(thing, id, value));
            });
}

void Session::executeNext()
{
    for (;;) {
        if (m_isOpenEnded && (m_source->hasLine() || m_source->isAtEnd()))
            endPause();
        if (m_quit || m_isPending || !m_source->hasLine())
            break;
        execute(m_source->takeLine());
    }
    if (m_quit || (m_source->isAtEnd() && !m_isPending))
        QCoreApplication::quit();
    else if (!m_isPending)
        m_source->awaitCommand();
}

void Session::execute(const QString &line)
{
    const auto words = splitWords(line);
    if (words && words->isEmpty())
        return;
    m_name = words ? words->first() : line.trimmed().section(QLatin1Char(' '), 0, 0);
    m_command = findCommand(m_name);
    if (!words)
        return refuse(words.error());
    if (!m_command)
        return refuse(QStringLiteral("There is no command \"%1\"; there are %2.")
                          .arg(m_name, commandNames().join(QStringLiteral(", "))));
    m_name = QLatin1String(m_command->name);
    const QStringList arguments = words->mid(1);
    if (!m_command->takes(arguments.size()))
        return refuse(QStringLiteral("Usage: ") + m_command->usage().trimmed());
    const auto run = [&](const auto function) {
        const auto outcome = function(&m_context, arguments);
        if (outcome)
            answer(*outcome);
        else
            refuse(outcome.error());
    };
    std::visit(run, m_command->run);
}

void Session::answer(const std::variant<Message, Pause> &result)
{
    std::visit([this](const auto &value) { answer(value); }, result);
}

void Session::answer(const StartedJob &started)
{
    m_isPending = true;
    connect(started.job, &ThingJob::finished, this, [this, job = started.job, complete = started.message] {
        answer(withStatus(complete(), job->status(), job->displayMessage()), errorText(job));
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

void Session::interrupt()
{
    if (m_pauseTimer.isActive() || m_isOpenEnded)
        endPause();
}

void Session::enter()
{
    if (m_isOpenEnded)
        endPause();
}

void Session::endPause()
{
    m_isOpenEnded = false;
    m_pauseTimer.stop();
    m_drawTimer.stop();
    answer(Message());
}

void Session::refuse(const QString &reason)
{
    const bool startsJob = m_command && m_command->startsJob();
    answer(startsJob ? withStatus({}, Thing::ThingErrorInvalidParameter, reason) : Message(), reason);
}

void Session::answer(Message message, const QString &error)
{
    m_daemon->commit(); // so that the answer does not overtake events
    message.json.insert(QStringLiteral("answer"), m_name);
    message.json.insert(QStringLiteral("ok"), error.isEmpty());
    if (!error.isEmpty()) {
        m_hasFailed = true;
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
    m_output->draw({wallboxesOf(m_daemon->configuredThings()), m_managed, QDateTime::currentSecsSinceEpoch(),
                    !m_sinceValues.hasExpired(longestSilence)});
}
