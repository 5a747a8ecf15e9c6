// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "fuzzing.h"

#include <QCoreApplication>
#include <QHash>
#include <QLoggingCategory>

#include <cstdio>
#include <cstdlib>

// NOLINTNEXTLINE(readability-non-const-parameter): Qt keeps a reference to it.
extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    qSetGlobalQHashSeed(0); // an input has the same effect each time
    static const QCoreApplication application(*argc, *argv);
    QLoggingCategory::setFilterRules("*=false");
    return 0;
}

void require(bool holds, const char *what)
{
    if (holds)
        return;
    std::fprintf(stderr, "Broken: %s\n", what);
    std::abort();
}

QByteArray inputBytes(const uint8_t *data, size_t size)
{
    return QByteArray::fromRawData(reinterpret_cast<const char *>(data), int(size));
}

QList<QByteArray> inputReplies(const uint8_t *data, size_t size)
{
    constexpr int most = 3; // with more, the fuzzer would collect ever longer sequences of useless replies
    return inputBytes(data, size).split('\x1e').mid(0, most);
}
