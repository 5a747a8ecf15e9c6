// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef HTTPSERVER_H
#define HTTPSERVER_H

#include "httpmessages.h"

#include <QSocketNotifier>
#include <QTimer>

#include <microhttpd.h>

#include <map>
#include <memory>
#include <optional>

/*! libmicrohttpd in Qt's event loop: one thread for all connections. Deleting the server ends them, whatever
    they are doing. It serves 500 connections; further ones wait until one of these has ended. */
class HttpServer : public QObject
{
public:
    /*! Returns the reply to a request; or nothing, and is asked again a moment later. */
    using Answer = std::function<std::optional<HttpReply>(HttpRequest &request)>;
    explicit HttpServer(const Answer &answer);
    ~HttpServer() override;
    Q_DISABLE_COPY(HttpServer)

    /*! Clients can connect from here on. \a port 0 takes one that is free. Returns why it is not possible;
        empty on success. */
    QString listen(const QString &address, int port);
    int port() const;

private:
    struct Stream;

    static MHD_Result receive(void *server, MHD_Connection *connection, const char *url, const char *method,
                              const char *version, const char *data, size_t *size, void **state);
    static ssize_t readStream(void *stream, uint64_t position, char *buffer, size_t size);

    MHD_Result receiveHead(MHD_Connection *connection, HttpRequest &request);
    MHD_Result answer(MHD_Connection *connection, HttpRequest &request);
    MHD_Result send(MHD_Connection *connection, const HttpReply &reply);
    void suspend(MHD_Connection *connection, HttpRequest *request);
    void resume();
    void run();

    Answer m_answer;
    MHD_Daemon *m_daemon = nullptr; // owned by this object; runs from listen() on
    std::unique_ptr<QSocketNotifier> m_notifier;
    QTimer m_timer;
    /*! Connections that wait: with a request that has no reply yet, or a stream (null) that has nothing to
        send. The daemon owns them, and does not notice meanwhile if a client goes. */
    std::map<MHD_Connection *, HttpRequest *> m_suspended;
};

#endif // HTTPSERVER_H
