// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT
#include "page.h"

#include <QCryptographicHash>
#include <QFile>

namespace {
// The source expression that allows the block between \a opening and \a closing, and no other.
QByteArray hashOf(const QByteArray &html, const QByteArray &opening, const QByteArray &closing)
{
    const int begin = html.indexOf(opening) + opening.size();
    const QByteArray block = html.mid(begin, html.indexOf(closing, begin) - begin);
    return "'sha256-" + QCryptographicHash::hash(block, QCryptographicHash::Sha256).toBase64() + "'";
}
} // namespace

Reply pageReply()
{
    QFile file(QStringLiteral(":/page.html"));
    file.open(QFile::ReadOnly);
    Reply reply;
    reply.contentType = "text/html; charset=utf-8";
    reply.body = file.readAll();
    reply.policy = "default-src 'none'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'; "
                   "connect-src 'self'; img-src data:; script-src "
        + hashOf(reply.body, "<script>", "</script>") + "; style-src "
        + hashOf(reply.body, "<style>", "</style>");
    return reply;
}
