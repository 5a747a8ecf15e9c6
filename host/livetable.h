// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef LIVETABLE_H
#define LIVETABLE_H

#include <integrations/thing.h>

#include <QStringList>
#include <QVector>

/*! What the live table shows of one wallbox, taken from the states of the platform's "evcharger" interface.
 */
struct LiveRow
{
    QString name;
    QString state;          //!< OCPP connector status
    bool connected = false; //!< the backend's last answer named the wallbox
    bool pluggedIn = false;
    bool charging = false;
    bool enabled = false;     //!< charging is allowed
    double current = 0;       //!< A, of the phase that carries most
    double limit = 0;         //!< A, the maximum charging current
    double power = 0;         //!< W
    double sessionEnergy = 0; //!< kWh
    double totalEnergy = 0;   //!< kWh
    qint64 timestamp = 0;     //!< of the values, seconds since the epoch; 0: there are none yet
};
LiveRow liveRow(const Thing *wallbox);

struct TableStyle
{
    int width = 80;   //!< columns of the screen
    int maxRows = 32; //!< wallboxes to be shown at most
    bool colour = false;
    bool unicode = true; //!< the bar is made of block characters
};

/*! Two lines of heading, a line a wallbox and the group's total, none wider than the style allows. Where
    there is little room, columns are left out. \a now in seconds since the epoch. */
QStringList liveTable(const QVector<LiveRow> &rows, const TableStyle &style, qint64 now);

#endif // LIVETABLE_H
