// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef THINGDESCRIPTOR_H
#define THINGDESCRIPTOR_H

#include "types/param.h"

/*! A thing that could be: offered by a discovery or announced by a plugin. Plain data; nothing exists until
    the daemon has created a thing of the class, given it the parameters, and set it up. */
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

    /*! Becomes the name of the thing; if it is empty, the display name of the class does. */
    QString title() const { return m_title; }
    void setTitle(const QString &title) { m_title = title; }

    /*! Tells offers of the same title apart. */
    QString description() const { return m_description; }
    void setDescription(const QString &description) { m_description = description; }

    /*! The thing under which the new one appears, and with which it is removed; null for none. Refused with
        ThingErrorThingNotFound if it does not exist. */
    ThingId parentId() const { return m_parentId; }
    void setParentId(const ThingId &parentId) { m_parentId = parentId; }

    /*! An existing thing that this one stands for: it is given the parameters and set up again. Null for a
        new thing. Refused with ThingErrorThingNotFound if there is no such thing of the class. */
    ThingId thingId() const { return m_thingId; }
    void setThingId(const ThingId &thingId) { m_thingId = thingId; }

    /*! A parameter that is left out gets its default value. Refused with ThingErrorInvalidParameter if one
        is unknown to the class, cannot be converted to its type or is out of its limits. */
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
