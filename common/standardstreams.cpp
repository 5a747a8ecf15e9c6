// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "standardstreams.h"

#include <cstdlib>
#include <fcntl.h>
#include <initializer_list>
#include <unistd.h>

void openStandardStreams()
{
    for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        // A new descriptor gets the lowest free number. This is fd, because all lower ones are open.
        if (::fcntl(fd, F_GETFD) == -1 && ::open("/dev/null", O_RDWR) != fd)
            std::abort();
    }
}
