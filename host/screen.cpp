// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "screen.h"

#include <QVector>

#include <cwchar>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {

int columns(uint character)
{
    const int width = ::wcwidth(wchar_t(character));
    return width < 0 ? 1 : width; // of a character that the locale does not know
}

} // namespace

QSize screenSize()
{
    winsize size = {};
    const bool isKnown = ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 && size.ws_row > 0;
    return isKnown ? QSize(size.ws_col, size.ws_row) : QSize(80, 24);
}

int columns(const QString &text)
{
    int result = 0;
    const QVector<uint> characters = text.toUcs4();
    for (const uint character : characters)
        result += columns(character);
    return result;
}

QString leftColumns(const QString &text, int width)
{
    const QVector<uint> characters = text.toUcs4();
    int count = 0;
    for (int used = 0; count < characters.size(); ++count) {
        used += columns(characters.at(count));
        if (used > width)
            break;
    }
    return QString::fromUcs4(characters.constData(), count);
}
