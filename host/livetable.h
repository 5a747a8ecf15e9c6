// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef LIVETABLE_H
#define LIVETABLE_H

#include <integrations/thing.h>

#include <QStringList>

struct TableStyle
{
    int width = 80;   //!< columns of the screen
    int maxRows = 32; //!< wallboxes to be shown at most
    bool colour = false;
    bool unicode = true; //!< the bar is made of block characters
};

/*! Two lines of heading, a line for each wallbox and the total, none wider than the style allows. Where there
    is little room, columns are left out. What is shown are the states of the platform's "evcharger" interface
    and those that the plugin adds. \a now in seconds since the epoch. */
QStringList liveTable(const Things &wallboxes, const TableStyle &style, qint64 now);

#endif // LIVETABLE_H
