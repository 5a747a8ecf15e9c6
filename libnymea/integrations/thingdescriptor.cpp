// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "integrations/thingdescriptor.h"

ThingDescriptor::ThingDescriptor(const ThingClassId &thingClassId, const QString &title,
                                 const QString &description, const ThingId &parentId)
    : m_thingClassId(thingClassId)
    , m_title(title)
    , m_description(description)
    , m_parentId(parentId)
{
}

ThingClassId ThingDescriptor::thingClassId() const
{
    return m_thingClassId;
}

QString ThingDescriptor::title() const
{
    return m_title;
}

void ThingDescriptor::setTitle(const QString &title)
{
    m_title = title;
}

QString ThingDescriptor::description() const
{
    return m_description;
}

void ThingDescriptor::setDescription(const QString &description)
{
    m_description = description;
}

ThingId ThingDescriptor::parentId() const
{
    return m_parentId;
}

void ThingDescriptor::setParentId(const ThingId &parentId)
{
    m_parentId = parentId;
}

ThingId ThingDescriptor::thingId() const
{
    return m_thingId;
}

void ThingDescriptor::setThingId(const ThingId &thingId)
{
    m_thingId = thingId;
}

ParamList ThingDescriptor::params() const
{
    return m_params;
}

void ThingDescriptor::setParams(const ParamList &params)
{
    m_params = params;
}

ThingDescriptors::ThingDescriptors(const QList<ThingDescriptor> &other)
    : QList<ThingDescriptor>(other)
{
}
