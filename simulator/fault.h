// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef FAULT_H
#define FAULT_H

#include "bodymembers.h"

#include <QByteArray>
#include <QJsonArray>

#include <chrono>
#include <optional>

/*! What becomes of a request. With a status or a body set, this is the answer and nothing else is done. */
struct FaultEffect
{
    std::chrono::milliseconds hold{0}; //!< from the arrival on, until the request is looked at
    std::optional<int> status;
    std::optional<QByteArray> body;
};

/*! How the control endpoint sets the faults: a member for each. */
std::vector<BodyMember> faultMembers();
/*! What \a faults do together; each member is a fault that is on. */
FaultEffect effectOf(const QJsonObject &faults);
/*! The faults that there are: {"name", "label", "says", "least", "most"}. Those take a number from "least" to
    "most"; with a "most" of 0 they take true. "says" is how a fault is reported, %1 being the number. */
QJsonArray describeFaults();

#endif // FAULT_H
