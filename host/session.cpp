// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "session.h"

#include <unistd.h>

Session::Session(Daemon *daemon, Output *output, QObject *parent)
    : QObject(parent)
    , m_output(output)
    , m_commands(daemon, output)
    , m_reader(STDIN_FILENO)
{
    reportEvents(daemon);
    connect(&m_reader, &LineReader::lineRead, this, &Session::onLineRead);
    connect(&m_reader, &LineReader::ended, this, [this] {
        m_inputEnded = true;
        m_commands.interrupt();
        executeNext();
    });
    connect(&m_commands, &Commands::answered, this, &Session::executeNext, Qt::QueuedConnection);
    connect(&m_commands, &Commands::quitRequested, this, [this] { m_quit = true; });
    m_output->awaitCommand();
}

void Session::reportEvents(Daemon *daemon)
{
    connect(daemon, &Daemon::thingAdded, this, [this](const Thing *thing) { m_output->thingAdded(thing); });
    connect(daemon, &Daemon::thingRemoved, this,
            [this](const Thing *thing) { m_output->thingRemoved(thing); });
    connect(daemon, &Daemon::setupFinished, this,
            [this](const ThingSetupInfo *info) { m_output->setupFinished(info); });
    connect(daemon, &Daemon::stateChanged, this,
            [this](const Thing *thing, const StateTypeId &stateTypeId, const QVariant &value) {
                m_output->stateChanged(thing, thing->thingClass().stateTypes.findById(stateTypeId), value);
            });
}

void Session::onLineRead(const QString &line)
{
    m_lines.enqueue(line);
    m_commands.interrupt();
    executeNext();
}

void Session::executeNext()
{
    while (!m_quit && !m_commands.isPending() && !m_lines.isEmpty()) {
        m_output->commandRead();
        m_commands.execute(m_lines.dequeue());
        if (!m_lines.isEmpty() || m_inputEnded)
            m_commands.interrupt();
    }
    // More input is not needed before the pending command is answered; a "watch" may end with the next line.
    m_reader.setPaused(!m_lines.isEmpty());
    if (m_quit || (m_inputEnded && !m_commands.isPending()))
        emit ended();
    else if (!m_commands.isPending())
        m_output->awaitCommand();
}
