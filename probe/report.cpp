// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "report.h"

#include "printable.h"

#include <QJsonArray>
#include <QMetaEnum>

#include <algorithm>

namespace {

constexpr struct
{
    const char *id; // for machines
    const char *title;
} stepNames[] = {
    {"url",          "URL"         },
    {"online-check", "Online check"},
    {"group-info",   "Group info"  },
    {"live-values",  "Live values" },
    {"charge-limit", "Charge limit"},
};

QString errorName(const Step &step)
{
    return QString::fromLatin1(QMetaEnum::fromType<QNetworkReply::NetworkError>().valueToKey(step.error));
}

QString answerText(const Step &step)
{
    const QString after = QStringLiteral("after %1 ms").arg(step.duration.count());
    if (step.timedOut)
        return QLatin1String("none ") + after;
    if (step.status == 0)
        return QStringLiteral("none, %1 %2").arg(errorName(step), after);
    const bool plain = step.status >= 400 || step.succeeded();
    return QStringLiteral("HTTP %1 %2").arg(step.status).arg(after)
        + (plain ? QString() : QLatin1String(", ") + errorName(step));
}

/*! Whether there is a problem of the backend as a whole, and not just of a wallbox. */
bool hasGeneralProblem(const Step &step)
{
    return std::any_of(step.findings.begin(), step.findings.end(), [](const Finding &finding) {
        return finding.severity == Problem && finding.wallbox.isEmpty();
    });
}

/*! Whether the reply is shown. A finding about a single wallbox quotes all that matters. */
bool isReplyOfInterest(const Step &step)
{
    return !step.reply.isEmpty() && hasGeneralProblem(step);
}

QString line(const char *label, const QString &text)
{
    return QStringLiteral("  %1%2\n").arg(QLatin1String(label), -9).arg(printable(text));
}

QJsonObject toJson(const Finding &finding)
{
    QJsonObject json{
        {QStringLiteral("kind"), QLatin1String(finding.severity == Problem ? "problem" : "warning")},
        {QStringLiteral("code"), finding.code                                                      },
        {QStringLiteral("text"), finding.text                                                      },
    };
    if (!finding.wallbox.isEmpty())
        json.insert(QStringLiteral("wallbox"), finding.wallbox);
    return json;
}

QJsonObject requestJson(const Step &step)
{
    QJsonObject json{
        {QStringLiteral("method"),       QStringLiteral("POST")       },
        {QStringLiteral("url"),          step.url                     },
        {QStringLiteral("body"),         step.body                    },
        {QStringLiteral("milliseconds"), qint64(step.duration.count())},
        {QStringLiteral("timedOut"),     step.timedOut                },
        {QStringLiteral("status"),       step.status                  }, // 0 without an answer
    };
    if (step.error != QNetworkReply::NoError)
        json.insert(QStringLiteral("error"), errorName(step));
    if (isReplyOfInterest(step))
        json.insert(QStringLiteral("reply"), step.reply);
    return json;
}

QJsonObject toJson(const Step &step)
{
    QJsonArray findings;
    for (const Finding &finding : step.findings)
        findings.append(toJson(finding));
    QJsonObject json{
        {QStringLiteral("step"),     QLatin1String(stepNames[step.stage].id) },
        {QStringLiteral("details"),  QJsonArray::fromStringList(step.details)},
        {QStringLiteral("findings"), findings                                },
    };
    if (!step.skipped.isEmpty())
        json.insert(QStringLiteral("skipped"), step.skipped);
    if (!step.url.isEmpty())
        json.insert(QStringLiteral("request"), requestJson(step));
    return json;
}

} // namespace

int count(const Report &report, Severity severity)
{
    int count = 0;
    for (const Step &step : report) {
        for (const Finding &finding : step.findings)
            count += finding.severity == severity ? 1 : 0;
    }
    return count;
}

QString stepText(const Step &step)
{
    QString text = QLatin1String(stepNames[step.stage].title) + QLatin1Char('\n');
    if (!step.url.isEmpty()) {
        text += line("sent", QLatin1String("POST ") + step.url);
        text += line("", QString::fromUtf8(QJsonDocument(step.body).toJson(QJsonDocument::Compact)));
        text += line("answer", answerText(step));
    }
    for (const QString &detail : step.details)
        text += line("", detail);
    for (const Finding &finding : step.findings) {
        const QString subject = finding.wallbox.isEmpty() ? QString() : finding.wallbox + QLatin1String(": ");
        text += line(finding.severity == Problem ? "PROBLEM" : "warning", subject + finding.text);
    }
    if (isReplyOfInterest(step))
        text += line("reply", step.reply);
    if (!step.skipped.isEmpty())
        text += line("skipped", step.skipped);
    else if (step.findings.isEmpty())
        text += QLatin1String("  ok\n");
    return text;
}

QString verdictText(const Report &report)
{
    const int problems = count(report, Problem);
    const bool works = std::none_of(report.begin(), report.end(), hasGeneralProblem);
    return QStringLiteral("The plugin would %1work with this backend%2 (problems: %3, warnings: %4).\n")
        .arg(QLatin1String(works ? "" : "not "))
        .arg(QLatin1String(works && problems > 0 ? ", apart from the problems above" : ""))
        .arg(problems)
        .arg(count(report, Warning));
}

QJsonObject toJson(const Report &report)
{
    QJsonArray steps;
    for (const Step &step : report)
        steps.append(toJson(step));
    const int problems = count(report, Problem);
    const int warnings = count(report, Warning);
    return {
        {QStringLiteral("works"),    problems == 0},
        {QStringLiteral("problems"), problems     },
        {QStringLiteral("warnings"), warnings     },
        {QStringLiteral("steps"),    steps        },
    };
}
