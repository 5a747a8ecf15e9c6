// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef THINGSTORE_H
#define THINGSTORE_H

#include <integrations/thing.h>

#include <QJsonArray>
#include <QJsonObject>

/*! The file things.json: the things with their parameters and cached states, by their ids in the metadata. */
class ThingStore
{
public:
    explicit ThingStore(const QString &folder);

    /*! Makes the stored things, \a owner's children, parents before their children, and appends them to
        \a things. Returns an empty text, or the sentence that says why the file cannot be used; then there
        are no things. A thing whose class is not among \a classes stays in the file, with a warning. */
    [[nodiscard]] QString read(const ThingClasses &classes, QObject *owner, Things *things);

    /*! Replaces the file in one step, so that there is always a whole one; does nothing when it would not
        change. Returns an empty text, or the sentence that says why the file could not be written. */
    [[nodiscard]] QString write(const Things &things);

private:
    void restore(const QJsonObject &entry, const ThingClasses &classes, QObject *owner, Things *things);

    const QString m_fileName;
    QByteArray m_content;       // of the file
    QJsonArray m_unknownThings; // stored things of classes that the plugin does not have
};

#endif // THINGSTORE_H
