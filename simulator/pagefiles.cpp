// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "endpoints.h"

#include <QFile>

namespace {

constexpr struct
{
    const char *path;
    const char *resource;
    const char *contentType;
} files[] = {
    {"/",         ":/page.html", "text/html; charset=utf-8"      },
    {"/page.css", ":/page.css",  "text/css; charset=utf-8"       },
    {"/page.js",  ":/page.js",   "text/javascript; charset=utf-8"},
};

// The page may load its own script and style and talk to its own origin, and nothing else.
constexpr char policy[] = "default-src 'none'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'; "
                          "connect-src 'self'; img-src data:; script-src 'self'; style-src 'self'";

} // namespace

std::optional<HttpReply> pageFile(const QString &path)
{
    for (const auto &row : files) {
        if (path != QLatin1String(row.path))
            continue;
        QFile file(QString::fromLatin1(row.resource));
        file.open(QFile::ReadOnly);
        return HttpReply{200, file.readAll(), row.contentType, policy};
    }
    return {};
}
