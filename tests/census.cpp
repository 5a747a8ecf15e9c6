// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "census.h"

#include "waiting.h"

#include <QFile>

#include <atomic>
#include <filesystem>
#include <iterator>
#include <malloc.h>
#include <unistd.h>

// Where Qt lets object inspectors put functions that are called for every object.
extern Q_CORE_EXPORT quintptr qtHookData[];

namespace {

std::atomic<int> liveObjects{0};

void onAdded(QObject *)
{
    ++liveObjects;
}

void onRemoved(QObject *)
{
    --liveObjects;
}

bool installHooks()
{
    constexpr int added = 3;
    constexpr int removed = 4;
    qtHookData[added] = reinterpret_cast<quintptr>(&onAdded);
    qtHookData[removed] = reinterpret_cast<quintptr>(&onRemoved);
    return true;
}

const bool hooksInstalled = installHooks();

int openDescriptors()
{
    const std::filesystem::directory_iterator entries("/proc/self/fd");
    return int(std::distance(begin(entries), end(entries))) - 1; // without the one that lists them
}

qint64 residentBytes()
{
    QFile file("/proc/self/statm");
    const bool opened = file.open(QIODevice::ReadOnly);
    return opened ? file.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE) : 0;
}

} // namespace

Census Census::take()
{
    Q_ASSERT(hooksInstalled);
    const struct mallinfo2 memory = mallinfo2();
    const qint64 heap = qint64(memory.uordblks) + qint64(memory.hblkhd);
    return {liveObjects, openDescriptors(), heap, residentBytes()};
}

Census Census::takeSettled()
{
    settle();
    return take();
}
