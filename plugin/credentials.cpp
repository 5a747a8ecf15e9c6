// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "credentials.h"

#include "plugininfo.h"

#include <QSettings>

#include <types/param.h>

namespace {

const QLatin1String urlKey("url");
const QLatin1String groupIdKey("groupId");
const QLatin1String groupSecretKey("groupSecret");

bool fillIn(QString *field, const QSettings &storage, QLatin1String key)
{
    if (!field->isEmpty() || !storage.contains(key))
        return false;
    *field = storage.value(key).toString();
    return true;
}

bool isComplete(const Credentials &credentials)
{
    return !credentials.url.isEmpty() && !credentials.groupId.isEmpty() && !credentials.groupSecret.isEmpty();
}

} // namespace

Credentials enteredCredentials(const ParamList &params)
{
    return {params.paramValue(velaDiscoveryBackendUrlParamTypeId).toString(),
            params.paramValue(velaDiscoveryGroupIdParamTypeId).toString(),
            params.paramValue(velaDiscoveryGroupSecretParamTypeId).toString()};
}

bool completeCredentials(Credentials *credentials, QSettings *storage, const ThingClassId &gatewayClassId)
{
    storage->beginGroup(gatewayClassId.toString());
    // Only one field is filled in; the others are used as entered, even if they are empty.
    const bool filledIn = fillIn(&credentials->url, *storage, urlKey)
        || fillIn(&credentials->groupId, *storage, groupIdKey)
        || fillIn(&credentials->groupSecret, *storage, groupSecretKey);
    storage->endGroup();
    return filledIn || isComplete(*credentials);
}

Credentials storedCredentials(QSettings *storage, const ThingClassId &gatewayClassId)
{
    storage->beginGroup(gatewayClassId.toString());
    Credentials credentials{storage->value(urlKey).toString(), storage->value(groupIdKey).toString(),
                            storage->value(groupSecretKey).toString()};
    storage->endGroup();
    return credentials;
}

void writeCredentials(QSettings *storage, const ThingClassId &gatewayClassId, const Credentials &credentials)
{
    storage->beginGroup(gatewayClassId.toString());
    storage->setValue(urlKey, credentials.url);
    storage->setValue(groupIdKey, credentials.groupId);
    storage->setValue(groupSecretKey, credentials.groupSecret);
    storage->endGroup();
}
