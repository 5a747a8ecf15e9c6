// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT
#include "controlapi.h"

#include "bodyreader.h"
#include "fault.h"
#include "hostname.h"
#include "requestlog.h"
#include "yard.h"

#include <httplib.h>

#include <utility>

namespace {
constexpr char root[] = "/control/";
constexpr char wallboxes[] = "/control/wallboxes/";
constexpr int longestDelay = 10 * 60 * 1000; // ms
constexpr double fastest = 100000;

Reply badBody(const QString &complaint)
{
    return refusal(400, complaint);
}

Reply noSuchWallbox(const QString &id)
{
    return refusal(404, QStringLiteral("there is no wallbox \"%1\"").arg(id));
}

QByteArray serverSentEvent(const char *name, const Reply &reply)
{
    return QByteArrayLiteral("event: ") + name + "\ndata: " + reply.body + "\n\n";
}

template <typename Row, std::size_t Size> const Row *findPath(const Row (&rows)[Size], const QString &path)
{
    for (const Row &row : rows) {
        if (path == QLatin1String(row.path))
            return &row;
    }
    return nullptr;
}
} // namespace

const ControlApi::Reading ControlApi::readings[] = {
    {"/control/state",    &ControlApi::state   },
    {"/control/limits",   &ControlApi::limits  },
    {"/control/requests", &ControlApi::requests},
    {"/control/history",  &ControlApi::history },
    {"/control/events",   &ControlApi::events  },
};

const ControlApi::Control ControlApi::controls[] = {
    {"/control/wallboxes", &ControlApi::addWallbox},
    {"/control/fault",     &ControlApi::setFault  },
    {"/control/speed",     &ControlApi::setSpeed  },
    {"/control/group",     &ControlApi::setGroup  },
};

const ControlApi::Action ControlApi::actions[] = {
    {"plug",      &ControlApi::plug                        },
    {"unplug",    &ControlApi::operate<&Wallbox::unplug>   },
    {"pause",     &ControlApi::operate<&Wallbox::pause>    },
    {"resume",    &ControlApi::operate<&Wallbox::resume>   },
    {"finish",    &ControlApi::operate<&Wallbox::finish>   },
    {"break",     &ControlApi::operate<&Wallbox::breakDown>},
    {"mend",      &ControlApi::operate<&Wallbox::mend>     },
    {"configure", &ControlApi::configure                   },
    {"remove",    &ControlApi::remove                      },
};

ControlApi::ControlApi(Yard &yard, FaultGate &gate, RequestLog &log, const QString &listenAddress)
    : m_yard(yard)
    , m_gate(gate)
    , m_log(log)
    , m_listenAddress(listenAddress.toStdString())
{
}

bool ControlApi::isControlPath(const std::string &path)
{
    return path.rfind(root, 0) == 0;
}

Reply ControlApi::answer(const httplib::Request &request) const
{
    if (!isForUs(request, m_listenAddress))
        return unknownHostReply();
    if (!isFromOwnPage(request))
        return refusal(403, QStringLiteral("pages of other origins may not touch the yard"));
    const QString path = QString::fromStdString(request.path);
    if (request.method == "GET")
        return get(path);
    if (request.method != "POST")
        return refusal(405, QStringLiteral("the control endpoint takes GET and POST only"));
    BodyReader body(QByteArray::fromStdString(request.body));
    return post(path, body);
}

// Browsers name the page's origin in every POST, and in every GET from a page of another origin that could
// read the answer. Scripts and curl send none.
bool ControlApi::isFromOwnPage(const httplib::Request &request)
{
    return !request.has_header("Origin")
        || request.get_header_value("Origin") == "http://" + request.get_header_value("Host");
}

Reply ControlApi::get(const QString &path) const
{
    if (const Reading *reading = findPath(readings, path))
        return (this->*reading->answer)();
    if (findPath(controls, path) || path.startsWith(QLatin1String(wallboxes)))
        return refusal(405, QStringLiteral("this path takes POST only"));
    return refusal(404, QStringLiteral("there is nothing at this path"));
}

Reply ControlApi::post(const QString &path, BodyReader &body) const
{
    if (const Control *control = findPath(controls, path))
        return (this->*control->answer)(body);
    if (path.startsWith(QLatin1String(wallboxes)))
        return actOn(path.mid(QLatin1String(wallboxes).size()), body);
    if (findPath(readings, path))
        return refusal(405, QStringLiteral("this path takes GET only"));
    return refusal(404, QStringLiteral("there is nothing at this path"));
}

// The target is "ID/ACTION", in which the id may hold a slash itself.
Reply ControlApi::actOn(const QString &target, BodyReader &body) const
{
    const QString name = target.section(QLatin1Char('/'), -1);
    for (const Action &action : actions) {
        if (name == QLatin1String(action.name))
            return (this->*action.answer)(target.left(target.size() - name.size() - 1), body);
    }
    QStringList names;
    for (const Action &action : actions)
        names.append(QLatin1String(action.name));
    const QString known = names.join(QLatin1String(", "));
    return refusal(404, QStringLiteral("there is no action \"%1\"; known: %2").arg(name, known));
}

