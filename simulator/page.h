// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT
#ifndef PAGE_H
#define PAGE_H

#include "reply.h"

/*! The yard as a page for a browser, from page.html, which is built into the program. Its policy lets it run
 *  its own script and style, talk to its own origin, and nothing else. */
Reply pageReply();

#endif // PAGE_H
