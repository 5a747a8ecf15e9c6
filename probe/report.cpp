// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "report.h"

#include "mask.h"
#include "printable.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QMetaEnum>

#include <algorithm>

namespace {

constexpr int longestText = 200; // characters of anything that the backend or the user said
constexpr int longestBody = 200; // characters of a reply's body

struct StepName
{
    const char *id; // for machines
    const char *title;
};

constexpr StepName stepNames[] = {
    {"url",          "URL"         },
    {"online-check", "Online check"},
    {"group-info",   "Group info"  },
    {"live-values",  "Live values" },
    {"charge-limit", "Charge limit"},
};

const StepName &nameOf(Step step)
{
    return stepNames[int(step)];
}

QString errorName(QNetworkReply::NetworkError error)
{
    return QString::fromLatin1(QMetaEnum::fromType<QNetworkReply::NetworkError>().valueToKey(error));
}

QString compact(const QJsonObject &object)
{
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

QString shortened(const QString &text, int length)
{
    return text.size() > length ? text.left(length) + QStringLiteral("…") : text;
}

/*! JSON in Qt's own spelling, so that no escape sequence hides a secret; other text as it is. */
QString replyText(const QByteArray &body)
{
    const QJsonDocument document = QJsonDocument::fromJson(body);
    return QString::fromUtf8(document.isNull() ? body : document.toJson(QJsonDocument::Compact));
}

QString answerText(const StepReport &report)
{
    const Answer &answer = report.answer;
    const QString after = QStringLiteral("after %1 ms").arg(answer.duration.count());
    if (answer.timedOut)
        return QLatin1String("none ") + after;
    if (answer.status == 0)
        return QStringLiteral("none, %1 %2").arg(errorName(answer.error), after);
    const bool plain = answer.status >= 400 || answer.succeeded();
    return QStringLiteral("HTTP %1 ").arg(answer.status) + after
        + (plain ? QString() : QLatin1String(", ") + errorName(answer.error));
}

QString line(const QString &label, const QString &text)
{
    return QLatin1String("  ") + label.leftJustified(9) + printable(text) + QLatin1Char('\n');
}

QString findingLine(const Finding &finding)
{
    const bool isProblem = finding.kind == Finding::Kind::Problem;
    const QString subject = finding.wallbox.isEmpty() ? QString() : finding.wallbox + QLatin1String(": ");
    return line(isProblem ? QStringLiteral("PROBLEM") : QStringLiteral("remark"),
                subject + finding.sentence());
}

QJsonObject toJson(const Finding &finding)
{
    const bool isProblem = finding.kind == Finding::Kind::Problem;
    QJsonObject json;
    json.insert(QStringLiteral("kind"), isProblem ? QStringLiteral("problem") : QStringLiteral("remark"));
    json.insert(QStringLiteral("code"), finding.code);
    json.insert(QStringLiteral("text"), finding.sentence());
    if (!finding.wallbox.isEmpty())
        json.insert(QStringLiteral("wallbox"), finding.wallbox);
    return json;
}

/*! Whether it helps to see the reply: where the matter is one wallbox, the finding quotes all there is. */
bool isReplyOfInterest(const StepReport &report)
{
    return !report.answer.body.isEmpty()
        && std::any_of(report.findings.begin(), report.findings.end(), [](const Finding &finding) {
               return finding.kind == Finding::Kind::Problem && finding.wallbox.isEmpty();
           });
}

QJsonObject exchangeJson(const StepReport &report)
{
    QJsonObject json;
    json.insert(QStringLiteral("method"), QStringLiteral("POST"));
    json.insert(QStringLiteral("url"), report.url);
    json.insert(QStringLiteral("body"), report.body);
    json.insert(QStringLiteral("milliseconds"), qint64(report.answer.duration.count()));
    json.insert(QStringLiteral("timedOut"), report.answer.timedOut);
    json.insert(QStringLiteral("status"), report.answer.status); // 0 without an answer
    if (report.answer.error != QNetworkReply::NoError)
        json.insert(QStringLiteral("error"), errorName(report.answer.error));
    if (isReplyOfInterest(report))
        json.insert(QStringLiteral("reply"), QString::fromUtf8(report.answer.body));
    return json;
}

QJsonObject toJson(const StepReport &report)
{
    QJsonObject json;
    json.insert(QStringLiteral("step"), QString::fromLatin1(nameOf(report.step).id));
    if (!report.skipped.isEmpty())
        json.insert(QStringLiteral("skipped"), report.skipped);
    if (!report.url.isEmpty())
        json.insert(QStringLiteral("request"), exchangeJson(report));
    json.insert(QStringLiteral("details"), QJsonArray::fromStringList(report.details));
    QJsonArray findings;
    for (const Finding &finding : report.findings)
        findings.append(toJson(finding));
    json.insert(QStringLiteral("findings"), findings);
    return json;
}

int countAll(const Report &report, Finding::Kind kind)
{
    int sum = 0;
    for (const StepReport &step : report)
        sum += count(step.findings, kind);
    return sum;
}

} // namespace

StepReport masked(StepReport report, const Mask &mask)
{
    const auto clean = [&mask](const QString &text) { return shortened(mask(text), longestText); };
    report.url = mask(report.url);
    const QStringList members = report.body.keys(); // ours; only what they hold may tell anything
    for (const QString &member : members)
        report.body.insert(member, mask(report.body.value(member)));
    report.answer.errorText = clean(report.answer.errorText);
    report.answer.redirect = clean(report.answer.redirect);
    report.answer.body = shortened(mask(replyText(report.answer.body)), longestBody).toUtf8();
    for (QString &detail : report.details)
        detail = clean(detail);
    for (Finding &finding : report.findings) {
        finding.quote = clean(finding.quote);
        finding.wallbox = clean(finding.wallbox);
    }
    return report;
}

bool works(const Report &report)
{
    return countAll(report, Finding::Kind::Problem) == 0;
}

QString stepText(const StepReport &report)
{
    QString text = QString::fromLatin1(nameOf(report.step).title) + QLatin1Char('\n');
    if (!report.url.isEmpty()) {
        text += line(QStringLiteral("sent"), QLatin1String("POST ") + report.url);
        text += line(QString(), compact(report.body));
        text += line(QStringLiteral("answer"), answerText(report));
    }
    for (const QString &detail : report.details)
        text += line(QString(), detail);
    for (const Finding &finding : report.findings)
        text += findingLine(finding);
    if (isReplyOfInterest(report))
        text += line(QStringLiteral("reply"), QString::fromUtf8(report.answer.body));
    if (!report.skipped.isEmpty())
        text += line(QStringLiteral("skipped"), report.skipped);
    else if (report.findings.isEmpty())
        text += QLatin1String("  ok\n");
    return text;
}

QString verdictText(const Report &report)
{
    const QString verdict = works(report) ? QStringLiteral("The plugin would work with this backend")
                                          : QStringLiteral("The plugin would not work with this backend");
    return QStringLiteral("%1 (problems: %2, remarks: %3).\n")
        .arg(verdict)
        .arg(countAll(report, Finding::Kind::Problem))
        .arg(countAll(report, Finding::Kind::Remark));
}

QJsonObject toJson(const Report &report)
{
    QJsonArray steps;
    for (const StepReport &step : report)
        steps.append(toJson(step));
    QJsonObject json;
    json.insert(QStringLiteral("works"), works(report));
    json.insert(QStringLiteral("problems"), countAll(report, Finding::Kind::Problem));
    json.insert(QStringLiteral("remarks"), countAll(report, Finding::Kind::Remark));
    json.insert(QStringLiteral("steps"), steps);
    return json;
}
