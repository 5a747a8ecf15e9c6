// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef THINGDISCOVERYINFO_H
#define THINGDISCOVERYINFO_H

#include "integrations/thingdescriptor.h"
#include "integrations/thingjob.h"

/*! The job of looking for things of a class; the plugin adds what it finds and finishes it. */
class LIBNYMEA_EXPORT ThingDiscoveryInfo : public ThingJob
{
    Q_OBJECT
public:
    ThingDiscoveryInfo(const ThingClassId &thingClassId, const ParamList &params,
                       std::chrono::milliseconds timeout, QObject *parent);

    ThingClassId thingClassId() const;
    /*! What the user entered, by discovery parameter type; a field left out has no entry. */
    ParamList params() const;

    void addThingDescriptor(const ThingDescriptor &thingDescriptor);
    ThingDescriptors thingDescriptors() const;

private:
    const ThingClassId m_thingClassId;
    const ParamList m_params;
    ThingDescriptors m_thingDescriptors;
};

#endif // THINGDISCOVERYINFO_H
