// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef PLUGINMETADATA_H
#define PLUGINMETADATA_H

#include "types/thingclass.h"

#include <QJsonObject>

/*! The metadata document that is compiled into a plugin: its id and its thing classes, in the order of the
    document. Plain data. */
class LIBNYMEA_EXPORT PluginMetadata
{
public:
    /*! Invalid metadata, of no plugin. */
    PluginMetadata() = default;

    /*! Reads \a document. What it says wrongly is listed in validationErrors(). A member that may be missing has
        its default also if it is of the wrong kind. Members that this library does not know, such as
        "actionTypes", "eventTypes" and "settingsTypes", are ignored: things have only states, and the actions
        that set the writable ones. */
    explicit PluginMetadata(const QJsonObject &document);

    /*! Whether there is no error. The daemon refuses a plugin with invalid metadata. */
    bool isValid() const { return m_validationErrors.isEmpty(); }
    /*! One sentence for each error, with its place in the document; empty if the metadata is valid. */
    QStringList validationErrors() const { return m_validationErrors; }

    PluginId pluginId() const { return m_pluginId; }
    /*! The thing classes of all vendors in the document. */
    ThingClasses thingClasses() const { return m_thingClasses; }

private:
    PluginId m_pluginId;
    ThingClasses m_thingClasses;
    QStringList m_validationErrors{QStringLiteral("No metadata has been read.")};
};

#endif // PLUGINMETADATA_H
