// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef COMMANDS_H
#define COMMANDS_H

#include "daemon.h"
#include "loadbalancer.h"
#include "messages.h"

#include <functional>
#include <optional>
#include <tl/expected.hpp>
#include <variant>

/*! What commands work on. */
struct CommandContext
{
    Daemon *daemon;
    LoadBalancer *balancer;
    ThingDescriptors offers = {}; //!< of the last discovery
};

/*! A job that a command has started. The answer follows when it has finished; \a message returns the command's
    part of it. */
struct StartedJob
{
    ThingJob *job;
    std::function<Message()> message;
};

/*! The answer comes when the time is over. */
struct Pause
{
    std::optional<std::chrono::milliseconds> time; //!< none: at the next line or the end of the input
    bool showsWallboxes = false;                   //!< meanwhile, every second
};

// Each is a command's result, or the sentence that says what is wrong with the arguments.
using Outcome = tl::expected<std::variant<Message, Pause>, QString>;
using JobStart = tl::expected<StartedJob, QString>;

/*! A command of the host: a row of the table at the end of the source. */
struct Command
{
    using Function = Outcome (*)(CommandContext *context, const QStringList &arguments);
    using JobFunction = JobStart (*)(CommandContext *context, const QStringList &arguments);

    const char *name;
    const char *arguments; //!< as the usage shows them; optional ones in brackets
    const char *summary;
    std::variant<Function, JobFunction> run; //!< a started job needs the context until it has finished

    bool startsJob() const { return std::holds_alternative<JobFunction>(run); }
    QString usage() const;
    /*! The name of the argument at \a index, counted from 0, without brackets; empty if there is none. */
    QString argument(int index) const;
    bool takes(int argumentCount) const;
};

const QVector<Command> &commands();
QStringList commandNames();
/*! The command with that name or that other name; null if there is none. */
const Command *findCommand(const QString &name);

#endif // COMMANDS_H
