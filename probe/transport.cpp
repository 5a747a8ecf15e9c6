// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "transport.h"

#include "groupinfo.h"

#include <QHostAddress>
#include <QJsonDocument>
#include <QUrl>

#include <algorithm>

using namespace std::chrono_literals;

namespace {

constexpr auto pollPeriod = 2s; // the plugin's
// Qt opens six connections to a host. Answers slower than this let polls wait in ever longer queues.
constexpr auto longestBearable = 6 * pollPeriod;
// Replies overtake each other once their delays differ by a poll period. The one that was measured may be
// among the faster ones, hence less.
constexpr auto longestPunctual = 1500ms;

struct HttpMeaning
{
    int status;
    const char *code;
    const char *text;
};

constexpr HttpMeaning httpMeanings[] = {
    {400, "bad-request",    "the backend takes the request as malformed"                    },
    {401, "token-refused",  "the backend refuses the access token: is it one for Vela?"     },
    {403, "secret-refused", "the backend refuses access: the group secret is probably wrong"},
    {404, "unknown-group",  "the backend does not know this group, or is not at this URL"   },
    {405, "post-refused",   "what is at this URL takes no POST: it is not the backend"      },
    {418, "http-error",     "the backend declines to serve this group"                      },
};

struct NetworkMeaning
{
    QNetworkReply::NetworkError error;
    const char *code;
    const char *text;
};

constexpr NetworkMeaning networkMeanings[] = {
    {QNetworkReply::ConnectionRefusedError,  "unreachable",       "nothing listens there: is the port right?"   },
    {QNetworkReply::HostNotFoundError,       "unreachable",       "the host name is unknown: is it spelt right?"},
    {QNetworkReply::TimeoutError,            "unreachable",       "nothing answers there: is the address right?"},
    {QNetworkReply::ProtocolUnknownError,    "unusable-url",      "the URL is neither http nor https"           },
    {QNetworkReply::SslHandshakeFailedError, "tls-failed",        "this machine does not trust the certificate" },
    {QNetworkReply::RemoteHostClosedError,   "connection-closed", "the backend cut the connection off"          },
};

const NetworkMeaning *findMeaning(QNetworkReply::NetworkError error)
{
    const auto *const row =
        std::find_if(std::begin(networkMeanings), std::end(networkMeanings),
                     [error](const NetworkMeaning &meaning) { return meaning.error == error; });
    return row != std::end(networkMeanings) ? row : nullptr;
}

Finding judgeNetworkError(const Answer &answer)
{
    const NetworkMeaning *meaning = findMeaning(answer.error);
    if (!meaning)
        return problem("network-error", QStringLiteral("the request failed: %1")).quoting(answer.errorText);
    return problem(meaning->code, QLatin1String(meaning->text) + QLatin1String(" (%1)"))
        .quoting(answer.errorText);
}

Finding judgeHttpError(Step step, const Answer &answer)
{
    if (step == Step::OnlineCheck && answer.status == 404)
        return problem("no-online-check", QStringLiteral("the backend has no online check"));
    const auto *const row =
        std::find_if(std::begin(httpMeanings), std::end(httpMeanings),
                     [&answer](const HttpMeaning &meaning) { return meaning.status == answer.status; });
    if (row != std::end(httpMeanings))
        return problem(row->code, QLatin1String(row->text));
    if (answer.status >= 500)
        return problem("backend-error", QStringLiteral("the backend has a fault of its own"));
    return problem("http-error", QStringLiteral("the backend refuses the request"));
}

Finding judgeSilence(Step step, const Answer &answer)
{
    QString text = QStringLiteral("no answer within %1 s").arg(double(answer.duration.count()) / 1000.0);
    if (step != Step::OnlineCheck)
        text += QLatin1String("; the plugin would wait on in silence");
    return problem("no-answer", text);
}

Finding judgeLength()
{
    return problem("too-long",
                   QStringLiteral("the reply was broken off after %1 MB; nymea would read on and keep all of "
                                  "it in memory, until the reply ends or the memory is used up")
                       .arg(longestReply >> 20));
}

bool isUnreadRedirect(const Answer &answer)
{
    return answer.status / 100 == 3 && !QJsonDocument::fromJson(answer.body).isObject();
}

Findings judgeFailure(Step step, const Answer &answer)
{
    if (answer.timedOut)
        return {judgeSilence(step, answer)};
    if (answer.error == QNetworkReply::OperationCanceledError) // by the probe
        return {judgeLength()};
    if (!answer.succeeded())
        return {answer.status >= 400 ? judgeHttpError(step, answer) : judgeNetworkError(answer)};
    if (isUnreadRedirect(answer))
        return {problem("redirect",
                        QStringLiteral("the backend points to \"%1\", but the plugin follows no redirect: "
                                       "enter the URL that is really meant")
                            + (step == Step::GroupInfo ? groupLossWarning() : QString()))
                    .quoting(answer.redirect)};
    return {};
}

Findings judgeDuration(Step step, const Answer &answer)
{
    const double seconds = double(answer.duration.count()) / 1000.0;
    if (answer.timedOut || answer.duration <= longestPunctual)
        return {};
    if (step == Step::LiveValues && answer.duration > longestBearable)
        return {problem("too-slow",
                        QStringLiteral("the answer took %1 s: at one poll every 2 s over at most 6 "
                                       "connections the polls would pile up without end")
                            .arg(seconds))};
    if (step != Step::LiveValues)
        return {remark(
            "slow",
            QStringLiteral("the answer took %1 s; live values should come well within 2 s").arg(seconds))};
    return {
        remark("slow",
               QStringLiteral(
                   "the answer took %1 s; the plugin polls every 2 s without waiting for the previous "
                   "answer, with up to 6 requests at once. Slow answers that overtake each other make "
                   "energy count twice, because an older record lowers the session's energy and the next "
                   "one raises it again: random delays of up to 3 s made the total 9 % too high, of up to "
                   "10 s 72 %")
                   .arg(seconds))};
}

bool isThisMachine(const QString &host)
{
    return host == QLatin1String("localhost") || QHostAddress(host).isLoopback();
}

} // namespace

