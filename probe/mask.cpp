// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "mask.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QUrl>

#include <algorithm>

namespace {

QString asJson(const QString &text)
{
    const QString array = QString::fromUtf8(QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact));
    return array.mid(2, array.size() - 4); // without [" and "]
}

} // namespace

void Mask::hide(const QString &secret)
{
    if (secret.isEmpty())
        return;
    m_hidden << secret << asJson(secret) << QString::fromLatin1(QUrl::toPercentEncoding(secret))
             << secret.toHtmlEscaped();
    m_hidden.removeDuplicates();
    std::sort(m_hidden.begin(), m_hidden.end(),
              [](const QString &left, const QString &right) { return left.size() > right.size(); });
}

QString Mask::quoted(const QString &text) const
{
    constexpr int longest = 200; // characters
    // Masked first: a secret that has been cut would not be recognised.
    const QString masked = (*this)(text);
    return masked.size() > longest ? masked.left(longest) + QStringLiteral("…") : masked;
}

QString Mask::operator()(const QString &text) const
{
    QString masked = text;
    for (const QString &secret : m_hidden)
        masked.replace(secret, QLatin1String("***"));
    return masked;
}
