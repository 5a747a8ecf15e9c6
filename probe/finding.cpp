// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "finding.h"

#include <algorithm>

Finding Finding::quoting(const QString &foreignText) const
{
    Finding finding = *this;
    finding.quote = foreignText;
    return finding;
}

Finding Finding::about(const QString &infraId) const
{
    Finding finding = *this;
    finding.wallbox = infraId;
    return finding;
}

QString Finding::sentence() const
{
    return QString(text).replace(QLatin1String("%1"), quote);
}

Finding problem(const char *code, const QString &text)
{
    return {Finding::Kind::Problem, QString::fromLatin1(code), text, {}, {}};
}

Finding remark(const char *code, const QString &text)
{
    return {Finding::Kind::Remark, QString::fromLatin1(code), text, {}, {}};
}

int count(const Findings &findings, Finding::Kind kind)
{
    return int(std::count_if(findings.begin(), findings.end(),
                             [kind](const Finding &finding) { return finding.kind == kind; }));
}

bool hasProblem(const Findings &findings)
{
    return count(findings, Finding::Kind::Problem) > 0;
}
