// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "linereader.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <unistd.h>

LineReader::LineReader()
    : m_notifier(STDIN_FILENO, QSocketNotifier::Read)
{
    connect(&m_notifier, &QSocketNotifier::activated, this, &LineReader::read);
}

QString LineReader::takeLine()
{
    QString line = LineSource::takeLine();
    m_notifier.setEnabled(!hasLine() && !m_isAtEnd);
    return line;
}

void LineReader::read()
{
    std::array<char, 4096> buffer;
    const ssize_t count = ::read(STDIN_FILENO, buffer.data(), buffer.size());
    if (count < 0 && (errno == EINTR || errno == EAGAIN))
        return;
    m_isAtEnd = count <= 0;
    if (!m_isAtEnd)
        m_rest.append(buffer.data(), int(count));
    else if (!m_rest.isEmpty())
        m_rest.append('\n');
    // Only the new part is searched, as searching a long line from its beginning each time would be too slow.
    if (!m_isAtEnd && std::memchr(buffer.data(), '\n', size_t(count)) == nullptr)
        return;
    QList<QByteArray> lines = m_rest.split('\n');
    m_rest = lines.takeLast();
    for (const QByteArray &line : qAsConst(lines))
        add(QString::fromUtf8(line.constData(), line.size())); // with its NUL characters
    m_notifier.setEnabled(false);
    emit ready();
}
