// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "thinglookup.h"

#include <algorithm>

namespace {

QString idText(const Thing *thing)
{
    return thing->id().toString(QUuid::WithoutBraces);
}

/*! A few of the things by name, and by id where the name alone would not tell. */
QString listed(const Things &things)
{
    constexpr int most = 8;
    QStringList texts;
    const QList<Thing *> first = things.mid(0, most);
    for (const Thing *thing : first) {
        const auto count = std::count_if(things.cbegin(), things.cend(), [thing](const Thing *other) {
            return other->name() == thing->name();
        });
        texts.append(count == 1 ? thing->name()
                                : QStringLiteral("%1 (%2)").arg(thing->name(), idText(thing)));
    }
    if (things.size() > most)
        texts.append(QStringLiteral("…"));
    return texts.join(QStringLiteral(", "));
}

template <typename Predicate> Things matching(const Things &things, Predicate predicate)
{
    Things result;
    std::copy_if(things.cbegin(), things.cend(), std::back_inserter(result), predicate);
    return result;
}

} // namespace

FoundThing findThing(const Things &things, const QString &text)
{
    Things found = matching(things, [&text](const Thing *thing) {
        return thing->name() == text || idText(thing) == text || thing->id().toString() == text;
    });
    if (found.isEmpty() && !text.isEmpty())
        found = matching(things, [&text](const Thing *thing) {
            return thing->name().startsWith(text) || idText(thing).startsWith(text);
        });
    if (found.size() == 1)
        return {found.first(), QString()};
    if (found.size() > 1)
        return {nullptr, QStringLiteral("\"%1\" could be any of %2.").arg(text, listed(found))};
    if (things.isEmpty())
        return {nullptr, QStringLiteral("There is no thing \"%1\"; there are no things yet.").arg(text)};
    return {nullptr, QStringLiteral("There is no thing \"%1\"; there are %2.").arg(text, listed(things))};
}
