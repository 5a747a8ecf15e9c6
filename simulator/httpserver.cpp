// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "httpserver.h"

#include <QHostInfo>
#include <QTcpServer>

#include <algorithm>

#include <fcntl.h>
#include <sys/socket.h>

using namespace std::chrono_literals;

namespace {

constexpr unsigned mostConnections = 500; // half the usual limit of open files
constexpr unsigned idleSeconds = 60;      // far more than the two seconds between polls
constexpr int largestBody = 1 << 20;      // bytes
constexpr int mostBytesRead = 2 << 20;    // of a body whose length was not announced
constexpr size_t streamBlock = 4096;      // bytes
constexpr auto retryPeriod = 20ms;        // for requests that are held back and streams that wait
constexpr auto idleCheckPeriod = 1s;

QByteArray header(MHD_Connection *connection, const char *name)
{
    return MHD_lookup_connection_value(connection, MHD_HEADER_KIND, name);
}

void deleteRequest(void *, MHD_Connection *, void **request, MHD_RequestTerminationCode)
{
    delete static_cast<HttpRequest *>(*request);
}

HttpReply tooLarge()
{
    return refusal(413, QStringLiteral("the body is larger than 1 MB"));
}

} // namespace

struct HttpServer::Stream
{
    HttpServer *server;
    MHD_Connection *connection;
    std::function<QByteArray()> next;
    QByteArray chunk = {};
    int written = 0; // bytes of the chunk
};

HttpServer::HttpServer(const Answer &answer)
    : m_answer(answer)
{
    m_timer.callOnTimeout(this, &HttpServer::resume);
}

HttpServer::~HttpServer()
{
    m_notifier.reset(); // its descriptor is the daemon's
    for (const auto &[connection, request] : m_suspended)
        MHD_resume_connection(connection); // required before the daemon is stopped
    if (m_daemon)
        MHD_stop_daemon(m_daemon);
}

QString HttpServer::listen(const QString &address, int port)
{
    const QList<QHostAddress> found = QHostInfo::fromName(address).addresses();
    if (found.isEmpty())
        return QStringLiteral("no such address");
    QTcpServer socket;
    const auto canListen = [&socket, port](const QHostAddress &host) {
        return socket.listen(host, quint16(port));
    };
    if (std::none_of(found.begin(), found.end(), canListen))
        return socket.errorString();
    const int listener = ::fcntl(int(socket.socketDescriptor()), F_DUPFD_CLOEXEC, 0);
    ::listen(listener, SOMAXCONN); // Qt lets only 50 connections wait.
    // From here on the daemon owns the listening socket.
    m_daemon = MHD_start_daemon(MHD_USE_EPOLL | MHD_ALLOW_SUSPEND_RESUME, 0, nullptr, nullptr, &receive, this,
                                MHD_OPTION_LISTEN_SOCKET, listener, MHD_OPTION_NOTIFY_COMPLETED,
                                &deleteRequest, nullptr, MHD_OPTION_CONNECTION_LIMIT, mostConnections,
                                MHD_OPTION_CONNECTION_TIMEOUT, idleSeconds, MHD_OPTION_END);
    if (!m_daemon)
        return QStringLiteral("the HTTP library does not start");
    const int epoll = MHD_get_daemon_info(m_daemon, MHD_DAEMON_INFO_EPOLL_FD)->epoll_fd;
    m_notifier = std::make_unique<QSocketNotifier>(epoll, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &HttpServer::run);
    m_timer.start(idleCheckPeriod);
    return {};
}

int HttpServer::port() const
{
    return MHD_get_daemon_info(m_daemon, MHD_DAEMON_INFO_BIND_PORT)->port;
}

/*! Called with the head of a request, with each part of its body, and then until there is a reply. */
MHD_Result HttpServer::receive(void *server, MHD_Connection *connection, const char *url, const char *method,
                               const char *, const char *data, size_t *size, void **state)
{
    auto *self = static_cast<HttpServer *>(server);
    auto *request = static_cast<HttpRequest *>(*state);
    if (!request) {
        request = new HttpRequest; // deleted by deleteRequest()
        *state = request;
        request->method = method;
        request->path = QString::fromUtf8(url);
        return self->receiveHead(connection, *request);
    }
    if (*size == 0)
        return self->answer(connection, *request);
    request->body.append(data, int(*size));
    *size = 0;
    return request->body.size() <= mostBytesRead ? MHD_YES : MHD_NO; // MHD_NO ends the connection
}

