// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef MEASUREDPLUGIN_H
#define MEASUREDPLUGIN_H

#include "site.h"

#include <QEventLoop>

class NetworkHandler;

/*! The built plugin in the tests' daemon, with a gateway that has been set up and any number of wallboxes. The
    plugin alone knows the wallboxes: nobody listens to them, and the daemon does not store them at each poll. More
    than 32 share the wallbox classes, which makes no difference to a poll. */
class MeasuredPlugin
{
public:
    /*! The backend at \a url must list these \a wallboxes, as infraIds() names them. */
    MeasuredPlugin(const QString &pluginFile, const QString &url, int wallboxes);

    /*! One whole poll: from the plugin timer's tick to the states. */
    void poll();
    /*! Gives \a values, by infrastructure id, to the plugin as if a reply had brought them. */
    void apply(const QJsonObject &values);

private:
    Site m_site;
    QObject m_wallboxes;                // their parent
    NetworkHandler *m_client = nullptr; // the plugin's
    QEventLoop m_loop;
};

#endif // MEASUREDPLUGIN_H
