// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "fuzzing.h"

#include <QCoreApplication>
#include <QHash>
#include <QJsonDocument>
#include <QLoggingCategory>

#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#if __has_feature(address_sanitizer)
#include <sanitizer/lsan_interface.h>
#endif

// NOLINTNEXTLINE(readability-non-const-parameter): Qt keeps a reference to it.
extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    qSetGlobalQHashSeed(0); // an input has the same effect each time
    static const QCoreApplication application(*argc, *argv);
    QLoggingCategory::setFilterRules(QStringLiteral("*=false"));
    return 0;
}

// Comes before the library's: Qt 5.15 loses the object of a member that is followed by another of the same
// name, and that is no finding about us.
QJsonDocument QJsonDocument::fromJson(const QByteArray &json, QJsonParseError *error)
{
    static const auto original = reinterpret_cast<decltype(&QJsonDocument::fromJson)>(
        dlsym(RTLD_NEXT, "_ZN13QJsonDocument8fromJsonERK10QByteArrayP15QJsonParseError"));
#if __has_feature(address_sanitizer)
    const __lsan::ScopedDisabler lostByQt;
#endif
    return original(json, error);
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
    constexpr int most = 3; // else the fuzzer collects ever longer sequences of nothing
    return inputBytes(data, size).split('\x1e').mid(0, most);
}
