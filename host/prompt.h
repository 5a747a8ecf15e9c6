// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef PROMPT_H
#define PROMPT_H

#include "linesource.h"

#include <QSocketNotifier>
#include <QStringList>
#include <QTextDecoder>

#include <functional>
#include <histedit.h>
#include <memory>

/*! The words that can complete a line. */
struct Completions
{
    QString typed;     //!< before the cursor; such a word replaces it
    QStringList words; //!< quoted where they need it
};

/*! The prompt of a terminal, where a command is typed with line editing, history and completion. It reads
    standard input, writes to standard output and has the terminal in raw mode while it exists. */
class Prompt : public LineSource
{
    Q_OBJECT
public:
    using Completer = std::function<Completions(const QString &before)>;

    /*! Keeps the history in \a historyFile. \a completer gets the text before the cursor. */
    Prompt(const QString &historyFile, Completer completer);
    ~Prompt() override;

    QString takeLine() override;
    void awaitCommand() override;

    /*! Prints above the prompt, if it is shown. */
    void print(const QByteArray &bytes);

Q_SIGNALS:
    /*! While the prompt is not shown: Enter has been pressed, or one of Ctrl-C and Ctrl-D. */
    void enterPressed();
    void interrupted();

private:
    bool hide();
    void show();
    void read();
    void handleKeys();
    void editLine();
    void dropLine();
    void acceptLine(const QString &line);
    unsigned char completeWord();

    static int nextKey(EditLine *editor, wchar_t *key);

    const QByteArray m_historyFile;
    const Completer m_completer;
    const std::unique_ptr<History, void (*)(History *)> m_history;
    const std::unique_ptr<EditLine, void (*)(EditLine *)> m_editor;
    QSocketNotifier m_notifier;
    QTextDecoder m_decoder; // keeps the beginning of a character
    std::wstring m_keys;    // typed, not handled yet
    bool m_isShown = false;
    std::wstring m_line;   // unfinished; current while the prompt is not shown
    size_t m_position = 0; // of the cursor in it
};

#endif // PROMPT_H
