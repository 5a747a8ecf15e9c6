// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "transport.h"

#include <QHostAddress>
#include <QUrl>

#include <algorithm>

using namespace std::chrono_literals;

namespace {

constexpr auto pluginPollPeriod = 2s;
// Qt opens six connections to a host. If answers are slower than this, polls wait in ever longer queues.
constexpr auto longestBearable = 6 * pluginPollPeriod;
// Replies overtake each other if their delays differ by a poll period. This is less, because the measured reply
// may be one of the faster ones.
constexpr auto longestPunctual = 1500ms;

struct Meaning
{
    int number; // an HTTP status, or an error of Qt
    const char *code;
    const char *text;
};

constexpr Meaning httpMeanings[] = {
    {400, "bad-request",    "the backend considers the request malformed"                       },
    {401, "token-refused",  "the backend refuses the access token: is it a backend for Vela?"   },
    {403, "secret-refused", "the backend refuses access: the group secret is probably wrong"    },
    {404, "unknown-group",  "the backend does not know this group, or is not at this URL"       },
    {405, "post-refused",   "what is at this URL does not accept POST, so it is not the backend"},
    {418, "http-error",     "the backend refuses to serve this group"                           },
};

using Error = QNetworkReply::NetworkError;
// %1 stands for Qt's own words.
constexpr Meaning networkMeanings[] = {
    {Error::ConnectionRefusedError, "unreachable",       "nothing is listening there: is the port right? (%1)"},
    {Error::HostNotFoundError,      "unreachable",       "unknown host name: is it spelt right? (%1)"         },
    {Error::TimeoutError,           "unreachable",       "nothing answers there: is the address right? (%1)"  },
    {Error::ProtocolUnknownError,   "unusable-url",      "the URL is neither http nor https (%1)"             },
    {Error::RemoteHostClosedError,  "connection-closed", "the backend closed the connection (%1)"             },
};

template <std::size_t size> const Meaning *find(const Meaning (&meanings)[size], int number)
{
    const auto *const row = std::find_if(std::begin(meanings), std::end(meanings),
                                         [number](const Meaning &row) { return row.number == number; });
    return row != std::end(meanings) ? row : nullptr;
}

QString seconds(const Step &step)
{
    return QString::number(double(step.duration.count()) / 1000.0);
}

void judgeHttpError(Step &step)
{
    if (step.stage == Step::OnlineCheck && step.status == 404)
        step.problem("no-online-check", "the backend has no online check");
    else if (const Meaning *const meaning = find(httpMeanings, step.status))
        step.problem(meaning->code, meaning->text);
    else if (step.status >= 500)
        step.problem("backend-error", "the backend reports an internal error");
    else
        step.problem("http-error", "the backend refuses the request");
}

void judgeNetworkError(Step &step)
{
    if (const Meaning *const meaning = find(networkMeanings, step.error))
        step.problem(meaning->code, meaning->text, {step.errorText});
    else
        step.problem("network-error", "the request failed: %1", {step.errorText});
    const bool isCut = step.error == QNetworkReply::RemoteHostClosedError && step.status > 0;
    if (isCut && step.stage == Step::GroupInfo)
        step.extend("; Qt sometimes takes a reply that was cut for a complete one").extend(groupLossWarning);
}

bool isHttps(const Step &step)
{
    return step.url.startsWith(QLatin1String("https:"));
}

/*! Whether the TLS handshake has shown why \a step failed. */
bool hasTlsFault(const Step &step)
{
    return mayBeDueToTls(step)
        && (step.speaksTls != isHttps(step) || !step.certificateErrors.isEmpty()
            || step.error == QNetworkReply::SslHandshakeFailedError);
}

void judgeTlsFault(Step &step)
{
    if (!isHttps(step))
        step.problem("needs-https", "that port speaks TLS: did you mean https://?");
    else if (!step.speaksTls)
        step.problem("no-tls", "that port does not speak TLS: did you mean http://? (%1)", {step.errorText});
    else if (step.certificateErrors.isEmpty())
        step.problem("tls-failed", "the TLS handshake failed: %1", {step.errorText});
    else
        step.problem("untrusted-certificate", "the backend's certificate is not trusted: %1",
                     {step.certificateErrors.join(QLatin1String("; "))});
}

void judgeFailure(Step &step)
{
    if (hasTlsFault(step)) {
        judgeTlsFault(step);
    } else if (step.timedOut) {
        step.problem("no-answer", "no answer within %1 s", {seconds(step)});
        if (step.stage != Step::OnlineCheck)
            step.extend("; the plugin would go on waiting, without a message");
    } else if (step.error == QNetworkReply::OperationCanceledError) { // by the probe
        step.problem(
            "too-long",
            "the probe stopped reading the reply after %1 MB; nymea would go on, and keep all of it in "
            "memory until the reply ends or the memory is used up",
            {QString::number(longestReply >> 20)});
    } else if (!step.succeeded() && step.status >= 400) {
        judgeHttpError(step);
    } else if (!step.succeeded()) {
        judgeNetworkError(step);
    } else if (step.isRedirect()) {
        step.problem(
            "redirect",
            "the backend redirects to \"%1\", but the plugin follows no redirect: enter the final URL",
            {step.redirect});
        if (step.stage == Step::GroupInfo)
            step.extend(groupLossWarning);
    }
}

void judgeDuration(Step &step)
{
    if (step.timedOut || step.duration <= longestPunctual)
        return;
    if (step.stage != Step::LiveValues)
        step.warning("slow", "the answer took %1 s; live values should come well within 2 s",
                     {seconds(step)});
    else if (step.duration > longestBearable)
        step.problem(
            "too-slow",
            "the answer took %1 s: with one poll every 2 s over at most 6 connections, the polls would "
            "pile up without end",
            {seconds(step)});
    else
        step.warning(
            "slow",
            "the answer took %1 s; the plugin polls every 2 s without waiting for the previous answer, "
            "with up to 6 requests at once. Slow answers that overtake each other make energy count "
            "twice: random delays of up to 3 s made the total 9% too high, of up to 10 s 72%",
            {seconds(step)});
}

bool isThisMachine(const QString &host)
{
    return host == QLatin1String("localhost") || QHostAddress(host).isLoopback();
}

} // namespace

