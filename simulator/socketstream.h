// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT
#ifndef SOCKETSTREAM_H
#define SOCKETSTREAM_H

#include <httplib.h>

#include <array>
#include <chrono>

/*! One connection as httplib reads and writes it. The socket stays its opener's.
 *
 *  Differs from the library's own in two ways: what is read is acknowledged at once, since a client that
 * writes head and body separately waits 40 ms for a delayed acknowledgement; and one stream serves all
 * requests of a connection, so that a request which came along with the one before is not lost. */
class SocketStream : public httplib::Stream
{
public:
    /*! Ends once a single request has taken more than \a largestRequest bytes. */
    SocketStream(socket_t socket, size_t largestRequest);

    /*! False if \a patience runs out before the client sends anything, or the connection has ended. */
    bool waitForRequest(std::chrono::milliseconds patience);

    bool is_readable() const override;
    bool is_writable() const override;
    ssize_t read(char *data, size_t size) override;
    ssize_t write(const char *data, size_t size) override;
    void get_remote_ip_and_port(std::string &, int &) const override { } // nobody asks who it is
    void get_local_ip_and_port(std::string &, int &) const override { }
    socket_t socket() const override { return m_socket; }

private:
    bool isReady(short events, std::chrono::milliseconds patience) const;
    bool fill(std::chrono::milliseconds patience);

    socket_t m_socket;
    size_t m_largestRequest; // bytes
    size_t m_requestSize = 0;
    std::array<char, 4096> m_buffer;
    size_t m_begin = 0; // of what has been received and not been read
    size_t m_end = 0;
};

#endif // SOCKETSTREAM_H
