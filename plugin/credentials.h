// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef CREDENTIALS_H
#define CREDENTIALS_H

#include <QString>

class ParamList;
class QSettings;

/*! What leads to a group at a backend. One set for the whole plugin, kept in the plugin storage; the
    functions take the storage with the group open that is named by the gateway class. */
struct Credentials
{
    QString url;
    QString groupId;
    QString groupSecret; //!< never logged
};

/*! What the user entered at discovery; a field left out is empty. */
Credentials enteredCredentials(const ParamList &params);

/*! Fills in the first field, in the order of the members, that is empty and stored, and no other. Returns
    false when none was filled in and one is empty. */
bool completeCredentials(Credentials *credentials, const QSettings &storage);

/*! Those of the last discovery that succeeded; empty fields where there was none. */
Credentials storedCredentials(const QSettings &storage);

void writeCredentials(QSettings *storage, const Credentials &credentials);

#endif // CREDENTIALS_H
