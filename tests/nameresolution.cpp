// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "nameresolution.h"

#include <QByteArray>

#include <atomic>
#include <dlfcn.h>
#include <netdb.h>

namespace {

std::atomic<bool> namesResolve{true};

}

// Qt calls this to resolve names. The program's own function takes precedence over the C library's.
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name): the C library's names are reserved
extern "C" int getaddrinfo(const char *name, const char *service, const addrinfo *hints, addrinfo **result)
{
    if (!namesResolve)
        return EAI_AGAIN;
    using Function = int (*)(const char *, const char *, const addrinfo *, addrinfo **);
    static const auto original = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "getaddrinfo"));
    const bool isMadeUp = name && QByteArray(name).endsWith(".test");
    return original(isMadeUp ? "127.0.0.1" : name, service, hints, result);
}

void setNamesResolve(bool resolve)
{
    namesResolve = resolve;
}
