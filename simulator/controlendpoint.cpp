// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "endpoints.h"
#include "fault.h"

#include <QJsonDocument>

namespace {

constexpr char wallboxPath[] = "/control/wallboxes/";
constexpr BodyMember maximumMember{"maxChargingCurrent", BodyMember::WholeNumber, minimumCurrent,
                                   maximumCurrent};

QString addWallbox(Simulation &simulation, const QString &, const QJsonObject &body)
{
    const QString wanted = body.value(QLatin1String("id")).toString();
    const QString id = wanted.isEmpty() ? simulation.freeId() : wanted;
    // Half a surrogate pair has no UTF-8, and Qt cuts UTF-8 at a NUL.
    if (QString::fromUtf8(id.toUtf8()) != id || id == QLatin1String(".") || id == QLatin1String(".."))
        return QStringLiteral("the id cannot be a part of a URL");
    const int maximum = body.value(QLatin1String("maxChargingCurrent")).toInt(32);
    const auto [entry, isNew] = simulation.wallboxes.try_emplace(id);
    if (!isNew)
        return QStringLiteral("there is a wallbox \"%1\" already").arg(id);
    entry->second.maxChargingCurrent = maximum;
    return {};
}

QString setFaults(Simulation &simulation, const QString &, const QJsonObject &body)
{
    simulation.faults = body;
    const QStringList names = body.keys();
    for (const QString &name : names) {
        const QJsonValue value = body.value(name);
        if (!value.toBool() && value.toInt() == 0)
            simulation.faults.remove(name); // false and 0 mean off
    }
    return {};
}

QString setSpeed(Simulation &simulation, const QString &, const QJsonObject &body)
{
    simulation.speed = body.value(QLatin1String("factor")).toDouble();
    return {};
}

QString setGroup(Simulation &simulation, const QString &, const QJsonObject &body)
{
    simulation.group = body.value(QLatin1String("group")).toString(simulation.group);
    simulation.secret = body.value(QLatin1String("secret")).toString(simulation.secret);
    return {};
}

QString plugIn(Simulation &simulation, const QString &id, const QJsonObject &body)
{
    Car car;
    car.phases = body.value(QLatin1String("phases")).toInt(car.phases);
    car.maxCurrent = body.value(QLatin1String("maxCurrent")).toDouble(car.maxCurrent);
    return simulation.wallboxes[id].plugIn(car);
}

QString configure(Simulation &simulation, const QString &id, const QJsonObject &body)
{
    simulation.wallboxes[id].maxChargingCurrent = body.value(QLatin1String("maxChargingCurrent")).toInt();
    return {};
}

QString remove(Simulation &simulation, const QString &id, const QJsonObject &)
{
    simulation.wallboxes.erase(id);
    return {};
}

template <bool isBroken> QString setBroken(Simulation &simulation, const QString &id, const QJsonObject &)
{
    simulation.wallboxes[id].isBroken = isBroken;
    return {};
}

template <QString (SimulatedWallbox::*act)()>
QString plain(Simulation &simulation, const QString &id, const QJsonObject &)
{
    return (simulation.wallboxes[id].*act)();
}

struct Control
{
    const char *name; // the path, or the last part of a wallbox's path
    std::vector<BodyMember> members;
    bool needsMember; // at least one
    /*! Returns why the state does not allow it; empty on success. \a id is the wallbox's. */
    QString (*apply)(Simulation &simulation, const QString &id, const QJsonObject &body);
};

const std::vector<Control> &controls()
{
    static const std::vector<Control> rows{
        {"/control/wallboxes", {{"id", BodyMember::Text}, maximumMember},                   false, &addWallbox},
        {"/control/fault",     faultMembers(),                                              false, &setFaults },
        {"/control/speed",     {{"factor", BodyMember::Number, 0, fastestSpeed}},           true,  &setSpeed  },
        {"/control/group",     {{"group", BodyMember::Text}, {"secret", BodyMember::Text}}, true,  &setGroup  },
    };
    return rows;
}

const std::vector<Control> &actions()
{
    const BodyMember phases{"phases", BodyMember::WholeNumber, 1, 3};
    const BodyMember maxCurrent{"maxCurrent", BodyMember::Number, minimumCurrent, maximumCurrent};
    static const std::vector<Control> rows{
        {"plug",      {phases, maxCurrent}, false, &plugIn                          },
        {"unplug",    {},                   false, &plain<&SimulatedWallbox::unplug>},
        {"pause",     {},                   false, &plain<&SimulatedWallbox::pause> },
        {"resume",    {},                   false, &plain<&SimulatedWallbox::resume>},
        {"finish",    {},                   false, &plain<&SimulatedWallbox::finish>},
        {"break",     {},                   false, &setBroken<true>                 },
        {"mend",      {},                   false, &setBroken<false>                },
        {"configure", {maximumMember},      true,  &configure                       },
        {"remove",    {},                   false, &remove                          },
    };
    return rows;
}

const Control *find(const std::vector<Control> &rows, const QString &name)
{
    for (const Control &row : rows) {
        if (name == QLatin1String(row.name))
            return &row;
    }
    return nullptr;
}

/*! An empty body counts as an empty object. */
HttpReply apply(Simulation &simulation, const Control &control, const std::optional<QString> &id,
                const QByteArray &text)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(text.isEmpty() ? "{}" : text, &error);
    const QJsonObject body = document.object();
    if (error.error != QJsonParseError::NoError)
        return refusal(400, QStringLiteral("the body is not JSON: %1").arg(error.errorString()));
    if (!document.isObject())
        return refusal(400, QStringLiteral("the body must be a JSON object"));
    const QString mistake = findMistake(body, control.members);
    if (!mistake.isEmpty())
        return refusal(400, mistake);
    if (control.needsMember && body.isEmpty()) {
        QStringList names;
        for (const BodyMember &member : control.members)
            names.append(QStringLiteral("\"%1\"").arg(QLatin1String(member.name)));
        return refusal(400, names.join(QLatin1String(" or ")) + QLatin1String(" is missing"));
    }
    if (id && simulation.wallboxes.count(*id) == 0)
        return refusal(404, QStringLiteral("there is no wallbox \"%1\"").arg(*id));
    const QString conflict = control.apply(simulation, id.value_or(QString()), body);
    return conflict.isEmpty() ? *answerReading(simulation, QStringLiteral("/control/state"))
                              : refusal(409, conflict);
}

