// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "processone.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

namespace {

/*! Where this process belongs itself. */
int ownNamespace()
{
    static const int descriptor = open("/proc/self/ns/pid", O_RDONLY | O_CLOEXEC);
    return descriptor;
}

/*! /proc of the new namespace: programs look there for whom a process id stands. */
bool mountProc()
{
    return unshare(CLONE_NEWNS) == 0 && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0
        && mount("proc", "/proc", "proc", MS_NOSUID | MS_NOEXEC | MS_NODEV, nullptr) == 0;
}

} // namespace

bool ProcessOne::isPermitted()
{
    const Namespace attempt;
    ProcessOne process;
    process.start(QStringLiteral("sh"),
                  {QStringLiteral("-c"), QStringLiteral("test $$ = 1 && test -e /proc/1")});
    return process.waitForFinished() && process.exitCode() == 0;
}

ProcessOne::Namespace::Namespace()
{
    if (ownNamespace() >= 0)
        unshare(CLONE_NEWPID);
}

ProcessOne::Namespace::~Namespace()
{
    setns(ownNamespace(), CLONE_NEWPID);
}

void ProcessOne::setupChildProcess()
{
    if (!mountProc())
        _exit(EXIT_FAILURE);
}
