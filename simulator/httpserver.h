// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT
#ifndef HTTPSERVER_H
#define HTTPSERVER_H

#include "reply.h"

#include <httplib.h>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <set>
#include <thread>

/*! httplib's server, with a thread for each connection, so that no request holds up another, and with an end
 *  that does not wait for clients: connections are cut, whether they are idle or in the middle of a request.
 *  A connection for which there is no thread is closed at once. */
class HttpServer : private httplib::Server
{
public:
    /*! Called from many threads at once. */
    using Answer = std::function<Reply(const httplib::Request &)>;
    explicit HttpServer(Answer answer);

    /*! Returns the port, which was free to choose if \a port is 0; or -1, with the reason in errno where it
     * is not 0. From here on clients can connect. */
    int bind(const std::string &address, int port);
    /*! Serves until end(). \a ready is called once when that may be called. False if the listening failed. */
    bool serve(std::function<void()> ready);
    /*! Callable from any thread. Answers still in the making are lost. */
    void end();

private:
    void respond(const httplib::Request &request, httplib::Response &response);
    void readAndRespond(const httplib::Request &request, httplib::Response &response,
                        const httplib::ContentReader &readBody);
    void setStream(httplib::Response &response, const Reply &reply);
    bool sleep(std::chrono::milliseconds duration);
    bool process_and_close_socket(socket_t socket) override;
    bool enter(socket_t socket);
    void leave(socket_t socket);

    Answer m_answer;
    std::thread::id m_acceptingThread;
    std::mutex m_mutex; // guards all that follows
    std::set<socket_t> m_connections;
    std::condition_variable m_ending;
    bool m_isEnding = false;
};

#endif // HTTPSERVER_H
