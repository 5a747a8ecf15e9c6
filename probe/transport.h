// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef TRANSPORT_H
#define TRANSPORT_H

#include "step.h"

/*! How much of a reply the probe reads before it cancels the request. The reply for 32 wallboxes has 5 kB. Of a
    compressed reply, Qt may have unpacked far more by then. */
constexpr qint64 longestReply = qint64(64) << 20; // bytes

/*! What happens to a gateway that gets a successful reply without a group; ends a sentence. */
constexpr char groupLossWarning[] =
    "; when a gateway is set up, as at each start of nymea, such a reply removes every wallbox together with "
    "its total energy";

/*! Adds to \a step what is wrong with \a url as the user would enter it in nymea. */
void judgeUrl(Step &step, const QString &url);

/*! Whether \a step may have failed because only one side speaks TLS, or because of a certificate. Then a TLS
    handshake shows more. That concerns all requests, so only the first one is examined. */
bool mayBeDueToTls(const Step &step);

/*! Adds to \a step what its answer shows apart from the content: whether and when the backend answered. The
    plugin does not use the online check, so a failure there is a warning unless every other request would
    fail too. */
void judgeAnswer(Step &step);

/*! Whether every other request would fail for the same reason as \a step. */
bool isUnreachable(const Step &step);

#endif // TRANSPORT_H
