// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "printable.h"

#include <QJsonDocument>

#include <cmath>

QString printable(const QString &text)
{
    QVector<uint> characters = text.toUcs4();
    for (uint &character : characters) {
        if (QChar::isSpace(character))
            character = ' ';
        else if (!QChar::isPrint(character))
            character = QChar::ReplacementCharacter;
    }
    return QString::fromUcs4(characters.constData(), characters.size());
}

QByteArray printableJson(const QJsonObject &object)
{
    const QString json = QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
    const auto escaped = [](uint unit) { return QStringLiteral("\\u%1").arg(unit, 4, 16, QLatin1Char('0')); };
    QString text;
    text.reserve(json.size());
    // Compact JSON has no white space between its members, so all white space is inside strings.
    const QVector<uint> characters = json.toUcs4();
    for (const uint character : characters) {
        if (character == ' ' || (QChar::isPrint(character) && !QChar::isSpace(character)))
            text += QString::fromUcs4(&character, 1);
        else if (QChar::requiresSurrogates(character))
            text += escaped(QChar::highSurrogate(character)) + escaped(QChar::lowSurrogate(character));
        else
            text += escaped(character); // fromUcs4() would drop U+FEFF as a byte order mark
    }
    return text.toUtf8();
}

QString numberText(double number)
{
    const double rounded = std::round(number * 1000) / 1000 + 0.0; // Adding 0 makes -0 a 0.
    return QString::number(rounded, 'g', 15);
}
