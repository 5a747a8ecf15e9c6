// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef THINGMANAGER_H
#define THINGMANAGER_H

#include "integrations/thing.h"

/*! The daemon as a plugin's base class sees it. Plugins use IntegrationPlugin::myThings() instead. */
class LIBNYMEA_EXPORT ThingManager : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    /*! Every thing that is kept, whatever its set-up status: not one whose first set-up is still pending,
        and not one whose removal has begun. The daemon owns them all. */
    virtual Things configuredThings() const = 0;
};

#endif // THINGMANAGER_H
