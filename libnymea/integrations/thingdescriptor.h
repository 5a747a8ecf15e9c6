// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef THINGDESCRIPTOR_H
#define THINGDESCRIPTOR_H

#include "types/param.h"

/*! A thing that could be: offered by a discovery or announced by the plugin. Plain data. */
class LIBNYMEA_EXPORT ThingDescriptor
{
public:
    explicit ThingDescriptor(const ThingClassId &thingClassId = ThingClassId(),
                             const QString &title = QString(), const QString &description = QString(),
                             const ThingId &parentId = ThingId());

    ThingClassId thingClassId() const;

    QString title() const;
    void setTitle(const QString &title);

    QString description() const;
    void setDescription(const QString &description);

    /*! The thing under which the new one appears; null for none. */
    ThingId parentId() const;
    void setParentId(const ThingId &parentId);

    /*! An existing thing that this one stands for, to be reconfigured; null for a new thing. */
    ThingId thingId() const;
    void setThingId(const ThingId &thingId);

    ParamList params() const;
    void setParams(const ParamList &params);

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
    ThingDescriptors(const QList<ThingDescriptor> &other);
};

#endif // THINGDESCRIPTOR_H
