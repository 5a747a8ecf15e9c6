// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef PLUGINMETADATA_H
#define PLUGINMETADATA_H

#include "types/thingclass.h"
#include "types/vendor.h"

#include <QJsonObject>

/*! What a plugin says about itself in its metadata document: vendors and thing classes. Plain data. */
class LIBNYMEA_EXPORT PluginMetadata
{
public:
    PluginMetadata() = default;

    /*! Reads \a document. Whatever cannot be used is left out and named by validationErrors(). */
    explicit PluginMetadata(const QJsonObject &document);

    /*! Whether the document could be used whole. */
    bool isValid() const;
    /*! One sentence for each thing that is wrong, naming where; empty when valid. */
    QStringList validationErrors() const;

    PluginId pluginId() const;
    QString pluginName() const;
    QString pluginDisplayName() const;
    Vendors vendors() const;
    ThingClasses thingClasses() const;

private:
    PluginId m_pluginId;
    QString m_pluginName;
    QString m_pluginDisplayName;
    Vendors m_vendors;
    ThingClasses m_thingClasses;
    QStringList m_validationErrors{QStringLiteral("No metadata has been read.")};
};

#endif // PLUGINMETADATA_H
