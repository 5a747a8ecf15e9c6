// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "linereader.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <unistd.h>

LineReader::LineReader(int fd, QObject *parent)
    : QObject(parent)
    , m_fd(fd)
    , m_notifier(fd, QSocketNotifier::Read)
{
    connect(&m_notifier, &QSocketNotifier::activated, this, &LineReader::read);
}

void LineReader::setPaused(bool paused)
{
    m_notifier.setEnabled(!paused && !m_atEnd);
}

void LineReader::read()
{
    std::array<char, 4096> buffer;
    const ssize_t count = ::read(m_fd, buffer.data(), buffer.size());
    if (count < 0 && (errno == EINTR || errno == EAGAIN))
        return;
    if (count > 0)
        m_rest.append(buffer.data(), static_cast<int>(count));
    m_atEnd = count <= 0;
    if (m_atEnd && !m_rest.isEmpty())
        m_rest.append('\n');
    // Only what is new may end a line: looking through all of a long one each time would take its square.
    if (!m_atEnd && std::memchr(buffer.data(), '\n', static_cast<size_t>(count)) == nullptr)
        return;

    QList<QByteArray> lines = m_rest.split('\n');
    m_rest = lines.takeLast();
    for (const QByteArray &line : qAsConst(lines))
        emit lineRead(QString::fromUtf8(line));
    if (m_atEnd) {
        m_notifier.setEnabled(false);
        emit ended();
    }
}
