// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "arguments.h"

#include "values.h"

#include <algorithm>
#include <glib.h>

namespace {

template <typename Predicate> Things matching(const Things &things, Predicate predicate)
{
    Things result;
    std::copy_if(things.cbegin(), things.cend(), std::back_inserter(result), predicate);
    return result;
}

/*! Names a few of the things, with their ids if a name occurs more than once. */
QString listed(const Things &things)
{
    constexpr int most = 8;
    QStringList texts;
    const Things first = things.mid(0, most);
    for (const Thing *thing : first) {
        const QString name = thing->name();
        const Things same = matching(things, [&](const Thing *other) { return other->name() == name; });
        texts.append(same.size() == 1 ? name : QStringLiteral("%1 (%2)").arg(name, idText(thing->id())));
    }
    if (things.size() > most)
        texts.append(QStringLiteral("…"));
    return texts.join(QStringLiteral(", "));
}

} // namespace

tl::expected<QStringList, QString> splitWords(const QString &line)
{
    QString text = line;
    text.replace(QLatin1Char('\r'), QLatin1Char(' '));         // to GLib a part of a word
    text.replace(QChar(), QChar(QChar::ReplacementCharacter)); // to GLib the end of the line
    GError *error = nullptr;
    gchar **words = nullptr;
    g_shell_parse_argv(text.toUtf8().constData(), nullptr, &words, &error);
    const bool isRefused = error && error->code != G_SHELL_ERROR_EMPTY_STRING;
    QStringList result;
    for (gchar **word = words; word && *word; ++word)
        result.append(QString::fromUtf8(*word));
    g_strfreev(words);
    g_clear_error(&error); // Its message would be in the language of the environment.
    if (isRefused)
        return tl::unexpected(
            QStringLiteral("A quote (' or \") is not closed, or the line ends with a backslash."));
    return result;
}

tl::expected<ParamList, QString> readAssignments(const QStringList &assignments, const ParamTypes &types)
{
    ParamList params;
    for (const QString &assignment : assignments) {
        const QString name = assignment.section(QLatin1Char('='), 0, 0);
        const ParamType type = types.findByName(name);
        if (!assignment.contains(QLatin1Char('=')))
            return tl::unexpected(QStringLiteral("\"%1\" must read PARAM=VALUE.").arg(assignment));
        if (type.id.isNull())
            return tl::unexpected(
                QStringLiteral("There is no parameter \"%1\"; there are %2.").arg(name, namesOf(types)));
        if (params.hasParam(type.id))
            return tl::unexpected(QStringLiteral("Parameter %1 is given twice.").arg(name));
        params.append(Param(type.id, typedValue(assignment.section(QLatin1Char('='), 1), type.type)));
    }
    return checkParams(params, types);
}

tl::expected<std::chrono::milliseconds, QString> readSeconds(const QString &text)
{
    constexpr double longest = 86400;
    bool isNumber = false;
    const double seconds = text.toDouble(&isNumber);
    if (!isNumber || !(seconds >= 0 && seconds <= longest))
        return tl::unexpected(
            QStringLiteral("SECONDS must be a number from 0 to %1, not \"%2\".").arg(longest).arg(text));
    return std::chrono::milliseconds(qRound64(seconds * 1000));
}

tl::expected<Thing *, QString> findThing(const Things &things, const QString &text)
{
    Things found = matching(things, [&text](const Thing *thing) {
        return thing->name() == text || idText(thing->id()) == text || thing->id().toString() == text;
    });
    if (found.isEmpty() && !text.isEmpty())
        found = matching(things, [&text](const Thing *thing) {
            return thing->name().startsWith(text) || idText(thing->id()).startsWith(text);
        });
    if (found.size() == 1)
        return found.first();
    if (found.size() > 1)
        return tl::unexpected(QStringLiteral("\"%1\" could be any of %2.").arg(text, listed(found)));
    return tl::unexpected(
        QStringLiteral("There is no thing \"%1\"; there are %2.")
            .arg(text, things.isEmpty() ? QStringLiteral("no things yet") : listed(things)));
}
