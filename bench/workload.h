// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef WORKLOAD_H
#define WORKLOAD_H

#include <QStringList>

#include <functional>

/*! What can be repeated and measured:
    - "parse": QJsonDocument::fromJson() of a values reply
    - "apply": the same, and the values written to the wallbox things by the plugin
    - "post": a bare QNetworkAccessManager posts the plugin's values request, and reads and drops the reply
    - "poll": a whole poll of the plugin
    - "poll-nolog": the same with the plugin compiled without its debug lines */
inline QStringList workloads()
{
    return {"parse", "apply", "post", "poll", "poll-nolog"};
}

/*! Prepares the workload called \a name, with its backend in a process of its own. Each call of the returned
    function is one repetition. */
std::function<void()> makeWorkload(const QString &name, int wallboxes, const QString &report);

/*! Runs as that backend: prints its URL and answers until it is ended. Returns the exit status. */
int runBackend(int wallboxes, const QString &report);

#endif // WORKLOAD_H
