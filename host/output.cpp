// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "output.h"

#include "printable.h"
#include "prompt.h"
#include "screen.h"

#include <QTextCodec>

#include <algorithm>
#include <cstdio>
#include <unistd.h>

namespace {

constexpr int mostWarningLines = 3;

TableStyle styleFor(bool isTerminal)
{
    constexpr int utf8Mib = 106;
    constexpr int linesBesidesRows = 6;
    TableStyle style;
    style.unicode = QTextCodec::codecForLocale()->mibEnum() == utf8Mib;
    style.colour = isTerminal && qEnvironmentVariableIsEmpty("NO_COLOR");
    if (isTerminal) {
        style.width = screenSize().width();
        style.maxRows = screenSize().height() - linesBesidesRows;
    }
    return style;
}

} // namespace

Output::Output(bool isJson, Prompt *prompt)
    : m_isJson(isJson)
    , m_isTerminal(::isatty(STDOUT_FILENO))
    , m_prompt(prompt)
{
    // Only a log on the same terminal can break the prompt or the table.
    if (m_isTerminal && ::isatty(STDERR_FILENO))
        setLogSink(this);
}

Output::~Output()
{
    setLogSink(nullptr);
}

void Output::print(const Message &message)
{
    if (m_isJson)
        return write(printableJson(message.json) + '\n');
    const bool isEvent = message.json.contains(QLatin1String("event"));
    if (isEvent && m_drawnLines > 0)
        return; // The table shows it already.
    m_drawnLines = 0;
    QByteArray bytes;
    for (const QString &line : message.lines)
        bytes += printable(line).toUtf8() + '\n';
    if (!bytes.isEmpty())
        write(bytes);
}

void Output::draw(const WallboxTable &table)
{
    if (m_isJson)
        return; // The events contain the same values.
    if (m_drawnLines == 0)
        m_warningCount = 0;
    TableStyle style = styleFor(m_isTerminal);
    const QStringList warning = warningLines(style.width);
    style.maxRows = std::max(1, style.maxRows - warning.size());
    QStringList lines = liveTable(table, style) + warning;
    if (!m_isTerminal)
        return write(lines.join(QLatin1Char('\n')).toUtf8() + "\n\n");
    const QSize size = screenSize();
    lines = lines.mid(0, size.height() - 1); // The cursor needs a line, too.
    QString begin = m_drawnLines > 0 ? QStringLiteral("\x1b[%1F").arg(m_drawnLines) : QString();
    if (m_drawnLines > 0 && size != m_drawnSize)
        begin = QStringLiteral("\x1b[H\x1b[2J"); // Where the last table is now, only the terminal knows.
    write((begin + lines.join(QLatin1String("\x1b[K\n"))).toUtf8() + "\x1b[K\n\x1b[J");
    m_drawnLines = lines.size();
    m_drawnSize = size;
}

/*! The last warning of the log, whose records would break the table while it is shown. */
QStringList Output::warningLines(int width) const
{
    if (m_warningCount == 0)
        return {};
    const qint64 age = m_lastWarningTime.secsTo(QDateTime::currentDateTimeUtc());
    const QString heading = m_warningCount == 1
        ? QStringLiteral("A warning, %1 s ago:").arg(age)
        : QStringLiteral("%1 warnings, the last one %2 s ago:").arg(m_warningCount).arg(age);
    QStringList lines{heading.left(width)};
    QString rest = m_lastWarning;
    for (int i = 0; i < mostWarningLines && !rest.isEmpty(); ++i) {
        lines.append(leftColumns(rest, width));
        rest.remove(0, lines.constLast().size());
    }
    return lines;
}

void Output::writeRecord(QtMsgType type, const QString &message, const QByteArray &record)
{
    if (m_drawnLines == 0)
        return write(record);
    if (type != QtWarningMsg && type != QtCriticalMsg)
        return;
    ++m_warningCount;
    m_lastWarning = printable(message.simplified());
    m_lastWarningTime = QDateTime::currentDateTimeUtc();
}

void Output::write(const QByteArray &bytes)
{
    if (m_prompt)
        return m_prompt->print(bytes);
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout);
    std::fflush(stdout);
}
