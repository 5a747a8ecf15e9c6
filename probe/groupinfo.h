// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef GROUPINFO_H
#define GROUPINFO_H

#include "finding.h"

#include <QByteArray>
#include <QJsonObject>
#include <QStringList>

// What the plugin lets a wallbox be set to, besides 0.
constexpr int smallestCurrent = 6; // A
constexpr int largestCurrent = 32; // A

/*! The charge limit that the user wants to try. */
struct LimitRequest
{
    QString wallbox;   //!< infrastructure id
    double ampere = 0; //!< 0 forbids charging
};

/*! What is wrong with the \a body of a group info reply against what the plugin reads. */
Findings judgeGroupInfo(const QByteArray &body);

/*! What happens to a gateway that meets a successful reply without a group, for the end of a sentence. */
QString groupLossWarning();

/*! The wallboxes that the plugin reads from the \a body of a group info reply, by infrastructure id. */
QJsonObject listedWallboxes(const QByteArray &body);

/*! One line for each of the wallboxes \a evseIds: what the plugin takes over from the group info. */
QStringList describeWallboxes(const QJsonObject &evseIds);

/*! Why \a limit must not be sent to a group of the wallboxes \a evseIds. Without a problem it may be. */
Findings judgeLimitRequest(const LimitRequest &limit, const QJsonObject &evseIds);

#endif // GROUPINFO_H
