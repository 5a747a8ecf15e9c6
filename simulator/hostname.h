// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT
#ifndef HOSTNAME_H
#define HOSTNAME_H

#include "reply.h"

#include <string>

namespace httplib {
struct Request;
}

/*! Whether \a request was sent to a name of this simulator: localhost, a name that ends in .test,
 *  \a listenAddress or any numeric address. A foreign page whose own name has been rebound to our address
 * still sends that name; a numeric address cannot be rebound. */
bool isForUs(const httplib::Request &request, const std::string &listenAddress);

/*! The answer to any other request. */
Reply unknownHostReply();

/*! Whether only this machine reaches \a listenAddress. */
bool isLoopback(const std::string &listenAddress);

#endif // HOSTNAME_H
