// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "completion.h"

#include "arguments.h"
#include "commands.h"

namespace {

/*! Where the last word of \a text begins: after the last blank that is not within quotes. */
int lastWord(const QString &text)
{
    int begin = text.size();
    while (begin > 0 && (text.at(begin - 1) != QLatin1Char(' ') || !splitWords(text.left(begin - 1))))
        --begin;
    return begin;
}

/*! \a typed without its quotes, the last of which may still be open. */
QString unquoted(const QString &typed)
{
    for (const char *end : {"", "\"", "'"}) {
        const auto words = splitWords(typed + QLatin1String(end));
        if (words)
            return words->value(0);
    }
    return typed;
}

/*! The opposite: with quotes only if \a word needs them. */
QString quoted(QString word)
{
    if (splitWords(word) == QStringList{word})
        return word;
    word.replace(QLatin1Char('\\'), QLatin1String("\\\\")).replace(QLatin1Char('"'), QLatin1String("\\\""));
    return QStringLiteral("\"%1\"").arg(word);
}

QStringList thingNames(const Things &things)
{
    QStringList result;
    for (const Thing *thing : things)
        result.append(thing->name());
    return result;
}

QStringList valuesOf(const Thing *thing, const QString &stateName)
{
    if (thing->state(stateName).value().userType() != QMetaType::Bool)
        return {};
    return {QStringLiteral("true"), QStringLiteral("false")};
}

QStringList assignmentsOf(const ThingClass &thingClass)
{
    QStringList result = nameList(thingClass.discoveryParamTypes);
    for (QString &name : result)
        name += QLatin1Char('=');
    return result;
}

/*! What can follow \a words, by the name of the next argument in the command's usage. */
QStringList nextWords(const Daemon &daemon, const QStringList &words)
{
    if (words.isEmpty())
        return commandNames();
    const Command *command = findCommand(words.constFirst());
    const QString argument = command ? command->argument(words.size() - 1) : QString();
    if (argument == QLatin1String("CLASS"))
        return nameList(daemon.thingClasses());
    if (argument == QLatin1String("PARAM=VALUE"))
        return assignmentsOf(daemon.thingClasses().findByName(words.at(1)));
    if (argument == QLatin1String("THING"))
        return thingNames(daemon.configuredThings());
    const auto thing = findThing(daemon.configuredThings(), words.value(1));
    if (!thing)
        return {};
    if (argument == QLatin1String("STATE"))
        return nameList((*thing)->thingClass().actionTypes);
    return argument == QLatin1String("VALUE") ? valuesOf(*thing, words.at(2)) : QStringList();
}

} // namespace

Completions completionsFor(const Daemon &daemon, const QString &before)
{
    const int begin = lastWord(before);
    const auto words = splitWords(before.left(begin));
    Completions result{before.mid(begin), {}};
    const QString typed = unquoted(result.typed);
    const QStringList candidates = nextWords(daemon, words.value_or(QStringList()));
    for (const QString &word : candidates) {
        if (word.startsWith(typed))
            result.words.append(quoted(word));
    }
    return result;
}
