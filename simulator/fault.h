// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef FAULT_H
#define FAULT_H

#include "bodymembers.h"
#include "httpmessages.h"

#include <QJsonArray>

#include <chrono>
#include <optional>

/*! What faults do to a request. */
struct FaultEffect
{
    std::chrono::milliseconds hold{0}; //!< from its arrival until it is handled
    std::optional<HttpReply> reply;    //!< the answer; nothing else is done then
};

/*! The members by which the control endpoint sets the faults, one for each fault. */
std::vector<BodyMember> faultMembers();
/*! What \a faults do together. Each member is a fault that is on. */
FaultEffect effectOf(const QJsonObject &faults);
/*! All faults: {"name", "label", "says", "least", "most"}. A fault takes a number from "least" to "most", or
    true if "most" is 0. "says" is how the page reports it, %1 being the number. */
QJsonArray describeFaults();

#endif // FAULT_H
