// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef THINGJSON_H
#define THINGJSON_H

#include <integrations/thing.h>
#include <integrations/thingdescriptor.h>

#include <QJsonObject>

// Things and what describes them, as the host prints them with --json.

/*! \a id without braces; null for none. */
QJsonValue idValue(const QUuid &id);
/*! The name of an enumerator, such as "ThingErrorNoError". */
QString errorName(Thing::ThingError error);
QJsonObject thingObject(const Thing *thing);
QJsonObject classObject(const ThingClass &thingClass);
/*! \a thingClass is that of \a offer. */
QJsonObject offerObject(const ThingDescriptor &offer, const ThingClass &thingClass);

#endif // THINGJSON_H
