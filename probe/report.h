// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef REPORT_H
#define REPORT_H

#include "step.h"

/*! How many findings of all steps have that severity. Without a problem the plugin would work. */
int count(const Report &report, Severity severity);

/*! For people: one step, and the verdict on all. Both end in a newline. */
QString stepText(const Step &step);
QString verdictText(const Report &report);

/*! For machines: all of it. */
QJsonObject toJson(const Report &report);

#endif // REPORT_H
