// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef LIBNYMEA_H
#define LIBNYMEA_H

#include <QtGlobal>

#if defined(LIBNYMEA_LIBRARY)
#define LIBNYMEA_EXPORT Q_DECL_EXPORT
#else
#define LIBNYMEA_EXPORT Q_DECL_IMPORT
#endif

/*! Version of the plugin interface. A plugin exports `extern "C" QString libnymea_api_version()`. The daemon
    refuses a plugin that does not, or that returns another version. */
#define LIBNYMEA_API_VERSION "7.4.0"

#endif // LIBNYMEA_H
