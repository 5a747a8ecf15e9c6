// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "step.h"

void Step::problem(const char *code, const char *text, const QStringList &quotes)
{
    QString sentence = QString::fromUtf8(text);
    // The first quote is put in last, because it may contain a "%2" of its own.
    for (int i = quotes.size(); i > 0; --i)
        sentence.replace(QLatin1Char('%') + QString::number(i), mask.quoted(quotes.at(i - 1)));
    findings.append({Problem, QString::fromLatin1(code), sentence, mask.quoted(wallbox)});
}

void Step::warning(const char *code, const char *text, const QStringList &quotes)
{
    problem(code, text, quotes);
    findings.last().severity = Warning;
}

Step &Step::extend(const char *text)
{
    findings.last().text += QString::fromUtf8(text);
    return *this;
}
