// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT
#include "bodyreader.h"

#include <QJsonDocument>

#include <cmath>

BodyReader::BodyReader(const QByteArray &body)
{
    if (body.isEmpty())
        return;
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(body, &error);
    if (error.error != QJsonParseError::NoError)
        complain(QStringLiteral("the body is not JSON: %1").arg(error.errorString()));
    else if (!document.isObject())
        complain(QStringLiteral("the body must be a JSON object"));
    m_object = document.object();
}

void BodyReader::require(const char *name)
{
    if (!contains(name))
        complain(QStringLiteral("\"%1\" is missing").arg(QLatin1String(name)));
}

double BodyReader::number(const char *name, double least, double most, double absent)
{
    const QJsonValue value = take(name);
    if (value.isUndefined())
        return absent;
    const double number = value.toDouble(std::nan(""));
    if (number >= least && number <= most)
        return number;
    complain(QStringLiteral("\"%1\" must be a number from %2 to %3")
                 .arg(QLatin1String(name))
                 .arg(least)
                 .arg(most));
    return absent;
}

int BodyReader::wholeNumber(const char *name, int least, int most, int absent)
{
    const double value = number(name, least, most, absent);
    if (std::trunc(value) != value)
        complain(QStringLiteral("\"%1\" must be a whole number").arg(QLatin1String(name)));
    return int(value);
}

bool BodyReader::flag(const char *name)
{
    const QJsonValue value = take(name);
    if (!value.isUndefined() && !value.isBool())
        complain(QStringLiteral("\"%1\" must be true or false").arg(QLatin1String(name)));
    return value.toBool();
}

QString BodyReader::text(const char *name, const QString &absent)
{
    const QJsonValue value = take(name);
    if (!value.isUndefined() && !value.isString())
        complain(QStringLiteral("\"%1\" must be a text").arg(QLatin1String(name)));
    return value.toString(absent);
}

QString BodyReader::complaint() const
{
    if (!m_complaint.isEmpty())
        return m_complaint;
    const QStringList names = m_object.keys();
    for (const QString &name : names) {
        if (m_known.contains(name))
            continue;
        const QString known = m_known.isEmpty() ? QStringLiteral("none") : m_known.join(QLatin1String(", "));
        return QStringLiteral("there is no member \"%1\" here; known: %2").arg(name, known);
    }
    return {};
}

QJsonValue BodyReader::take(const char *name)
{
    m_known.append(QLatin1String(name));
    return m_object.value(QLatin1String(name));
}

void BodyReader::complain(const QString &complaint)
{
    if (m_complaint.isEmpty())
        m_complaint = complaint;
}
