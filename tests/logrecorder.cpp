// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "logrecorder.h"

#include <algorithm>
#include <cstring>

LogRecorder *LogRecorder::s_recorder = nullptr;

LogRecorder::LogRecorder(const char *category)
    : m_category(category)
    , m_previous(qInstallMessageHandler(record))
{
    s_recorder = this;
}

LogRecorder::~LogRecorder()
{
    s_recorder = nullptr;
    qInstallMessageHandler(m_previous);
}

void LogRecorder::record(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (!context.category || std::strcmp(context.category, s_recorder->m_category) != 0) {
        s_recorder->m_previous(type, context, message);
        return;
    }
    s_recorder->m_lines.append((type == QtDebugMsg ? "debug: " : "warning: ") + message);
    if (s_recorder->onLine)
        s_recorder->onLine(s_recorder->m_lines.constLast());
}

int LogRecorder::count(const QString &start) const
{
    return int(std::count_if(m_lines.cbegin(), m_lines.cend(),
                             [&start](const QString &line) { return line.startsWith(start); }));
}
