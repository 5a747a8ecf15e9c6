// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef ANSWEREDSITE_H
#define ANSWEREDSITE_H

#include "site.h"

/*! The tests' daemon and plugin with a gateway. The caller provides the reply to each request. It arrives
    at once and without a network, because a socket would be too slow for millions of inputs. */
class AnsweredSite : public Site
{
public:
    /*! The group has two wallboxes, EVSE-01 and EVSE-02. */
    AnsweredSite();

    /*! Removes the gateway and adds it again; the backend replies with \a groupInfo. Each set-up leaves a connection
        in the plugin for as long as the gateway lives. */
    void renewGateway(const QByteArray &groupInfo);
    /*! Sets the gateway up again; the backend replies with \a groupInfo. */
    void setupGateway(const QByteArray &groupInfo);
    /*! One period of the plugin's timer passes; \a values is the reply to the poll. */
    void poll(const QByteArray &values);

private:
    ThingDescriptor m_offer; // the gateway, as it was discovered
};

#endif // ANSWEREDSITE_H
