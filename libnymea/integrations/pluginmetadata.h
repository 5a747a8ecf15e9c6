// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef PLUGINMETADATA_H
#define PLUGINMETADATA_H

#include "types/thingclass.h"

#include <QJsonObject>

/*! What a plugin says about itself in the metadata document that is compiled into it: its id and its thing
    classes, in the order of the document. Plain data. */
class LIBNYMEA_EXPORT PluginMetadata
{
public:
    /*! Of no plugin; not valid. */
    PluginMetadata() = default;

    /*! Reads \a document. Whatever cannot be used is left out and named by validationErrors(). */
    explicit PluginMetadata(const QJsonObject &document);

    /*! Whether all of the document could be used. The daemon refuses a plugin whose metadata is not valid. */
    bool isValid() const { return m_validationErrors.isEmpty(); }
    /*! One sentence for each thing that is wrong, which says where; empty if the metadata is valid. */
    QStringList validationErrors() const { return m_validationErrors; }

    PluginId pluginId() const { return m_pluginId; }
    /*! Those of all vendors in the document. */
    ThingClasses thingClasses() const { return m_thingClasses; }

private:
    PluginId m_pluginId;
    ThingClasses m_thingClasses;
    QStringList m_validationErrors{QStringLiteral("No metadata has been read.")};
};

#endif // PLUGINMETADATA_H
