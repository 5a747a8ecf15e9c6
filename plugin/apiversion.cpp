// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include <QString>

/*! The version of the platform's plugin interface that this plugin is built for. The daemon finds this
    function by its unmangled name and refuses a plugin with another version than its own. */
extern "C" Q_DECL_EXPORT QString libnymea_api_version()
{
    // QStringLiteral would refer to data in this library, but a loader may keep the text after unloading it.
    return QString::fromLatin1("7.4.0");
}