void judgeUrl(Step &step, const QString &url)
{
    const QUrl parsed(url, QUrl::TolerantMode);
    const bool isClear = parsed.scheme() == QLatin1String("http");
    if (!isClear && parsed.scheme() != QLatin1String("https"))
        return step.problem(
            "unusable-url",
            "the URL must begin with http:// or https://; the plugin takes it as it is and adds "
            "nothing");
    if (!parsed.isValid() || parsed.host().isEmpty())
        return step.problem("unusable-url", "the URL has no host, or is invalid otherwise");
    if (isClear && !isThisMachine(parsed.host()))
        step.warning("clear-text",
                     "http:// sends the group's secret in clear text with every request; anyone who sees "
                     "the traffic can read it");
    if (!parsed.path().isEmpty() && parsed.path() != QLatin1String("/"))
        step.warning(
            "path-replaced",
            "the path \"%1\" of the URL is replaced by the plugin's own paths; it is not put in front "
            "of them",
            {parsed.path()});
    if (parsed.hasQuery())
        step.warning("query-kept", "the URL has a query, which is part of every request");
}

bool mayBeDueToTls(const Step &step)
{
    if (step.stage != Step::OnlineCheck)
        return false;
    if (step.error == QNetworkReply::SslHandshakeFailedError)
        return true;
    // If only one side speaks TLS, the backend closes the connection, or answers plain HTTP with status 400.
    return step.status == 0 ? step.error == QNetworkReply::RemoteHostClosedError
                            : step.status == 400 && !isHttps(step);
}

void judgeAnswer(Step &step)
{
    judgeFailure(step);
    if (step.stage == Step::OnlineCheck && !step.findings.isEmpty() && !isUnreachable(step)) {
        step.findings.last().severity = Warning;
        step.extend(" (the plugin itself does not use this check)");
    }
    if (step.setsCookie)
        step.warning(
            "sets-cookie",
            "the backend sets a cookie; nymea keeps it until it restarts and sends it back with later "
            "requests");
    judgeDuration(step);
}

bool isUnreachable(const Step &step)
{
    // A closed connection may concern one path only; the other errors concern all.
    return hasTlsFault(step)
        || (find(networkMeanings, step.error) && step.error != QNetworkReply::RemoteHostClosedError);
}
