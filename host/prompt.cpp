// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "prompt.h"

#include "printable.h"
#include "screen.h"

#include <QFile>
#include <QTextCodec>

#include <array>
#include <cerrno>
#include <cstdio>
#include <unistd.h>
#include <utility>

namespace {

constexpr int historySize = 500;    // lines
constexpr wchar_t interruptKey = 3; // Ctrl-C
constexpr wchar_t endKey = 4;       // Ctrl-D
char promptText[] = "vela> ";

Prompt *promptOf(EditLine *editor)
{
    void *prompt = nullptr;
    el_get(editor, EL_CLIENTDATA, &prompt);
    return static_cast<Prompt *>(prompt);
}

QString commonBeginning(const QStringList &words)
{
    QString common = words.constFirst();
    for (const QString &word : words) {
        while (!word.startsWith(common))
            common.chop(1);
    }
    return common;
}

} // namespace

Prompt::Prompt(const QString &historyFile, Completer completer)
    : m_historyFile(QFile::encodeName(historyFile))
    , m_completer(std::move(completer))
    , m_history(history_init(), history_end)
    , m_editor(el_init("vela-host", stdin, stdout, stderr), el_end)
    , m_notifier(STDIN_FILENO, QSocketNotifier::Read)
    , m_decoder(QTextCodec::codecForName("UTF-8"))
{
    HistEvent event;
    history(m_history.get(), &event, H_SETSIZE, historySize);
    history(m_history.get(), &event, H_SETUNIQUE, 1);
    history(m_history.get(), &event, H_LOAD, m_historyFile.constData());

    EditLine *editor = m_editor.get();
    el_set(editor, EL_CLIENTDATA, this);
    el_set(
        editor, EL_PROMPT, +[](EditLine *) { return promptText; });
    el_set(editor, EL_GETCFN, &Prompt::nextKey);
    el_set(editor, EL_HIST, &history, m_history.get());
    el_set(editor, EL_EDITOR, "emacs");
    el_set(
        editor, EL_ADDFN, "vela-complete", "complete the word",
        +[](EditLine *caller, int) { return promptOf(caller)->completeWord(); });
    constexpr std::array<const char *, 2> keys[] = {
        {"^I",     "vela-complete"         },
        {"^R",     "ed-search-prev-history"},
        {"\\e[H",  "ed-move-to-beg"        },
        {"\\e[F",  "ed-move-to-end"        },
        {"\\e[3~", "ed-delete-next-char"   },
        {"\\e[2~", "ed-ignore"             }, // Insert, Page Up and Page Down would type "~"
        {"\\e[5~", "ed-ignore"             },
        {"\\e[6~", "ed-ignore"             },
        {"\\ex",   "ed-ignore"             }, // the editor's own commands, for which it waits for more keys
        {"\\eX",   "ed-ignore"             },
        {"^V",     "ed-ignore"             }, // these would take the next key as it is, and wait for it
        {"^@",     "ed-ignore"             },
    };
    for (const auto &[key, function] : keys)
        el_set(editor, EL_BIND, key, function, nullptr);
    // Ctrl-C is a key, which never ends the host.
    el_set(editor, EL_SETTY, "-d", "-isig", nullptr);
    connect(&m_notifier, &QSocketNotifier::activated, this, &Prompt::read);
}

Prompt::~Prompt()
{
    hide();
}

/*! Gives the editor its keys without waiting: it would block the event loop at the first half of a sequence. */
int Prompt::nextKey(EditLine *editor, wchar_t *key)
{
    std::wstring &keys = promptOf(editor)->m_keys;
    if (keys.empty())
        return 0;
    *key = keys.front();
    keys.erase(0, 1);
    return 1;
}

QString Prompt::takeLine()
{
    hide(); // before a command that has not been typed
    return LineSource::takeLine();
}

void Prompt::awaitCommand()
{
    if (m_isShown)
        return;
    show();
    // Keys may have been typed ahead.
    QMetaObject::invokeMethod(this, &Prompt::handleKeys, Qt::QueuedConnection);
}

void Prompt::print(const QByteArray &bytes)
{
    const bool wasShown = hide();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout);
    std::fflush(stdout);
    if (wasShown)
        show();
}

