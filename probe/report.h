// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef REPORT_H
#define REPORT_H

#include "transport.h"

#include <QJsonObject>
#include <QStringList>

class Mask;

/*! What became of one step. */
struct StepReport
{
    Step step = Step::Url;
    QString skipped;     //!< why the step was not tried; empty when it was
    QString url;         //!< that was posted to; empty for steps without a request
    QJsonObject body;    //!< that was sent
    Answer answer;       //!< to the request
    QStringList details; //!< what the plugin takes over, a line each
    Findings findings;
};

using Report = QVector<StepReport>;

/*! \a report without secrets, and with the backend's words, the body of its answer too, cut to a length that
    one can look at. */
StepReport masked(StepReport report, const Mask &mask);

/*! Whether the plugin would work with the backend. */
bool works(const Report &report);

/*! For people: one step, and the verdict on all. Both end in a newline. */
QString stepText(const StepReport &report);
QString verdictText(const Report &report);

/*! For machines: all of it. */
QJsonObject toJson(const Report &report);

#endif // REPORT_H
