// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "thingstore.h"

#include "hostlogging.h"
#include "storagefolder.h"
#include "values.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace {

QJsonObject toJson(const Thing *thing)
{
    QJsonObject params;
    const ParamList paramList = thing->params();
    for (const Param &param : paramList)
        params.insert(idText(param.paramTypeId()), QJsonValue::fromVariant(param.value()));

    QJsonObject states;
    const StateTypes stateTypes = thing->thingClass().stateTypes;
    for (const StateType &type : stateTypes) {
        if (type.cached)
            states.insert(idText(type.id), QJsonValue::fromVariant(thing->stateValue(type.id)));
    }

    return {
        {QStringLiteral("id"),       idText(thing->id())                                               },
        {QStringLiteral("class"),    idText(thing->thingClassId())                                     },
        {QStringLiteral("name"),     thing->name()                                                     },
        {QStringLiteral("parentId"), thing->parentId().isNull() ? QString() : idText(thing->parentId())},
        {QStringLiteral("params"),   params                                                            },
        {QStringLiteral("states"),   states                                                            }
    };
}

/*! The value of \a id in \a values. Invalid if it is missing, or if it does not follow \a rule, which logs a
    warning. */
QVariant storedValue(const QJsonObject &values, const QUuid &id, const ParamType &rule)
{
    if (!values.contains(idText(id)))
        return {};
    const auto checked = checkValue(values.value(idText(id)).toVariant(), rule);
    if (!checked)
        qCWarning(dcHost).noquote() << "The stored value" << idText(id) << "is not used: it"
                                    << checked.error();
    return checked.value_or(QVariant());
}

/*! A thing as \a json describes it; a value that is missing or no longer fits leaves the default. */
Thing *fromJson(const QJsonObject &json, const ThingClass &thingClass, QObject *owner)
{
    auto *thing = new Thing(thingClass, ThingId(json.value(QLatin1String("id")).toString()), owner);
    thing->setName(json.value(QLatin1String("name")).toString(thing->name()));
    thing->setParentId(ThingId(json.value(QLatin1String("parentId")).toString()));

    const QJsonObject params = json.value(QLatin1String("params")).toObject();
    for (const ParamType &type : thingClass.paramTypes) {
        const QVariant value = storedValue(params, type.id, type);
        if (value.isValid())
            thing->setParamValue(type.id, value);
    }
    const QJsonObject states = json.value(QLatin1String("states")).toObject();
    for (const StateType &type : thingClass.stateTypes) {
        // Only the type is checked: limits are for actions, and the plugin changes them.
        ParamType rule;
        rule.type = type.type;
        const QVariant value = storedValue(states, type.id, rule);
        if (type.cached && value.isValid())
            thing->setStateValue(type.id, value);
    }
    return thing;
}

/*! \a things, each after its parent. If parents form a cycle, one of them loses its parent. */
Things parentsFirst(Things things)
{
    Things sorted;
    while (!things.isEmpty()) {
        const auto isFree = [&things](const Thing *thing) { return !things.findById(thing->parentId()); };
        auto next = std::find_if(things.begin(), things.end(), isFree);
        if (next == things.end()) {
            next = things.begin();
            qCWarning(dcHost) << *next << "is stored as its own ancestor and loses its parent";
            (*next)->setParentId(ThingId());
        }
        sorted.append(*next);
        things.erase(next);
    }
    return sorted;
}

/*! The list of things in \a content, or what keeps it from being one. */
tl::expected<QJsonArray, QString> parse(const QByteArray &content)
{
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(content, &parseError);
    if (parseError.error != QJsonParseError::NoError)
        return tl::unexpected(parseError.errorString());
    const QJsonValue things = document.object().value(QLatin1String("things"));
    if (!things.isArray())
        return tl::unexpected(QStringLiteral("there is no list of things"));
    QSet<QUuid> ids;
    const QJsonArray entries = things.toArray();
    for (const QJsonValue &entry : entries) {
        const QUuid id(entry.toObject().value(QLatin1String("id")).toString());
        if (id.isNull())
            return tl::unexpected(QStringLiteral("a thing has no id"));
        if (ids.contains(id))
            return tl::unexpected(QStringLiteral("two things have the id %1").arg(id.toString()));
        ids.insert(id);
    }
    return entries;
}

/*! Replaces the file \a name in one step. Returns an empty text, or why the old file is still there. */
QString replaceFile(const QString &name, const QByteArray &content)
{
    const QString newName = name + QLatin1String(newFileSuffix);
    QFile file(newName);
    // Unbuffered: the write itself meets a full disk. QSaveFile in Qt 5 writes less than 16 kB only when it
    // closes the file, and does not notice there that it failed.
    const bool isDone =
        openNoFollow(&file, QIODevice::WriteOnly | QIODevice::Unbuffered, O_WRONLY | O_CREAT | O_TRUNC)
        && file.write(content) == content.size()
        && (::fsync(file.handle()) == 0 || errno == EINVAL) // EINVAL: the file system cannot sync
        && std::rename(QFile::encodeName(newName).constData(), QFile::encodeName(name).constData()) == 0;
    // Read now, before another call changes it. QFile reports no error if it has written a part of the content.
    const int error = errno;
    if (isDone)
        return {};
    QFile::remove(newName);
    return qt_error_string(error);
}

} // namespace

ThingStore::ThingStore(const QString &folder)
    : m_fileName(QDir(folder).filePath(QStringLiteral("things.json")))
{
}

QString ThingStore::read(const ThingClasses &classes, QObject *owner, Things *things)
{
    QFile file(m_fileName);
    if (!file.exists())
        return {};
    const QString error = QStringLiteral("Cannot use the stored things in %1: %2.");
    if (!openNoFollow(&file, QIODevice::ReadOnly, O_RDONLY))
        return error.arg(m_fileName, qt_error_string(errno));
    m_content = file.readAll();
    const auto entries = parse(m_content);
    if (!entries)
        return error.arg(m_fileName, entries.error());

    Things stored;
    for (const QJsonValue &entry : *entries)
        restore(entry.toObject(), classes, owner, &stored);
    things->append(parentsFirst(stored));
    return {};
}

void ThingStore::restore(const QJsonObject &entry, const ThingClasses &classes, QObject *owner,
                         Things *things)
{
    const ThingClassId classId(entry.value(QLatin1String("class")).toString());
    const ThingClass thingClass = classes.findById(classId);
    if (!thingClass.id.isNull())
        return things->append(fromJson(entry, thingClass, owner));
    m_unknownThings.append(entry);
    qCWarning(dcHost).noquote() << "The plugin has no class for the stored thing"
                                << entry.value(QLatin1String("name")).toString()
                                << "- it stays stored and is not set up.";
}

QString ThingStore::write(const Things &things)
{
    QJsonArray entries;
    for (const Thing *thing : things)
        entries.append(toJson(thing));
    for (const QJsonValue &unknownThing : qAsConst(m_unknownThings))
        entries.append(unknownThing);
    const QJsonObject document{
        {QStringLiteral("things"), entries}
    };
    const QByteArray content = QJsonDocument(document).toJson();
    if (content == m_content)
        return {};

    const QString reason = replaceFile(m_fileName, content);
    if (!reason.isEmpty())
        return QStringLiteral("Cannot store the things in %1: %2.").arg(m_fileName, reason);
    m_content = content;
    return {};
}
