// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef CREDENTIALS_H
#define CREDENTIALS_H

#include <QString>

#include <typeutils.h>

class ParamList;
class QSettings;

/*! How to reach a group at a backend. There is one set for the whole plugin. It is kept in the plugin
    storage, in the group named by the gateway's thing class; the functions open and close that group. */
struct Credentials
{
    QString url;
    QString groupId;
    QString groupSecret; //!< never logged
};

/*! What the user entered for a discovery. A field without an entry is empty. */
Credentials enteredCredentials(const ParamList &params);

/*! Fills in one field from \a storage: the first, in the order of the members, that is empty and stored.
    Returns false if no field was filled in and at least one is empty. */
bool completeCredentials(Credentials *credentials, QSettings *storage, const ThingClassId &gatewayClassId);

/*! The credentials of the last successful discovery. The fields are empty if there was none. */
Credentials storedCredentials(QSettings *storage, const ThingClassId &gatewayClassId);

void writeCredentials(QSettings *storage, const ThingClassId &gatewayClassId, const Credentials &credentials);

#endif // CREDENTIALS_H