void Prompt::show()
{
    m_isShown = true;
    // The editor begins a new line whenever it enters this mode, in which it handles one key a call.
    el_set(m_editor.get(), EL_UNBUFFERED, 0);
    el_set(m_editor.get(), EL_UNBUFFERED, 1);
    el_winsertstr(m_editor.get(), m_line.c_str());
    el_cursor(m_editor.get(), int(m_position) - int(m_line.size()));
    std::fputs("\r", stdout); // where the editor begins to draw
    el_set(m_editor.get(), EL_REFRESH);
}

/*! Removes prompt and unfinished line from the screen. Returns whether they were there. */
bool Prompt::hide()
{
    if (!m_isShown)
        return false;
    m_isShown = false;
    const LineInfoW *line = el_wline(m_editor.get());
    m_line.assign(line->buffer, line->lastchar);
    m_position = size_t(line->cursor - line->buffer);
    const int columnsBefore =
        int(sizeof promptText) - 1 + columns(QString::fromStdWString(m_line.substr(0, m_position)));
    const int rowsAbove = columnsBefore / screenSize().width();
    if (rowsAbove > 0)
        std::printf("\x1b[%dA", rowsAbove);
    std::fputs("\r\x1b[J", stdout);
    return true;
}

void Prompt::read()
{
    std::array<char, 4096> buffer;
    const ssize_t count = ::read(STDIN_FILENO, buffer.data(), buffer.size());
    if (count < 0 && (errno == EINTR || errno == EAGAIN))
        return;
    if (count > 0) {
        m_keys += m_decoder.toUnicode(buffer.data(), int(count)).toStdWString();
        handleKeys();
    } else {
        m_notifier.setEnabled(false); // the terminal has been closed
        m_isAtEnd = true;
        emit ready();
    }
}

void Prompt::handleKeys()
{
    while (m_isShown && !m_keys.empty())
        editLine();
    if (m_isShown)
        return;
    const size_t interrupt = m_keys.find(interruptKey);
    if (interrupt != std::wstring::npos) {
        m_keys.erase(0, interrupt + 1);
        emit interrupted();
    } else if (!m_keys.empty() && m_keys.front() == endKey) {
        emit interrupted(); // The prompt, which is shown then, takes the key.
    } else if (m_keys.find_first_of(L"\r\n") != std::wstring::npos) {
        emit enterPressed();
    }
}

void Prompt::editLine()
{
    if (m_keys.front() == interruptKey)
        return dropLine();
    el_resize(m_editor.get()); // The terminal may have another size by now.
    int length = 0;
    const wchar_t *line = el_wgets(m_editor.get(), &length);
    if (!line || length == 0)
        return;
    if (line[length - 1] == L'\n') {
        acceptLine(QString::fromWCharArray(line, length - 1));
    } else if (length == 1 && line[0] == endKey) {
        m_isShown = false;
        m_isAtEnd = true;
        std::puts("");
        emit ready();
    }
}

/*! Begins a new line, also in the history. */
void Prompt::dropLine()
{
    m_keys.erase(0, 1);
    hide();
    m_line.clear();
    m_position = 0;
    show();
}

void Prompt::acceptLine(const QString &line)
{
    m_isShown = false;
    m_line.clear();
    m_position = 0;
    if (!line.trimmed().isEmpty()) {
        HistEvent event;
        history(m_history.get(), &event, H_ENTER, line.toUtf8().constData());
        history(m_history.get(), &event, H_SAVE, m_historyFile.constData());
    }
    add(line);
    emit ready();
}

unsigned char Prompt::completeWord()
{
    const LineInfoW *line = el_wline(m_editor.get());
    const Completions found =
        m_completer(QString::fromWCharArray(line->buffer, int(line->cursor - line->buffer)));
    if (found.words.isEmpty())
        return CC_ERROR;
    const QString word = commonBeginning(found.words);
    if (found.words.size() > 1 && word.size() <= found.typed.size()) {
        const QByteArray choices = printable(found.words.join(QStringLiteral("  "))).toUtf8() + '\n';
        // Queued: the editor cannot be hidden while it handles a key.
        QMetaObject::invokeMethod(
            this, [this, choices] { print(choices); }, Qt::QueuedConnection);
        return CC_NORM;
    }
    const bool isWhole = found.words.size() == 1 && !word.endsWith(QLatin1Char('='));
    el_deletestr(m_editor.get(), int(found.typed.toStdWString().size()));
    el_winsertstr(m_editor.get(), (isWhole ? word + QLatin1Char(' ') : word).toStdWString().c_str());
    return CC_REFRESH;
}
