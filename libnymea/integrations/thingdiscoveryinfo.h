// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef THINGDISCOVERYINFO_H
#define THINGDISCOVERYINFO_H

#include "integrations/thingdescriptor.h"
#include "integrations/thingjob.h"

/*! The job of looking for things of a class. The plugin adds what it finds and then finishes the job.
    Nothing is created from what it has found before the user picks an offer. */
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
    /*! What the user entered, by discovery parameter type; a field left out has no entry. */
    ParamList params() const { return m_params; }

    /*! What is added after finish() may not be seen any more. */
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