Findings judgeUrl(const QString &url)
{
    const QUrl parsed(url, QUrl::TolerantMode);
    const QString scheme = parsed.scheme();
    if (scheme != QLatin1String("http") && scheme != QLatin1String("https"))
        return {problem("unusable-url",
                        QStringLiteral("the URL must begin with http:// or https://; the plugin takes it "
                                       "as it is and adds nothing"))};
    if (!parsed.isValid() || parsed.host().isEmpty())
        return {problem("unusable-url", QStringLiteral("the URL names no host, or is not valid otherwise"))};

    Findings findings;
    if (scheme == QLatin1String("http") && !isThisMachine(parsed.host()))
        findings.append(
            remark("clear-text",
                   QStringLiteral("with http:// the group's secret travels in clear text in every "
                                  "request; whoever sees the traffic can read it")));
    if (!parsed.path().isEmpty() && parsed.path() != QLatin1String("/"))
        findings.append(remark("path-replaced",
                               QStringLiteral("the path \"%1\" of the URL is replaced by the plugin's own "
                                              "paths; it is not put in front of them"))
                            .quoting(parsed.path()));
    if (parsed.hasQuery() || parsed.hasFragment())
        findings.append(remark("query-kept",
                               QStringLiteral("the URL carries a query or fragment, which goes along with "
                                              "every request")));
    return findings;
}

Findings judgeAnswer(Step step, const Answer &answer)
{
    Findings findings = judgeFailure(step, answer);
    if (step == Step::GroupInfo && answer.error == QNetworkReply::RemoteHostClosedError && answer.status > 0)
        findings.last().text +=
            QLatin1String("; Qt at times takes a reply that was cut for a complete one") + groupLossWarning();
    if (step == Step::OnlineCheck && !isUnreachable(answer)) {
        for (Finding &finding : findings) {
            finding.kind = Finding::Kind::Remark;
            finding.text += QLatin1String(" (the plugin itself does without this check)");
        }
    }
    if (answer.setsCookie)
        findings.append(remark("sets-cookie",
                               QStringLiteral("the backend sets a cookie; nymea keeps it until it restarts "
                                              "and sends it back with later requests")));
    return findings + judgeDuration(step, answer);
}

bool hasContent(const Answer &answer)
{
    return answer.succeeded() && !isUnreadRedirect(answer);
}

bool isUnreachable(const Answer &answer)
{
    // A closed connection may be the fault of one path; the other meanings hold for all.
    return findMeaning(answer.error) && answer.error != QNetworkReply::RemoteHostClosedError;
}
