// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT
#ifndef CONTROLAPI_H
#define CONTROLAPI_H

#include "reply.h"

#include <functional>
#include <string>

namespace httplib {
struct Request;
}
class BodyReader;
class FaultGate;
class RequestLog;
class Wallbox;
class Yard;

/*! The hands in the yard: everything under /control/, as JSON over HTTP. Safe to call from any thread.
 *
 *  GET  /control/state                  the yard, the fault, the number of requests
 *  GET  /control/limits                 {"limits": [...]}, oldest first
 *  GET  /control/requests               {"requests": [...]}, oldest first
 *  GET  /control/history                {"history": [...]}, oldest first
 *  GET  /control/events                 history, then state and new requests, as server-sent events
 *  POST /control/wallboxes              {"id", "maxChargingCurrent"}: adds one
 *  POST /control/wallboxes/ID/ACTION    plug, unplug, pause, resume, finish, break, mend, configure, remove
 *  POST /control/fault                  {"status", "delayMs", "garbage", "silent"}; {} is none
 *  POST /control/speed                  {"factor"}
 *  POST /control/group                  {"group", "secret"}
 *
 *  Every POST answers with the state it leads to. Refused are a request to another host or from a page of
 * another origin (403), what does not exist (404), the wrong method (405), what the wallbox's state does not
 * allow (409), and a body that is wrong or holds an unknown member (400); the reply's "error" says why, and
 * nothing has changed. simulator/README.md has a curl line for each. */
class ControlApi
{
public:
    /*! All three must outlive this object. \a listenAddress is a name under which a page may know us. */
    ControlApi(Yard &yard, FaultGate &gate, RequestLog &log, const QString &listenAddress);

    static bool isControlPath(const std::string &path);
    Reply answer(const httplib::Request &request) const;

private:
    struct Reading
    {
        const char *path;
        Reply (ControlApi::*answer)() const;
    };
    struct Control
    {
        const char *path;
        Reply (ControlApi::*answer)(BodyReader &body) const;
    };
    struct Action
    {
        const char *name;
        Reply (ControlApi::*answer)(const QString &id, BodyReader &body) const;
    };
    static const Reading readings[];
    static const Control controls[];
    static const Action actions[];

    static bool isFromOwnPage(const httplib::Request &request);
    Reply get(const QString &path) const;
    Reply post(const QString &path, BodyReader &body) const;
    Reply actOn(const QString &target, BodyReader &body) const;

    Reply state() const;
    Reply limits() const;
    Reply requests() const;
    Reply history() const;
    Reply events() const;

    Reply addWallbox(BodyReader &body) const;
    Reply setFault(BodyReader &body) const;
    Reply setSpeed(BodyReader &body) const;
    Reply setGroup(BodyReader &body) const;

    Reply plug(const QString &id, BodyReader &body) const;
    Reply configure(const QString &id, BodyReader &body) const;
    Reply remove(const QString &id, BodyReader &body) const;
    template <QString (Wallbox::*Operation)()> Reply operate(const QString &id, BodyReader &body) const;
    Reply touch(const QString &id, const BodyReader &body,
                const std::function<QString(Wallbox &)> &operation) const;

    Yard &m_yard;
    FaultGate &m_gate;
    RequestLog &m_log;
    std::string m_listenAddress;
};

#endif // CONTROLAPI_H
