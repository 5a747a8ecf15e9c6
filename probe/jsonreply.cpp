// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "jsonreply.h"

#include <QJsonDocument>
#include <QLocale>

QString inWords(const QJsonValue &value)
{
    switch (value.type()) {
    case QJsonValue::Null:
        return QStringLiteral("null");
    case QJsonValue::Bool:
        return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    case QJsonValue::Double:
        return QStringLiteral("the number %1").arg(value.toDouble(), 0, 'g', QLocale::FloatingPointShortest);
    case QJsonValue::String:
        return QStringLiteral("the text \"%1\"").arg(value.toString());
    case QJsonValue::Array:
        return QStringLiteral("an array");
    case QJsonValue::Object:
        return QStringLiteral("an object");
    case QJsonValue::Undefined:
        break;
    }
    return QStringLiteral("missing");
}

QJsonObject objectIn(const QByteArray &body)
{
    return QJsonDocument::fromJson(body).object();
}

Findings judgeMember(const QByteArray &body, QLatin1String key, const char *code)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(body, &error);
    if (body.isEmpty())
        return {problem("not-json", QStringLiteral("the reply has no body; the plugin reads JSON"))};
    if (error.error != QJsonParseError::NoError)
        return {problem("not-json", QStringLiteral("the reply is not JSON: %1"))
                    .quoting(QStringLiteral("%1 at byte %2").arg(error.errorString()).arg(error.offset))};
    if (!document.isObject())
        return {problem("not-json", QStringLiteral("the reply is a JSON array; the plugin reads an object"))};
    const QJsonValue member = document.object().value(key);
    if (member.isObject())
        return {};
    return {problem(code,
                    QLatin1Char('"') + key
                        + QLatin1String("\" is %1; the plugin reads an object of wallboxes by id"))
                .quoting(inWords(member))};
}
