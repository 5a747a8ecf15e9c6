// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT
#include "httpserver.h"

#include "socketstream.h"

#include <atomic>
#include <cstdio>
#include <list>
#include <system_error>
#include <thread>

#include <sys/socket.h>
#include <unistd.h>

namespace {
constexpr time_t keepAliveSeconds = 60; // far more than the two seconds between polls
constexpr size_t keepAliveRequests = 1000000000;
constexpr size_t largestBody = 1 << 20;                // bytes, unpacked
constexpr size_t largestRequest = 2 << 20;             // bytes on the wire, the head and all framing included
constexpr std::chrono::milliseconds streamPeriod{500}; // a change on a page seems to come at once

// Whether the request that this thread answers has been read to its end. If not, the connection ends with the
// answer: a foreign page could have hidden a request of its own in the body, behind the check of its origin.
thread_local bool requestIsRead = false;

/*! A thread for each connection. Those that are done are collected when the next one comes. A task for which
    there is no thread runs at once, in the accepting thread. */
class ConnectionThreads : public httplib::TaskQueue
{
public:
    void enqueue(std::function<void()> task) override
    {
        collect(false);
        Connection &connection = m_connections.emplace_back();
        try {
            connection.thread = std::thread([task, &connection] {
                task();
                connection.isDone = true;
            });
        } catch (const std::system_error &error) {
            m_connections.pop_back();
            std::fprintf(stderr, "vela-simulator: connection refused, no thread for it: %s\n", error.what());
            task();
        }
    }
    void shutdown() override { collect(true); }

private:
    struct Connection
    {
        std::thread thread;
        std::atomic_bool isDone = false;
    };

    void collect(bool all)
    {
        m_connections.remove_if([all](Connection &connection) {
            const bool isOver = all || connection.isDone;
            if (isOver)
                connection.thread.join();
            return isOver;
        });
    }

    std::list<Connection> m_connections; // the accepting thread's alone
};

void allowQuickRestart(socket_t socket)
{
    // The library would share the port with whoever else listens there (SO_REUSEPORT).
    const int on = 1;
    ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
}

bool announcesBody(const httplib::Request &request)
{
    return request.has_header("Content-Length") || request.has_header("Transfer-Encoding");
}

void setBody(httplib::Response &response, const Reply &reply)
{
    response.status = reply.status;
    if (reply.status == 204 || reply.status == 304)
        return; // may have no body, which would pass for the start of the next reply
    response.set_content(reply.body.constData(), size_t(reply.body.size()), reply.contentType);
}

void explainRefusal(const httplib::Request & /*request*/, httplib::Response &response)
{
    if (!response.body.empty())
        return;
    // The library's own, or that of a body that was not read.
    setBody(response,
            refusal(response.status,
                    response.status == 413 ? QStringLiteral("the body is larger than 1 MB")
                                           : QStringLiteral("malformed request")));
}
} // namespace

HttpServer::HttpServer(Answer answer)
    : m_answer(std::move(answer))
{
    set_tcp_nodelay(true);
    set_socket_options(&allowQuickRestart);
    set_keep_alive_max_count(keepAliveRequests);
    set_keep_alive_timeout(keepAliveSeconds);
    set_payload_max_length(largestBody);
    set_default_headers({
        {"Cache-Control",                "no-store"   },
        {"Cross-Origin-Resource-Policy", "same-origin"},
        {"X-Content-Type-Options",       "nosniff"    },
        {"X-Frame-Options",              "DENY"       }
    });
    set_error_handler(Handler(&explainRefusal));
    // A request that announces no body has none; the library would wait for one.
    set_pre_routing_handler([this](const httplib::Request &request, httplib::Response &response) {
        if (announcesBody(request))
            return HandlerResponse::Unhandled;
        requestIsRead = true;
        respond(request, response);
        return HandlerResponse::Handled;
    });
    const Handler handler = [this](const httplib::Request &request, httplib::Response &response) {
        respond(request, response);
    };
    const char anyPath[] = R"([\s\S]*)";
    const HandlerWithContentReader bodyHandler =
        [this](const httplib::Request &request, httplib::Response &response,
               const httplib::ContentReader &readBody) { readAndRespond(request, response, readBody); };
    Get(anyPath, handler).Options(anyPath, handler);
    Post(anyPath, bodyHandler).Put(anyPath, bodyHandler);
    Patch(anyPath, bodyHandler).Delete(anyPath, bodyHandler);
}

