// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT
#ifndef BACKENDAPI_H
#define BACKENDAPI_H

#include "reply.h"

#include <string>

namespace httplib {
struct Request;
}
class FaultGate;
class RequestLog;
class Yard;

/*! The backend's four operations, judged strictly. Safe to call from any thread; holds a request back for as
 *  long as the fault gate says.
 *
 *  POST /is_online                    {"secret"}             -> {"success": true}
 *  POST /vela/get_group_info/GROUP    {"secret"}             -> {"success": true, "evse_ids": {ID: {...}}}
 *  POST /vela/get_values/GROUP        {"secret", "evse_ids": [ID]} -> {"success": true, "values": {ID:
 * {...}}} POST /vela/set_limits/GROUP        {"secret", "limits": {ID: {"value": 16, "unit": "A"}}}
 *                                                            -> {"success": true}
 *
 *  Refused are, in this order: another host's name (403), an unknown path (404), another method (405), a
 * wrong token (401), a body that is not JSON or has no secret (400), a wrong secret (403), an unknown group
 * (404), a body of the wrong shape (400). A refused request changes nothing; the reply's "error" says why. */
class BackendApi
{
public:
    /*! All three must outlive this object. \a listenAddress is a name under which a client may know us. */
    BackendApi(Yard &yard, FaultGate &gate, RequestLog &log, const QString &listenAddress);

    Reply answer(const httplib::Request &request) const;

private:
    struct Operation
    {
        const char *name;
        const char *path; // ends in '/' where the group id follows
        Reply (BackendApi::*answer)(const QJsonObject &body) const;
    };
    static const Operation operations[];
    static const Operation *findOperation(const QString &path);

    Reply judge(const httplib::Request &request, const Operation *operation, const QString &path) const;
    Reply judgeBody(const QByteArray &body, const Operation &operation, const QString &path) const;
    Reply isOnline(const QJsonObject &body) const;
    Reply groupInfo(const QJsonObject &body) const;
    Reply values(const QJsonObject &body) const;
    Reply setLimits(const QJsonObject &body) const;

    Yard &m_yard;
    FaultGate &m_gate;
    RequestLog &m_log;
    std::string m_listenAddress;
};

#endif // BACKENDAPI_H