/*! A refusal at this point ends the connection, so that the body is not taken for the next request. */
MHD_Result HttpServer::receiveHead(MHD_Connection *connection, HttpRequest &request)
{
    if (header(connection, "Content-Length").toULongLong() > qulonglong(largestBody))
        return send(connection, tooLarge());
    if (header(connection, "Content-Type").startsWith("multipart/form-data"))
        return send(connection, refusal(415, QStringLiteral("the body is not JSON")));
    request.host = header(connection, "Host");
    request.origin = header(connection, "Origin");
    request.authorization = header(connection, "Authorization");
    return MHD_YES;
}

MHD_Result HttpServer::answer(MHD_Connection *connection, HttpRequest &request)
{
    if (request.body.size() > largestBody)
        return send(connection, tooLarge());
    if (!request.age.isValid())
        request.age.start();
    if (const std::optional<HttpReply> reply = m_answer(request))
        return send(connection, *reply);
    suspend(connection, &request);
    return MHD_YES;
}

MHD_Result HttpServer::send(MHD_Connection *connection, const HttpReply &reply)
{
    MHD_Response *response = reply.next
        ? MHD_create_response_from_callback(MHD_SIZE_UNKNOWN, streamBlock, &readStream,
                                            new Stream{this, connection, reply.next},
                                            [](void *stream) { delete static_cast<Stream *>(stream); })
        : MHD_create_response_from_buffer(size_t(reply.body.size()),
                                          const_cast<char *>(reply.body.constData()), MHD_RESPMEM_MUST_COPY);
    const std::pair<const char *, const char *> headers[] = {
        {"Content-Type",                 reply.contentType},
        {"Content-Security-Policy",      reply.policy     },
        {"Cache-Control",                "no-store"       },
        {"Cross-Origin-Resource-Policy", "same-origin"    },
        {"X-Content-Type-Options",       "nosniff"        },
        {"X-Frame-Options",              "DENY"           },
    };
    for (const auto &[name, value] : headers)
        MHD_add_response_header(response, name, value);
    const MHD_Result result = MHD_queue_response(connection, unsigned(reply.status), response);
    MHD_destroy_response(response); // once it has been sent
    return result;
}

ssize_t HttpServer::readStream(void *stream, uint64_t, char *buffer, size_t size)
{
    auto &[server, connection, next, chunk, written] = *static_cast<Stream *>(stream);
    if (written == chunk.size()) {
        chunk = next();
        written = 0;
    }
    if (chunk.isEmpty())
        server->suspend(connection, nullptr);
    const int length = std::min(int(size), chunk.size() - written);
    std::copy_n(chunk.constData() + written, length, buffer);
    written += length;
    return length;
}

void HttpServer::suspend(MHD_Connection *connection, HttpRequest *request)
{
    MHD_suspend_connection(connection);
    m_suspended[connection] = request;
    if (m_timer.intervalAsDuration() != retryPeriod)
        m_timer.start(retryPeriod);
}

void HttpServer::resume()
{
    for (const auto &[connection, request] : std::exchange(m_suspended, {})) {
        const std::optional<HttpReply> reply = request ? m_answer(*request) : std::nullopt;
        if (request && !reply) {
            m_suspended[connection] = request;
            continue;
        }
        if (reply)
            send(connection, *reply);
        MHD_resume_connection(connection);
    }
    run();
    if (m_suspended.empty() && m_timer.intervalAsDuration() != idleCheckPeriod)
        m_timer.start(idleCheckPeriod);
}

void HttpServer::run()
{
    MHD_run(m_daemon);
    MHD_UNSIGNED_LONG_LONG timeout = 0;
    if (MHD_get_timeout(m_daemon, &timeout) == MHD_YES && timeout == 0)
        QTimer::singleShot(0, this, &HttpServer::run); // more has already been received
}
