// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "probe.h"

#include "backendapi.h"
#include "chargelimits.h"
#include "networkhandler.h"
#include "valuesreply.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QJsonArray>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QUrl>

#include <utility>

namespace {

/*! The URL of \a path at the backend, or of the backend itself, without the password that it may carry. */
QString displayUrl(const QString &base, const QString &path = {})
{
    QUrl url(base, QUrl::TolerantMode);
    if (!path.isEmpty())
        url.setPath(path, QUrl::DecodedMode);
    return url.toDisplayString(QUrl::FullyEncoded | QUrl::RemovePassword);
}

Answer answerOf(QNetworkReply *reply)
{
    Answer answer;
    answer.error = reply->error();
    if (answer.error != QNetworkReply::NoError)
        answer.errorText = reply->errorString();
    answer.status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    answer.redirect = reply->attribute(QNetworkRequest::RedirectionTargetAttribute).toUrl().toDisplayString();
    answer.setsCookie = reply->hasRawHeader(QByteArrayLiteral("Set-Cookie"));
    if (reply->isOpen()) // not after an abort
        answer.body = reply->readAll();
    return answer;
}

} // namespace

Probe::Probe(const ProbeTarget &target)
    : m_target(target)
{
    m_mask.hide(target.secret);
    m_timeout.setSingleShot(true);
    m_timeout.setTimerType(Qt::PreciseTimer);
    connect(&m_timeout, &QTimer::timeout, this, [this] { giveUp(); });
    QCoreApplication::instance()->installEventFilter(this);
    connectHandler();
}

Probe::~Probe() = default;

/*! Breaks off a reply that is too long. The client hands out finished replies only, but whatever arrives
    reaches the reply as an event. */
bool Probe::eventFilter(QObject *watched, QEvent *event)
{
    auto *const reply = qobject_cast<QNetworkReply *>(watched);
    if (reply && reply->isRunning() && reply->bytesAvailable() > longestReply)
        reply->abort(); // which finishes it, and so concludes the step
    return QObject::eventFilter(watched, event);
}

void Probe::connectHandler()
{
    m_handler = std::make_unique<NetworkHandler>();
    m_handler->setServerInfo(m_target.url, m_target.groupId, m_target.secret);
}

void Probe::start()
{
    StepReport report;
    report.step = Step::Url;
    report.details = QStringList{displayUrl(m_target.url), QLatin1String("group ") + m_target.groupId};
    report.details.removeAll(QString()); // a hopeless URL cannot be shown: it may hide a password anywhere
    report.findings = judgeUrl(m_target.url);
    add(report);
    if (hasProblem(report.findings))
        skipFrom(Step::OnlineCheck, QStringLiteral("no request can be sent to such a URL"));
    else
        checkOnline();
}

// The requests go through the client's request primitive, since its operations keep what matters here to
// themselves: the status, the time and a body that they cannot read.

void Probe::checkOnline()
{
    post(Step::OnlineCheck, BackendApi::onlinePath(), {}, &Probe::afterOnline);
}

void Probe::afterOnline(const StepReport &report)
{
    add(report);
    if (isUnreachable(report.answer))
        skipFrom(Step::GroupInfo, QStringLiteral("the backend is out of reach"));
    else
        askGroupInfo();
}

void Probe::askGroupInfo()
{
    post(Step::GroupInfo, BackendApi::groupInfoPath(m_target.groupId), {}, &Probe::afterGroupInfo);
}

void Probe::afterGroupInfo(const StepReport &answered)
{
    StepReport report = answered;
    if (hasContent(report.answer)) {
        m_evseIds = listedWallboxes(report.answer.body);
        report.findings += judgeGroupInfo(report.answer.body);
        report.details = describeWallboxes(m_evseIds);
    }
    add(report);
    if (m_evseIds.isEmpty())
        skipFrom(Step::LiveValues, QStringLiteral("the wallboxes of the group are not known"));
    else
        askValues();
}

void Probe::askValues()
{
    const QJsonObject body = BackendApi::valuesBody(QJsonArray::fromStringList(m_evseIds.keys()));
    post(Step::LiveValues, BackendApi::valuesPath(m_target.groupId), body, &Probe::afterValues);
}

void Probe::afterValues(const StepReport &answered)
{
    StepReport report = answered;
    if (hasContent(report.answer)) {
        report.findings += judgeValues(report.answer.body, m_evseIds.keys(), QDateTime::currentDateTimeUtc());
        report.details = describeValues(report.answer.body);
    }
    add(report);
    if (m_target.limit)
        sendLimit();
    else
        emit finished();
}

void Probe::sendLimit()
{
    StepReport refusal;
    refusal.step = Step::ChargeLimit;
    refusal.findings = judgeLimitRequest(*m_target.limit, m_evseIds);
    if (hasProblem(refusal.findings)) {
        add(refusal);
        emit finished();
        return;
    }
    const QJsonObject limits{
        {m_target.limit->wallbox, chargeLimit(m_target.limit->ampere)},
    };
    post(Step::ChargeLimit, BackendApi::limitsPath(m_target.groupId), BackendApi::limitsBody(limits),
         &Probe::afterLimit);
}

void Probe::afterLimit(const StepReport &report)
{
    // The plugin does not read the body.
    add(report);
    emit finished();
}

void Probe::post(Step step, const QString &path, QJsonObject body, Continuation next)
{
    m_next = next;
    m_current = StepReport();
    m_current.step = step;
    m_current.url = displayUrl(m_target.url, path);
    m_clock.start();
    m_timeout.start(m_target.timeout);
    m_handler->sendRequestPost(path, body, [this](QNetworkReply *reply) { takeReply(reply); });
    m_current.body = body; // with the secret, which the client has added
}

void Probe::takeReply(QNetworkReply *reply)
{
    m_timeout.stop();
    m_mask.hide(QString::fromLatin1(reply->request().rawHeader(QByteArrayLiteral("Authorization"))));
    Answer answer = answerOf(reply);
    answer.duration = std::chrono::milliseconds(m_clock.elapsed());
    conclude(answer);
}

/*! Ends the request under way: its callback never runs. */
void Probe::giveUp()
{
    connectHandler();
    Answer answer;
    answer.timedOut = true;
    answer.duration = m_target.timeout;
    conclude(answer);
}

void Probe::conclude(const Answer &answer)
{
    m_current.answer = answer;
    m_current.findings = judgeAnswer(m_current.step, m_current.answer);
    (this->*m_next)(std::exchange(m_current, {}));
}

void Probe::add(const StepReport &report)
{
    m_report.append(masked(report, m_mask));
    emit stepDone(m_report.last());
}

/*! Leaves out \a first and all after it for \a reason, and finishes. */
void Probe::skipFrom(Step first, const QString &reason)
{
    const Step last = m_target.limit ? Step::ChargeLimit : Step::LiveValues;
    for (int step = int(first); step <= int(last); ++step) {
        StepReport report;
        report.step = Step(step);
        report.skipped = reason;
        add(report);
    }
    emit finished();
}
