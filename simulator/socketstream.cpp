// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT
#include "socketstream.h"

#include <algorithm>

#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>

using namespace std::chrono_literals;

namespace {
constexpr std::chrono::milliseconds patienceWithinRequest = 5s;
}

SocketStream::SocketStream(socket_t socket, size_t largestRequest)
    : m_socket(socket)
    , m_largestRequest(largestRequest)
{
}

bool SocketStream::waitForRequest(std::chrono::milliseconds patience)
{
    if (m_requestSize > m_largestRequest)
        return false; // what follows is still a part of it
    m_requestSize = 0;
    return m_begin < m_end || fill(patience);
}

bool SocketStream::is_readable() const
{
    return m_begin < m_end || isReady(POLLIN, patienceWithinRequest);
}

bool SocketStream::is_writable() const
{
    return isReady(POLLOUT, patienceWithinRequest);
}

ssize_t SocketStream::read(char *data, size_t size)
{
    if (m_requestSize > m_largestRequest || (m_begin == m_end && !fill(patienceWithinRequest)))
        return 0;
    const size_t length = std::min(size, m_end - m_begin);
    std::copy_n(m_buffer.begin() + m_begin, length, data);
    m_begin += length;
    m_requestSize += length;
    return ssize_t(length);
}

ssize_t SocketStream::write(const char *data, size_t size)
{
    return is_writable() ? ::send(m_socket, data, size, MSG_NOSIGNAL) : -1;
}

bool SocketStream::isReady(short events, std::chrono::milliseconds patience) const
{
    pollfd descriptor{m_socket, events, 0};
    int ready = -1;
    do {
        ready = ::poll(&descriptor, 1, int(patience.count()));
    } while (ready < 0 && errno == EINTR);
    return ready > 0;
}

bool SocketStream::fill(std::chrono::milliseconds patience)
{
    if (!isReady(POLLIN, patience))
        return false;
    const ssize_t received = ::recv(m_socket, m_buffer.data(), m_buffer.size(), 0);
    const int on = 1; // the kernel forgets it, hence after each read
    ::setsockopt(m_socket, IPPROTO_TCP, TCP_QUICKACK, &on, sizeof on);
    m_begin = 0;
    m_end = size_t(std::max<ssize_t>(received, 0));
    return m_end > 0;
}
