// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

// The file in which the host keeps its things, as whatever may have been done to it has left it.

#include "fuzzing.h"
#include "thingstore.h"
#include "values.h"

#include <QFile>
#include <QJsonDocument>
#include <QSet>
#include <QTemporaryDir>

namespace {

/*! Everything that is stored of a thing; its values are of the types of its class. */
QVariantList recordOf(const Thing *thing)
{
    QVariantList record{thing->id(), thing->thingClassId(), thing->name(), thing->parentId()};
    const ThingClass thingClass = thing->thingClass();
    for (const ParamType &type : thingClass.paramTypes) {
        record.append(thing->paramValue(type.id));
        require(checkValue(record.constLast(), ruleFor(type)).error.isEmpty(),
                "a parameter keeps to its rule");
    }
    for (const StateType &type : thingClass.stateTypes) {
        record.append(type.cached ? thing->stateValue(type.id) : type.defaultValue);
        require(record.constLast().userType() == type.type, "a state's value is of its type");
    }
    return record;
}

/*! The things in the file, sound as a whole; none when the file cannot be used. */
QVector<QVariantList> read(ThingStore *store, QObject *owner, Things *things)
{
    const QString error = store->read(pluginMetadata().thingClasses(), owner, things);
    require(error.isEmpty() || things->isEmpty(), "a file that cannot be used gives no things");
    QVector<QVariantList> records;
    QSet<QUuid> ids;
    for (const Thing *thing : qAsConst(*things)) {
        records.append(recordOf(thing));
        ids.insert(thing->id());
        require(ids.contains(thing->parentId()) || !things->findById(thing->parentId()),
                "parents come first");
    }
    require(!ids.contains(QUuid()) && ids.size() == things->size(), "each thing has an id of its own");
    return records;
}

/*! Whether Qt alone would not write \a json as it has read it: names lose a byte order mark in front. */
bool isChangedByQt(const QByteArray &json)
{
    const QJsonDocument document = QJsonDocument::fromJson(json);
    return QJsonDocument::fromJson(document.toJson()) != document;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const auto *folder = new QTemporaryDir; // lives to the end of the process
    QFile file(folder->filePath(QStringLiteral("things.json")));
    require(file.open(QIODevice::WriteOnly) && file.write(inputBytes(data, size)) == qint64(size),
            "the file can be written");
    file.close();

    QObject owner;
    Things things;
    ThingStore store(folder->path());
    const QVector<QVariantList> records = read(&store, &owner, &things);
    if (things.isEmpty())
        return 0;
    require(store.write(things).isEmpty(), "what was read can be stored");
    ThingStore nextStore(folder->path());
    Things nextThings;
    require(read(&nextStore, &owner, &nextThings) == records || isChangedByQt(inputBytes(data, size)),
            "what was stored can be read");
    return 0;
}
