// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "scriptedbackend.h"

#include "json.h"

#include <memory>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace {

QByteArray response(int status, const QByteArray &body)
{
    return "HTTP/1.1 " + QByteArray::number(status).rightJustified(3, '0')
        + " Scripted\r\nContent-Type: application/json\r\nContent-Length: " + QByteArray::number(body.size())
        + "\r\n\r\n" + body;
}

/*! What a request of each operation must look like, in the order of ScriptedBackend::Operation. */
const struct
{
    QByteArray path; //!< one that ends in a slash is followed by the group id
    QString member;  //!< the only one beside "secret"; empty for none
} endpoints[] = {
    {"/is_online",            ""        },
    {"/vela/get_group_info/", ""        },
    {"/vela/get_values/",     "evse_ids"},
    {"/vela/set_limits/",     "limits"  },
};

/*! Ends the program unless \a object has these members and no others. */
void requireMembers(const QJsonObject &object, const QStringList &names, const QByteArray &target)
{
    if (object.keys() != names)
        qFatal("The scripted backend was sent \"%s\" with the members \"%s\" in place of \"%s\".",
               target.constData(), qPrintable(object.keys().join(' ')), qPrintable(names.join(' ')));
}

/*! Finds the request's operation; a request that no backend knows ends the program. */
void identify(ScriptedBackend::Request &request)
{
    const QByteArray path = request.target.split('?').constFirst();
    const QByteArray stem = path.left(path.lastIndexOf('/') + 1);
    const auto *const endpoint =
        std::find_if(std::begin(endpoints), std::end(endpoints),
                     [&](const auto &known) { return known.path == path || known.path == stem; });
    if (endpoint == std::end(endpoints))
        qFatal("The scripted backend does not know the path \"%s\".", request.target.constData());
    request.operation = static_cast<ScriptedBackend::Operation>(endpoint - std::begin(endpoints));
    const QJsonObject body = request.json();
    QStringList names{endpoint->member, "secret"};
    names.removeAll(QString());
    requireMembers(body, names, request.target);
    const QJsonObject limits = body.value("limits").toObject();
    for (const QJsonValue &limit : limits)
        requireMembers(limit.toObject(), {"unit", "value"}, request.target);
}

/*! Resets the connection. What has been sent and not received yet is lost. */
void resetConnection(QTcpSocket *socket)
{
    const linger atOnce{1, 0};
    setsockopt(int(socket->socketDescriptor()), SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    socket->abort();
}

/*! What is written from now on is sent together with the end of the connection. */
void holdBack(QTcpSocket *socket)
{
    const int yes = 1;
    setsockopt(int(socket->socketDescriptor()), IPPROTO_TCP, TCP_CORK, &yes, sizeof yes);
}

/*! Takes the first whole request out of \a buffer; false while there is none. */
bool takeRequest(QByteArray &buffer, ScriptedBackend::Request &request)
{
    const int headerEnd = buffer.indexOf("\r\n\r\n");
    if (headerEnd < 0)
        return false;
    QList<QByteArray> lines = buffer.left(headerEnd).split('\n');
    const QList<QByteArray> requestLine = lines.takeFirst().split(' ');
    if (requestLine.first() != "POST")
        qFatal("The scripted backend was sent a %s.", requestLine.first().constData());
    request.target = requestLine.value(1);
    for (const QByteArray &line : qAsConst(lines)) {
        const int colon = line.indexOf(':');
        request.headers.insert(line.left(colon).toLower(), line.mid(colon + 1).trimmed());
    }
    const int length = request.headers.value("content-length").toInt();
    if (buffer.size() < headerEnd + 4 + length)
        return false;
    request.body = buffer.mid(headerEnd + 4, length);
    buffer.remove(0, headerEnd + 4 + length);
    identify(request);
    return true;
}

} // namespace

QJsonObject ScriptedBackend::Request::json() const
{
    return ::json(body);
}

ScriptedBackend::ScriptedBackend()
{
    connect(&m_server, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket *socket = m_server.nextPendingConnection())
            accept(socket);
    });
    if (!m_server.listen(QHostAddress::LocalHost))
        qFatal("The scripted backend cannot listen: %s", qPrintable(m_server.errorString()));
}

QString ScriptedBackend::url() const
{
    return QString("http://127.0.0.1:%1").arg(m_server.serverPort());
}

void ScriptedBackend::shutDown()
{
    if (!m_server.isListening())
        return;
    const quint16 port = m_server.serverPort();
    m_server.close();
    // A port that is bound is not given to another program, even if nothing listens there.
    m_reservation.bind(QHostAddress::LocalHost, port, QAbstractSocket::ReuseAddressHint);
    closeConnections();
}

