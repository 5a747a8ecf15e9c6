// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef ENDPOINTS_H
#define ENDPOINTS_H

#include "httpserver.h"
#include "simulation.h"

/*! Answers a request to the backend: four operations, judged strictly. No answer as long as a fault holds the
    request back. GROUP is the group's id, ID a wallbox's.

    POST /is_online                  {"secret"}
    POST /vela/get_group_info/GROUP  {"secret"}
    POST /vela/get_values/GROUP      {"secret", "evse_ids": [ID]}
    POST /vela/set_limits/GROUP      {"secret", "limits": {ID: {"value": 16, "unit": "A"}}}

    All answer {"success": true}, the second with "evse_ids", the third with "values", both objects by ID.

    Refused are, in this order: another host's name (403), an unknown path (404), another method (405), a
    wrong token (401), a body that is not JSON or has no secret (400), a wrong secret (403), an unknown group
    (404), a body of the wrong shape (400). A refused request changes nothing; the reply's "error" says why. */
std::optional<HttpReply> answerBackend(Simulation &simulation, HttpRequest &request);

/*! Answers a request to a path under /control/.

    GET  /control/state                  the yard, the faults, the number of requests
    GET  /control/limits                 {"limits": [...]}, oldest first
    GET  /control/log                    {"log": [...]}, the requests without their bodies, oldest first
    GET  /control/requests               {"requests": [...]}, the same with their bodies
    GET  /control/requests/NUMBER        one of them
    GET  /control/history                {"history": [...]}, oldest first
    GET  /control/faults                 {"faults": [...]}, those that there are
    GET  /control/events                 state, new limits and log, at first the history: server-sent events
    POST /control/wallboxes              {"id", "maxChargingCurrent"}: adds one
    POST /control/wallboxes/ID/ACTION    plug, unplug, pause, resume, finish, break, mend, configure, remove
    POST /control/fault                  a value for each fault that shall be on; {} is none
    POST /control/speed                  {"factor"}
    POST /control/group                  {"group", "secret"}

    Every POST answers with the state it leads to. Refused are a request to another host or from a page of
    another origin (403), what does not exist (404), the wrong method (405), what the wallbox's state does not
    allow (409), and a body that is wrong or holds an unknown member (400); the reply's "error" says why, and
    nothing has changed. simulator/README.md has a curl line for each. */
HttpReply answerControl(Simulation &simulation, const HttpRequest &request);

/*! What a GET under /control/ answers, by \a path; nothing where there is nothing to read. */
std::optional<HttpReply> answerReading(Simulation &simulation, const QString &path);

/*! The file at \a path of the page that shows the yard, or nothing. The files of the folder page/ are built
    into the program. */
std::optional<HttpReply> pageFile(const QString &path);

#endif // ENDPOINTS_H
