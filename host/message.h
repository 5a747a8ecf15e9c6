// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef MESSAGE_H
#define MESSAGE_H

#include <QJsonObject>
#include <QStringList>

/*! What the host prints: the answer to a command, or an event. */
struct Message
{
    QJsonObject json;    //!< a line with --json; an event has a member "event"
    QStringList lines;   //!< the same for people; none where there is nothing to tell
    bool isLast = false; //!< the host ends
};

#endif // MESSAGE_H
