// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef THINGDISCOVERYINFO_H
#define THINGDISCOVERYINFO_H

#include "integrations/thingdescriptor.h"
#include "integrations/thingjob.h"

/*! The job of looking for things of a class. The plugin adds a descriptor for each thing it finds, then
    finishes the job. Things are created only when the user confirms one of these offers. */
class LIBNYMEA_EXPORT ThingDiscoveryInfo : public ThingJob
{
    Q_OBJECT
public:
    ThingDiscoveryInfo(const ThingClassId &thingClassId, const ParamList &params,
                       std::chrono::milliseconds timeout, QObject *parent)
        : ThingJob(timeout, parent)
        , m_thingClassId(thingClassId)
        , m_params(params)
    {
    }

    ThingClassId thingClassId() const { return m_thingClassId; }
    /*! The user's input, by discovery parameter type. A field that was left out has no entry. */
    ParamList params() const { return m_params; }

    /*! To be called before finish(): later descriptors may be ignored. */
    void addThingDescriptor(const ThingDescriptor &thingDescriptor)
    {
        m_thingDescriptors.append(thingDescriptor);
    }
    ThingDescriptors thingDescriptors() const { return m_thingDescriptors; }

private:
    const ThingClassId m_thingClassId;
    const ParamList m_params;
    ThingDescriptors m_thingDescriptors;
};

#endif // THINGDISCOVERYINFO_H