Reply ControlApi::state() const
{
    QJsonObject state = m_yard.state();
    state.insert(QStringLiteral("fault"), m_gate.fault().toJson());
    state.insert(QStringLiteral("requestCount"), m_log.count());
    return jsonReply(state);
}

Reply ControlApi::limits() const
{
    return jsonReply({
        {QStringLiteral("limits"), m_yard.limits()}
    });
}

Reply ControlApi::requests() const
{
    return jsonReply({
        {QStringLiteral("requests"), m_log.requests()}
    });
}

Reply ControlApi::history() const
{
    return jsonReply({
        {QStringLiteral("history"), m_yard.history()}
    });
}

// Each event holds what the reading of the same name answers; "requests" only those that it has news of. The
// history is told once.
Reply ControlApi::events() const
{
    Reply reply;
    reply.contentType = "text/event-stream";
    reply.next = [this, seen = 0, isFirst = true]() mutable {
        QByteArray text = serverSentEvent("state", state());
        if (std::exchange(isFirst, false))
            text += serverSentEvent("history", history());
        const QJsonObject news{
            {QStringLiteral("requests"), m_log.changes(seen)}
        };
        return text + serverSentEvent("requests", jsonReply(news));
    };
    return reply;
}

Reply ControlApi::addWallbox(BodyReader &body) const
{
    const QString id = body.text("id", {});
    const int maximum = body.wholeNumber("maxChargingCurrent", int(minimumCurrent), int(maximumCurrent), 32);
    if (!body.complaint().isEmpty())
        return badBody(body.complaint());
    if (!m_yard.addWallbox(id, maximum))
        return refusal(409, QStringLiteral("there is a wallbox \"%1\" already").arg(id));
    return state();
}

Reply ControlApi::setFault(BodyReader &body) const
{
    Fault fault;
    fault.status = body.wholeNumber("status", 200, 599, 0);
    fault.delay = std::chrono::milliseconds(body.wholeNumber("delayMs", 0, longestDelay, 0));
    fault.garbage = body.flag("garbage");
    fault.silent = body.flag("silent");
    if (!body.complaint().isEmpty())
        return badBody(body.complaint());
    m_gate.setFault(fault);
    return state();
}

Reply ControlApi::setSpeed(BodyReader &body) const
{
    body.require("factor");
    const double factor = body.number("factor", 0, fastest, 1);
    if (!body.complaint().isEmpty())
        return badBody(body.complaint());
    m_yard.setSpeed(factor);
    return state();
}

Reply ControlApi::setGroup(BodyReader &body) const
{
    if (!body.contains("secret"))
        body.require("group");
    const QString group = body.text("group", {});
    const QString secret = body.text("secret", {});
    if (!body.complaint().isEmpty())
        return badBody(body.complaint());
    if (body.contains("group"))
        m_yard.setGroup(group);
    if (body.contains("secret"))
        m_yard.setSecret(secret);
    return state();
}

Reply ControlApi::plug(const QString &id, BodyReader &body) const
{
    Car car;
    car.phases = body.wholeNumber("phases", 1, 3, car.phases);
    car.maxCurrent = body.number("maxCurrent", minimumCurrent, maximumCurrent, car.maxCurrent);
    return touch(id, body, [car](Wallbox &wallbox) { return wallbox.plugIn(car); });
}

Reply ControlApi::configure(const QString &id, BodyReader &body) const
{
    const int maximum = body.wholeNumber("maxChargingCurrent", int(minimumCurrent), int(maximumCurrent), 0);
    body.require("maxChargingCurrent");
    return touch(id, body, [maximum](Wallbox &wallbox) {
        wallbox.setMaxChargingCurrent(maximum);
        return QString();
    });
}

Reply ControlApi::remove(const QString &id, BodyReader &body) const
{
    if (!body.complaint().isEmpty())
        return badBody(body.complaint());
    return m_yard.removeWallbox(id) ? state() : noSuchWallbox(id);
}

template <QString (Wallbox::*Operation)()>
Reply ControlApi::operate(const QString &id, BodyReader &body) const
{
    return touch(id, body, [](Wallbox &wallbox) { return (wallbox.*Operation)(); });
}

Reply ControlApi::touch(const QString &id, const BodyReader &body,
                        const std::function<QString(Wallbox &)> &operation) const
{
    if (!body.complaint().isEmpty())
        return badBody(body.complaint());
    QString conflict;
    const bool isThere =
        m_yard.touchWallbox(id, [&conflict, &operation](Wallbox &wallbox) { conflict = operation(wallbox); });
    if (!isThere)
        return noSuchWallbox(id);
    return conflict.isEmpty() ? state() : refusal(409, conflict);
}
