// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT
#include "hostname.h"

#include <httplib.h>

#include <arpa/inet.h>

namespace {
// "127.0.0.1:8080", "[::1]:8080" and "localhost" without port and brackets
std::string hostName(const std::string &host)
{
    if (!host.empty() && host.front() == '[')
        return host.substr(1, host.find(']') - 1);
    return host.substr(0, host.find(':'));
}

bool isIpAddress(const std::string &name)
{
    in6_addr address;
    return ::inet_pton(AF_INET, name.c_str(), &address) == 1
        || ::inet_pton(AF_INET6, name.c_str(), &address) == 1;
}
// RFC 6761 reserves these, so that no foreign page has one.
bool isTestName(const std::string &name)
{
    const std::string ending = ".test";
    return name.size() > ending.size()
        && name.compare(name.size() - ending.size(), ending.size(), ending) == 0;
}
} // namespace

bool isForUs(const httplib::Request &request, const std::string &listenAddress)
{
    const std::string name = hostName(request.get_header_value("Host"));
    return name == "localhost" || isTestName(name) || name == listenAddress || isIpAddress(name);
}

Reply unknownHostReply()
{
    return refusal(403,
                   QStringLiteral("unknown host name: use a numeric address, localhost, a name that ends in "
                                  ".test or the one given to --listen"));
}

bool isLoopback(const std::string &listenAddress)
{
    in_addr v4;
    if (::inet_pton(AF_INET, listenAddress.c_str(), &v4) == 1)
        return ntohl(v4.s_addr) >> 24U == IN_LOOPBACKNET;
    in6_addr v6;
    if (::inet_pton(AF_INET6, listenAddress.c_str(), &v6) == 1)
        return IN6_IS_ADDR_LOOPBACK(&v6);
    return listenAddress == "localhost";
}