void ScriptedBackend::startUp()
{
    const quint16 port = m_reservation.localPort();
    m_reservation.close();
    if (!m_server.listen(QHostAddress::LocalHost, port))
        qFatal("The scripted backend cannot listen again: %s", qPrintable(m_server.errorString()));
}

void ScriptedBackend::closeConnections()
{
    const auto sockets = m_server.findChildren<QTcpSocket *>();
    for (QTcpSocket *socket : sockets)
        socket->abort();
    m_held.clear();
}

void ScriptedBackend::setWallbox(const QString &infraId, int maxChargingCurrent)
{
    wallboxes.insert(infraId,
                     QJsonObject{
                         {"max_charging_current", maxChargingCurrent}
    });
}

void ScriptedBackend::answer(Operation operation, int status, const QByteArray &body)
{
    sendRaw(operation, response(status, body));
}

void ScriptedBackend::sendRaw(Operation operation, const QByteArray &bytes)
{
    m_scripts[operation] = [bytes](QTcpSocket *socket) { socket->write(bytes); };
}

void ScriptedBackend::answerInTurn(Operation operation, const QList<QByteArray> &bodies)
{
    m_scripts[operation] = [bodies, next = std::make_shared<int>(0)](QTcpSocket *socket) {
        socket->write(response(200, bodies.at((*next)++ % bodies.size())));
    };
}

void ScriptedBackend::hangUp(Operation operation, const QByteArray &bytes)
{
    m_scripts[operation] = [bytes](QTcpSocket *socket) {
        holdBack(socket);
        socket->write(bytes);
        socket->disconnectFromHost();
    };
}

void ScriptedBackend::reset(Operation operation)
{
    m_scripts[operation] = resetConnection;
}

void ScriptedBackend::hold(Operation operation)
{
    m_scripts[operation] = [this, operation](QTcpSocket *socket) { m_held[operation].append(socket); };
}

bool ScriptedBackend::release(Operation operation, const QByteArray &body, int index)
{
    QList<QPointer<QTcpSocket>> &held = m_held[operation];
    const QPointer<QTcpSocket> socket = index < held.size() ? held.takeAt(index) : nullptr;
    return socket && socket->write(response(200, body)) > 0;
}

bool ScriptedBackend::releaseAll(Operation operation)
{
    const bool isAnyHeld = !m_held.value(operation).isEmpty();
    answerNormally(operation);
    while (!m_held.value(operation).isEmpty())
        release(operation, defaultBody(operation));
    return isAnyHeld;
}

bool ScriptedBackend::sendPart(Operation operation, const QByteArray &bytes)
{
    const QPointer<QTcpSocket> socket = m_held.value(operation).value(0);
    return socket && socket->write(bytes) > 0;
}

QList<ScriptedBackend::Request> ScriptedBackend::requests(Operation operation) const
{
    QList<Request> result;
    std::copy_if(m_requests.cbegin(), m_requests.cend(), std::back_inserter(result),
                 [operation](const Request &request) { return request.operation == operation; });
    return result;
}

QList<QJsonObject> ScriptedBackend::limits() const
{
    QList<QJsonObject> result;
    const QList<Request> received = requests(Limits);
    for (const Request &request : received)
        result.append(request.json().value("limits").toObject());
    return result;
}

void ScriptedBackend::accept(QTcpSocket *socket)
{
    connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    connect(socket, &QTcpSocket::readyRead, this, [this, socket, buffer = QByteArray()]() mutable {
        buffer += socket->readAll();
        // Qt writes the header and the body of a POST separately, and waits until the first is acknowledged.
        const int yes = 1;
        setsockopt(int(socket->socketDescriptor()), IPPROTO_TCP, TCP_QUICKACK, &yes, sizeof yes);
        Request request;
        while (takeRequest(buffer, request))
            serve(socket, request);
    });
}

void ScriptedBackend::serve(QTcpSocket *socket, const Request &request)
{
    m_requests.append(request);
    emit received(request);
    const Script script = m_scripts.value(request.operation);
    if (script)
        script(socket);
    else
        socket->write(response(200, defaultBody(request.operation)));
}

QByteArray ScriptedBackend::defaultBody(Operation operation) const
{
    QJsonObject body;
    if (operation == GroupInfo)
        body = {
            {"evse_ids", wallboxes}
        };
    if (operation == Values)
        body = {
            {"success", true  },
            {"values",  values}
        };
    return QJsonDocument(body).toJson();
}
