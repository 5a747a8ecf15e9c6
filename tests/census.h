// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef CENSUS_H
#define CENSUS_H

#include <QtGlobal>

/*! What this process holds at the moment; what grows from one census to the next is leaking. */
struct Census
{
    int objects = 0;     //!< QObjects of all threads, replies and sockets among them
    int descriptors = 0; //!< open files and sockets
    qint64 heap = 0;     //!< bytes that have been allocated and not freed; 0 under a sanitizer
    qint64 resident = 0; //!< bytes of memory in use, the allocator's reserve included

    static Census take();
    /*! The same once the program is idle, and deferred deletions are done. */
    static Census takeSettled();
};

#endif // CENSUS_H
