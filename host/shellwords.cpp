// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "shellwords.h"

namespace {

class Splitter
{
public:
    explicit Splitter(const QString &line)
        : m_line(line)
    {
    }

    ShellWords split()
    {
        while (m_position < m_line.size() && m_result.error.isEmpty() && !atComment())
            step();
        endWord();
        return m_result.error.isEmpty() ? m_result : ShellWords{{}, m_result.error};
    }

private:
    bool atComment() const { return !m_inWord && m_line.at(m_position) == QLatin1Char('#'); }

    void step()
    {
        const QChar c = m_line.at(m_position++);
        if (c.isSpace())
            endWord();
        else if (c == QLatin1Char('\''))
            singleQuoted();
        else if (c == QLatin1Char('"'))
            doubleQuoted();
        else if (c == QLatin1Char('\\'))
            escaped();
        else
            append(c);
    }

    void singleQuoted()
    {
        const int end = m_line.indexOf(QLatin1Char('\''), m_position);
        if (end < 0)
            return fail(QStringLiteral("A quote (') is not closed."));
        append(m_line.mid(m_position, end - m_position));
        m_position = end + 1;
    }

    void doubleQuoted()
    {
        append(QString());
        while (m_position < m_line.size()) {
            const QChar c = m_line.at(m_position++);
            if (c == QLatin1Char('"'))
                return;
            if (c == QLatin1Char('\\') && QStringLiteral("\"\\$`").contains(next()))
                escaped();
            else
                append(c);
        }
        fail(QStringLiteral("A quote (\") is not closed."));
    }

    void escaped()
    {
        if (m_position == m_line.size())
            return fail(QStringLiteral("There is nothing behind the backslash at the end."));
        append(m_line.at(m_position++));
    }

    //! The character to come; at the end a null one, which no set contains.
    QChar next() const { return m_position < m_line.size() ? m_line.at(m_position) : QChar(); }

    void append(const QString &text)
    {
        m_inWord = true;
        m_word += text;
    }

    void endWord()
    {
        if (m_inWord)
            m_result.words.append(m_word);
        m_word.clear();
        m_inWord = false;
    }

    void fail(const QString &error) { m_result.error = error; }

    const QString m_line;
    int m_position = 0;
    QString m_word;
    bool m_inWord = false; // also with an empty word, as in ""
    ShellWords m_result;
};

} // namespace

ShellWords splitShellWords(const QString &line)
{
    return Splitter(line).split();
}
