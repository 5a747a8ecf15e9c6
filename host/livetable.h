// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef LIVETABLE_H
#define LIVETABLE_H

#include <integrations/thing.h>

#include <QSet>
#include <QStringList>

/*! What the table shows. */
struct WallboxTable
{
    Things wallboxes;
    /*! Those for which, or for another wallbox of their gateway, an action has been executed. */
    QSet<ThingId> managed;
    qint64 now;  //!< seconds since the epoch
    bool isLive; //!< values arrive; if not, the last ones say nothing about now
};

struct TableStyle
{
    int width = 80;   //!< columns of the screen
    int maxRows = 32; //!< wallboxes to be shown at most
    bool colour = false;
    bool unicode = true; //!< the bar is made of block characters
};

/*! Two lines of heading, a line for each wallbox and the total, none wider than the style allows. Where there
    is little space, columns are left out. What is shown are the states of the platform's "evcharger" interface
    and those that the plugin adds. */
QStringList liveTable(const WallboxTable &table, const TableStyle &style);

#endif // LIVETABLE_H
