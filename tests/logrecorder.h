// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef LOGRECORDER_H
#define LOGRECORDER_H

#include <QStringList>

#include <functional>

/*! Records what is logged in one category, from its construction to its destruction. Other messages are not
    affected. One recorder at a time. */
class LogRecorder
{
public:
    explicit LogRecorder(const char *category = "Vela");
    ~LogRecorder();
    Q_DISABLE_COPY(LogRecorder)

    /*! All lines since the last clear(), each as "debug: TEXT" or "warning: TEXT". */
    QStringList lines() const { return m_lines; }
    /*! How many lines begin with \a start, for example "warning: ". */
    int count(const QString &start) const;
    void clear() { m_lines.clear(); }

    std::function<void(const QString &line)> onLine; //!< called with each line as it is logged; may be empty

private:
    static void record(QtMsgType type, const QMessageLogContext &context, const QString &message);

    static LogRecorder *s_recorder;
    const char *m_category;
    QtMessageHandler m_previous;
    QStringList m_lines;
};

#endif // LOGRECORDER_H
