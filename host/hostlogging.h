// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef HOSTLOGGING_H
#define HOSTLOGGING_H

#include <QLoggingCategory>

/*! Category "Host": the host's own messages. */
Q_DECLARE_LOGGING_CATEGORY(dcHost)

/*! Where log records go instead of standard error. */
class LogSink
{
public:
    virtual ~LogSink() = default;
    /*! Writes \a record, which ends with a line feed. \a message is its text alone. */
    virtual void writeRecord(QtMsgType type, const QString &message, const QByteArray &record) = 0;
};

/*! Gives the records of the calling thread to \a sink, until it is called again; null stands for none. */
void setLogSink(LogSink *sink);

/*! Takes the logging rules out of the environment and returns them. There they would override those of
    startLogging(). Call it before QCoreApplication exists. */
QString takeEnvironmentLogRules();

/*! Writes log records to standard error: "2026-01-31T12:34:56.789 warning Vela: text". A record begins with
    its time, further lines of its text begin with spaces, and each line is made printable(). \a rules,
    separated by semicolons, choose the records. Without any, debug records are left out if standard error is
    a terminal. */
void startLogging(QString rules);

#endif // HOSTLOGGING_H
