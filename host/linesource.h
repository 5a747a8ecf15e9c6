// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef LINESOURCE_H
#define LINESOURCE_H

#include <QObject>
#include <QQueue>

/*! Where lines with commands come from. */
class LineSource : public QObject
{
    Q_OBJECT
public:
    bool hasLine() const { return !m_lines.isEmpty(); }
    virtual QString takeLine() { return m_lines.dequeue(); }
    /*! Nothing follows: the input has ended, or cannot be read. */
    bool isAtEnd() const { return m_isAtEnd && m_lines.isEmpty(); }
    /*! All commands have been carried out, and another one may be typed. */
    virtual void awaitCommand() { }

    void add(const QString &line) { m_lines.enqueue(line); }

Q_SIGNALS:
    /*! There is a line, or the input has ended. */
    void ready();

protected:
    bool m_isAtEnd = false;

private:
    QQueue<QString> m_lines;
};

#endif // LINESOURCE_H
