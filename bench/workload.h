// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef WORKLOAD_H
#define WORKLOAD_H

#include "replies.h"

#include <memory>

/*! Something to be repeated and measured. */
class Workload
{
public:
    virtual ~Workload() = default;
    virtual void run() = 0;
    /*! Connections to the backend so far; 0 for what needs none. */
    virtual int connections() { return 0; }

protected:
    Workload() = default;
    Q_DISABLE_COPY(Workload)
};

/*! The workloads' names:
    - "parse": QJsonDocument::fromJson() of a values reply
    - "apply": the same, and the values written to the wallbox things by the plugin
    - "post": what a bare QNetworkAccessManager needs to post the plugin's values request and to read and
      drop the reply
    - "poll": a whole poll of the plugin
    - "poll-nolog": the same with the plugin compiled without its debug lines */
QStringList workloadNames();

/*! Null for an unknown \a name. */
std::unique_ptr<Workload> makeWorkload(const QString &name, int wallboxes, Yard yard);

#endif // WORKLOAD_H
