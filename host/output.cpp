// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "output.h"

#include "livetable.h"
#include "printable.h"

#include <QDateTime>
#include <QTextCodec>

#include <algorithm>
#include <cstdio>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {

void put(const QByteArray &bytes)
{
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout);
    std::fflush(stdout);
}

void putLines(const QStringList &lines)
{
    for (const QString &line : lines)
        put(printable(line).toUtf8() + '\n');
}

TableStyle styleFor(bool isTerminal)
{
    constexpr int utf8Mib = 106;
    constexpr int linesBesidesRows = 6;
    TableStyle style;
    style.unicode = QTextCodec::codecForLocale()->mibEnum() == utf8Mib;
    style.colour = isTerminal && qEnvironmentVariableIsEmpty("NO_COLOR");
    winsize size = {};
    if (!isTerminal)
        return style;
    const bool isKnown = ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 && size.ws_row > 0;
    style.width = isKnown ? size.ws_col : style.width;
    style.maxRows = std::max(1, (isKnown ? size.ws_row : 24) - linesBesidesRows);
    return style;
}

} // namespace

Output::Output(bool isJson)
    : m_isJson(isJson)
    , m_isTerminal(::isatty(STDOUT_FILENO))
    , m_hasPrompt(!isJson && m_isTerminal && ::isatty(STDIN_FILENO))
{
}

void Output::awaitCommand()
{
    if (!m_hasPrompt || m_atPrompt)
        return;
    put("vela> ");
    m_atPrompt = true;
}

void Output::commandRead()
{
    m_atPrompt = false;
}

void Output::print(const Message &message)
{
    if (m_isJson)
        return put(printableJson(message.json) + '\n');
    if (message.json.contains(QLatin1String("event")))
        return printEvent(message.lines);
    m_drawnLines = 0;
    putLines(message.lines);
}

void Output::printEvent(const QStringList &lines)
{
    // The table shows it already, and would be torn.
    if (lines.isEmpty() || m_drawnLines > 0)
        return;
    const bool atPrompt = m_atPrompt;
    m_atPrompt = false;
    if (atPrompt)
        put("\r\x1b[K");
    putLines(lines);
    if (atPrompt)
        awaitCommand();
}

void Output::draw(const Things &wallboxes)
{
    if (m_isJson)
        return; // the events tell it all
    if (wallboxes.isEmpty()) {
        m_drawnLines = 0;
        return putLines({QStringLiteral("There are no wallboxes yet.")});
    }
    const QStringList lines =
        liveTable(wallboxes, styleFor(m_isTerminal), QDateTime::currentSecsSinceEpoch());
    if (!m_isTerminal)
        return put(lines.join(QLatin1Char('\n')).toUtf8() + "\n\n");
    const QString up = m_drawnLines > 0 ? QStringLiteral("\x1b[%1F").arg(m_drawnLines) : QString();
    put((up + lines.join(QLatin1String("\x1b[K\n"))).toUtf8() + "\x1b[K\n\x1b[J");
    m_drawnLines = lines.size();
}
