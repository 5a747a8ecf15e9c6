// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include <QString>

/*! The version of the platform's plugin interface that this plugin is built for. The daemon looks the
    function up by its plain name and refuses a plugin whose version differs from its own. */
extern "C" Q_DECL_EXPORT QString libnymea_api_version()
{
    // Not a literal, which would point into this library: a loader may keep the text after unloading it.
    return QString::fromLatin1("7.4.0");
}
