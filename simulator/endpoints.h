// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef ENDPOINTS_H
#define ENDPOINTS_H

#include "httpserver.h"
#include "simulation.h"

/*! Answers a request to the backend, which has four operations. Returns nothing while a fault holds the request
    back. GROUP is the group's id, ID a wallbox's.

    POST /is_online                  {"secret"}
    POST /vela/get_group_info/GROUP  {"secret"}
    POST /vela/get_values/GROUP      {"secret", "evse_ids": [ID]}
    POST /vela/set_limits/GROUP      {"secret", "limits": {ID: {"value": 16, "unit": "A"}}}

    All answer {"success": true}, the second with "evse_ids", the third with "values", both objects by ID.

    Requests are refused, in this order, for an unknown host name (403), an unknown path (404), another method
    (405), a wrong token (401), a body that is not JSON or has no secret (400), a wrong secret (403), an unknown
    group (404) or a malformed body (400; 415 for a form). A refused request changes nothing. The reply's
    "error" says why. */
std::optional<HttpReply> answerBackend(Simulation &simulation, HttpRequest &request);

/*! Answers a request to a path under /control/.

    GET  /control/state                  the wallboxes, the group, the faults and the number of requests
    GET  /control/limits                 {"limits": [...]}, oldest first
    GET  /control/log                    {"log": [...]}, the requests without their bodies, oldest first
    GET  /control/requests               {"requests": [...]}, the same with their bodies
    GET  /control/requests/NUMBER        one of them
    GET  /control/history                {"history": [...]}, oldest first
    GET  /control/faults                 {"faults": [...]}, all that can be set
    GET  /control/events                 server-sent events: state, history, limits and log
    POST /control/wallboxes              {"id", "maxChargingCurrent"}: adds a wallbox
    POST /control/wallboxes/ID/ACTION    plug, unplug, pause, resume, finish, break, mend, configure, remove
    POST /control/fault                  a value for each fault to be set; {} ends all
    POST /control/speed                  {"factor"}
    POST /control/group                  {"group", "secret"}

    Every POST is answered with the new state. Requests are refused for an unknown host name or a page of
    another origin (403), an unknown path or wallbox (404), another method (405), a wallbox whose state does
    not allow the action (409) and a malformed body or an unknown member (400). A refused request changes
    nothing. The reply's "error" says why. simulator/README.md has a curl line for each path. */
HttpReply answerControl(Simulation &simulation, const HttpRequest &request);

/*! Answers a GET of a \a path under /control/. Returns nothing if the path is unknown. */
std::optional<HttpReply> answerReading(Simulation &simulation, const QString &path);

/*! The page's file at \a path, or nothing. The files of the folder page/ are built into the program. */
std::optional<HttpReply> pageFile(const QString &path);

#endif // ENDPOINTS_H