int HttpServer::bind(const std::string &address, int port)
{
    errno = 0;
    if (port == 0)
        return bind_to_any_port(address);
    return bind_to_port(address, port) ? port : -1;
}

bool HttpServer::serve(std::function<void()> ready)
{
    // The library asks for its task queue once it can be stopped; stopped earlier, it would not notice.
    new_task_queue = [this, ready = std::move(ready)] {
        m_acceptingThread = std::this_thread::get_id();
        ready();
        return new ConnectionThreads; // the library's
    };
    // The library lets five clients queue up; the sixth of a burst would try again after a second.
    ::listen(svr_sock_, SOMAXCONN);
    return listen_after_bind();
}

void HttpServer::end()
{
    stop();
    const std::lock_guard lock(m_mutex);
    m_isEnding = true;
    m_ending.notify_all();
    for (const socket_t socket : m_connections)
        ::shutdown(socket, SHUT_RDWR); // its thread wakes up and closes it
}

void HttpServer::respond(const httplib::Request &request, httplib::Response &response)
{
    const Reply reply = m_answer(request);
    response.set_header("Content-Security-Policy",
                        reply.policy.isEmpty() ? "default-src 'none'" : reply.policy.toStdString());
    if (reply.next)
        setStream(response, reply);
    else
        setBody(response, reply);
}

// The library limits only the lengths that a head announces, neither chunked nor compressed bodies.
void HttpServer::readAndRespond(const httplib::Request &request, httplib::Response &response,
                                const httplib::ContentReader &readBody)
{
    httplib::Request complete = request;
    bool isTooLarge = false;
    if (request.is_multipart_form_data()) { // the library hands these out in another way
        setBody(response, refusal(415, QStringLiteral("the body is no JSON")));
        return;
    }
    const bool isRead = readBody([&complete, &isTooLarge](const char *data, size_t size) {
        isTooLarge = isTooLarge || complete.body.size() + size > largestBody;
        if (!isTooLarge)
            complete.body.append(data, size);
        return true; // the rest is read as well, so that the next request is found behind it
    });
    requestIsRead = isRead;
    if (isTooLarge)
        response.status = 413;
    else if (isRead)
        respond(complete, response);
}

void HttpServer::setStream(httplib::Response &response, const Reply &reply)
{
    response.status = reply.status;
    const auto provider = [this, next = reply.next](size_t /*offset*/, httplib::DataSink &sink) {
        const QByteArray chunk = next();
        return sink.write(chunk.constData(), size_t(chunk.size())) && sleep(streamPeriod);
    };
    response.set_chunked_content_provider(reply.contentType, provider);
}

// False if the end has come meanwhile.
bool HttpServer::sleep(std::chrono::milliseconds duration)
{
    std::unique_lock lock(m_mutex);
    return !m_ending.wait_for(lock, duration, [this] { return m_isEnding; });
}

// The library's seam for other kinds of connections; its own would be out of our reach when the end comes.
bool HttpServer::process_and_close_socket(socket_t socket)
{
    // In the accepting thread the connection would hold up all others.
    bool isAlive = enter(socket) && std::this_thread::get_id() != m_acceptingThread;
    SocketStream stream(socket, largestRequest);
    while (isAlive && stream.waitForRequest(std::chrono::seconds(keep_alive_timeout_sec_))) {
        bool isClosed = false;
        requestIsRead = false;
        isAlive = process_request(stream, false, isClosed, nullptr) && !isClosed && requestIsRead;
    }
    leave(socket);
    return isAlive;
}

bool HttpServer::enter(socket_t socket)
{
    const std::lock_guard lock(m_mutex);
    m_connections.insert(socket);
    return !m_isEnding;
}

void HttpServer::leave(socket_t socket)
{
    const std::lock_guard lock(m_mutex); // until it is closed, else end() could hit its number's next owner
    m_connections.erase(socket);
    ::shutdown(socket, SHUT_RDWR);
    ::close(socket);
}
