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

/*! libmicrohttpd in Qt's event loop: one thread for all connections. Deleting the server ends all connections.
    It serves 500 connections. Further ones wait until one of these has ended. */
class HttpServer : public QObject
{
public:
    /*! Returns the reply to a request. If it returns nothing, it is called again after a moment. */
    using Answer = std::function<std::optional<HttpReply>(HttpRequest &request)>;
    explicit HttpServer(const Answer &answer);
    ~HttpServer() override;
    Q_DISABLE_COPY(HttpServer)

    /*! Lets clients connect. \a port 0 takes a free one. Returns why it failed; empty on success. */
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
    /*! Connections that wait, with the request that has no reply yet, or null for a stream that has nothing to
        send. The daemon owns them. While they wait, it does not notice that a client has disconnected. */
    std::map<MHD_Connection *, HttpRequest *> m_suspended;
};

#endif // HTTPSERVER_H