/*! The target is "ID/ACTION". The id may contain slashes. */
HttpReply setWallbox(Simulation &simulation, const QString &target, const QByteArray &body)
{
    const QString name = target.section(QLatin1Char('/'), -1);
    if (const Control *action = find(actions(), name))
        return apply(simulation, *action, target.left(target.size() - name.size() - 1), body);
    QStringList names;
    for (const Control &action : actions())
        names.append(QLatin1String(action.name));
    const QString known = names.join(QLatin1String(", "));
    return refusal(404, QStringLiteral("there is no action \"%1\"; known: %2").arg(name, known));
}

/*! Browsers send the page's origin with every POST, and with every GET for which a page of another origin
    could read the answer. Scripts and curl send none. */
bool isFromOwnPage(const HttpRequest &request)
{
    return request.origin.isNull() || request.origin == "http://" + request.host;
}

} // namespace

HttpReply answerControl(Simulation &simulation, const HttpRequest &request)
{
    if (!request.isFor(simulation.listenAddress))
        return unknownHostReply();
    if (!isFromOwnPage(request))
        return refusal(403, QStringLiteral("pages of other origins may not use the control endpoint"));
    const bool isPost = request.method == "POST";
    if (!isPost && request.method != "GET")
        return refusal(405, QStringLiteral("the control endpoint takes GET and POST only"));
    const QString &path = request.path;
    simulation.catchUp();
    if (const std::optional<HttpReply> reading = answerReading(simulation, path))
        return isPost ? refusal(405, QStringLiteral("this path takes GET only")) : *reading;
    const Control *control = find(controls(), path);
    const bool isWallbox = path.startsWith(QLatin1String(wallboxPath));
    if (!control && !isWallbox)
        return refusal(404, QStringLiteral("there is nothing at this path"));
    if (!isPost)
        return refusal(405, QStringLiteral("this path takes POST only"));
    return control ? apply(simulation, *control, std::nullopt, request.body)
                   : setWallbox(simulation, path.mid(int(std::size(wallboxPath)) - 1), request.body);
}
