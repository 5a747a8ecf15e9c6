// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef THINGMANAGER_H
#define THINGMANAGER_H

#include "integrations/thing.h"

/*! The daemon's interface for IntegrationPlugin. Plugins use IntegrationPlugin::myThings() instead. */
class LIBNYMEA_EXPORT ThingManager : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    /*! All things, whatever their set-up status, except those whose first set-up is still pending and those
        that have been removed. Children are removed before their parent. The daemon owns the things. */
    virtual Things configuredThings() const = 0;
};

#endif // THINGMANAGER_H
