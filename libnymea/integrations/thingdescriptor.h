// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef THINGDESCRIPTOR_H
#define THINGDESCRIPTOR_H

#include "types/param.h"

/*! A possible thing, which a discovery offers or a plugin announces. Plain data: there is no thing until the
    daemon creates one of this class with these parameters and sets it up. */
class LIBNYMEA_EXPORT ThingDescriptor
{
public:
    explicit ThingDescriptor(const ThingClassId &thingClassId = ThingClassId(),
                             const QString &title = QString(), const QString &description = QString(),
                             const ThingId &parentId = ThingId())
        : m_thingClassId(thingClassId)
        , m_title(title)
        , m_description(description)
        , m_parentId(parentId)
    {
    }

    /*! The daemon refuses a class that the plugin does not have, with ThingErrorThingClassNotFound. */
    ThingClassId thingClassId() const { return m_thingClassId; }

    /*! The name of the new thing. If it is empty, the display name of the class is used. */
    QString title() const { return m_title; }
    void setTitle(const QString &title) { m_title = title; }

    /*! Distinguishes offers with the same title. */
    QString description() const { return m_description; }
    void setDescription(const QString &description) { m_description = description; }

    /*! The parent of the new thing, with which it is removed; null for none. Refused with
        ThingErrorThingNotFound if it does not exist. */
    ThingId parentId() const { return m_parentId; }
    void setParentId(const ThingId &parentId) { m_parentId = parentId; }

    /*! An existing thing, which gets the parameters and is set up again; null to create a new one. Refused
        with ThingErrorThingNotFound if there is no such thing of this class. */
    ThingId thingId() const { return m_thingId; }
    void setThingId(const ThingId &thingId) { m_thingId = thingId; }

    /*! A parameter that is left out has its default value in a new thing, and keeps its value in an existing
        one. Refused with ThingErrorInvalidParameter if the class has no such parameter, or if a value cannot be
        converted to its type or is out of range. */
    ParamList params() const { return m_params; }
    void setParams(const ParamList &params) { m_params = params; }

private:
    ThingClassId m_thingClassId;
    QString m_title;
    QString m_description;
    ThingId m_parentId;
    ThingId m_thingId;
    ParamList m_params;
};

/*! Offers or new things, in the order in which the plugin has found them. */
class LIBNYMEA_EXPORT ThingDescriptors : public QList<ThingDescriptor>
{
public:
    ThingDescriptors() = default;
    ThingDescriptors(const QList<ThingDescriptor> &other)
        : QList<ThingDescriptor>(other)
    {
    }
};

#endif // THINGDESCRIPTOR_H
