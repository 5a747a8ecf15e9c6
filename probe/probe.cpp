// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "probe.h"

#include "backendapi.h"
#include "chargelimits.h"
#include "networkhandler.h"
#include "replies.h"
#include "report.h"
#include "transport.h"
#include "wallboxbounds.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QSslSocket>
#include <QTimer>

namespace {

/*! The URL of \a path at the backend, or of the backend itself, without the password that it may contain, and
    without a fragment, which is not sent. */
QString displayUrl(const QString &base, const QString &path = {})
{
    QUrl url(base, QUrl::TolerantMode);
    if (!path.isEmpty())
        url.setPath(path, QUrl::DecodedMode);
    return url.toDisplayString(QUrl::FullyEncoded | QUrl::RemovePassword | QUrl::RemoveFragment);
}

void readReply(Step &step, QNetworkReply *reply)
{
    step.error = reply->error();
    if (!step.succeeded())
        step.errorText = reply->errorString();
    step.status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    step.redirect = reply->attribute(QNetworkRequest::RedirectionTargetAttribute).toUrl().toDisplayString();
    step.setsCookie = reply->hasRawHeader(QByteArrayLiteral("Set-Cookie"));
    const QByteArray body = reply->isOpen() ? reply->readAll() : QByteArray(); // not open after an abort
    step.json = QJsonDocument::fromJson(body, &step.notJson);
    // JSON is shown in Qt's own spelling, so that no escape sequence hides a secret.
    step.mask.hide(QString::fromLatin1(reply->request().rawHeader(QByteArrayLiteral("Authorization"))));
    step.reply = step.mask.quoted(
        QString::fromUtf8(step.json.isNull() ? body : step.json.toJson(QJsonDocument::Compact)));
}

/*! Tries a TLS handshake with the backend, even for http://, because the failed request of \a step does not
    say what is wrong. Nothing is sent over the connection. */
void tryHandshake(Step &step, const ProbeOptions &options)
{
    const QUrl url(options.url, QUrl::TolerantMode);
    const bool isHttps = url.scheme() == QLatin1String("https");
    QSslSocket socket;
    socket.connectToHostEncrypted(url.host(), quint16(url.port(isHttps ? 443 : 80)));
    const bool hasSucceeded = socket.waitForEncrypted(int(options.timeout.count()));
    if (isHttps && !hasSucceeded)
        step.errorText = socket.errorString();
    // This is OpenSSL's text for bytes that are not TLS. It has others for a handshake that either side
    // refuses.
    step.speaksTls = hasSucceeded
        || (socket.error() == QAbstractSocket::SslHandshakeFailedError
            && !socket.errorString().contains(QLatin1String("wrong version number")));
    const QList<QSslError> errors = socket.sslHandshakeErrors();
    for (const QSslError &error : errors)
        step.certificateErrors.append(error.errorString());
}

} // namespace

Probe::Probe(const ProbeOptions &options)
    : m_options(options)
{
    QCoreApplication::instance()->installEventFilter(this);
    connectHandler();
}

Probe::~Probe() = default;

/*! Cancels a reply that is too long. The handler passes on only finished replies, but data reaches the
    reply as events. */
bool Probe::eventFilter(QObject *watched, QEvent *event)
{
    auto *const reply = qobject_cast<QNetworkReply *>(watched);
    if (reply && reply->isRunning() && reply->bytesAvailable() > longestReply)
        reply->abort(); // which finishes it
    return QObject::eventFilter(watched, event);
}

Report Probe::run(const std::function<void(const Step &)> &stepDone)
{
    const QVector<QPair<Step::Stage, void (Probe::*)(Step &)>> stages{
        {Step::Url,         &Probe::checkUrl    },
        {Step::OnlineCheck, &Probe::checkOnline },
        {Step::GroupInfo,   &Probe::askGroupInfo},
        {Step::LiveValues,  &Probe::askValues   },
        {Step::ChargeLimit, &Probe::sendLimit   },
    };
    Report report;
    for (const auto &[stage, take] : stages) {
        if (stage == Step::ChargeLimit && !m_options.limit)
            break;
        Step step;
        step.stage = stage;
        step.mask.hide(m_options.secret);
        step.skipped = m_obstacle;
        if (m_obstacle.isEmpty())
            (this->*take)(step);
        report.append(step);
        stepDone(report.last());
    }
    return report;
}

void Probe::checkUrl(Step &step)
{
    const QString url = displayUrl(m_options.url);
    if (!url.isEmpty()) // an unreadable URL cannot be shown: it may hide a password anywhere
        step.detail(url);
    step.detail(QLatin1String("group ") + m_options.groupId);
    judgeUrl(step, m_options.url);
    if (count({step}, Problem) > 0)
        m_obstacle = QStringLiteral("no request can be sent to such a URL");
}

void Probe::checkOnline(Step &step)
{
    post(step, BackendApi::onlinePath());
    if (isUnreachable(step))
        m_obstacle = QStringLiteral("the backend cannot be reached");
}

void Probe::askGroupInfo(Step &step)
{
    if (post(step, BackendApi::groupInfoPath(m_options.groupId)))
        m_maxCurrents = readGroupInfo(step);
    if (m_maxCurrents.isEmpty())
        m_obstacle = QStringLiteral("the wallboxes of the group are not known");
}

void Probe::askValues(Step &step)
{
    // As many as the plugin has things for; it takes them in the order of the group info.
    const QStringList group = m_maxCurrents.keys();
    const QStringList wallboxes = group.mid(0, wallboxCount);
    const QJsonObject body = BackendApi::valuesBody(QJsonArray::fromStringList(wallboxes));
    if (post(step, BackendApi::valuesPath(m_options.groupId), body))
        readValues(step, wallboxes, QDateTime::currentDateTimeUtc());
}

void Probe::sendLimit(Step &step)
{
    const auto [wallbox, ampere] = *m_options.limit;
    const int largest = m_maxCurrents.value(wallbox, -1);
    step.wallbox = wallbox;
    if (largest < 0)
        return step.problem("limit-not-sent", "not a wallbox of this group; no limit was sent");
    if (ampere > largest)
        return step.problem("limit-not-sent",
                            "%1 A is more than the %2 A that the group allows it; no limit was sent",
                            {QString::number(ampere), QString::number(largest)});
    step.wallbox.clear();
    const QJsonObject limits{
        {wallbox, chargeLimit(double(ampere))},
    };
    // The plugin does not read the answer's body either.
    post(step, BackendApi::limitsPath(m_options.groupId), BackendApi::limitsBody(limits));
}

/*! Posts \a body and judges the answer. Returns whether the plugin would read the answer's body.

    The request is sent by the handler's sendRequestPost(), because its operations do not report what matters
    here: the status, the time, and a body that they cannot read. */
bool Probe::post(Step &step, const QString &path, const QJsonObject &body)
{
    step.url = step.mask(displayUrl(m_options.url, path));
    const QByteArray shownBody = QJsonDocument(body).toJson(QJsonDocument::Compact);
    step.body = QJsonDocument::fromJson(step.mask(QString::fromUtf8(shownBody)).toUtf8()).object();
    step.body.insert(QStringLiteral("secret"), QStringLiteral("***"));
    step.timedOut = true; // until the answer comes
    QEventLoop loop;
    QElapsedTimer clock;
    clock.start();
    QJsonObject sent = body; // the handler adds the secret
    m_handler->sendRequestPost(path, sent, [&step, &loop](QNetworkReply *reply) {
        step.timedOut = false;
        readReply(step, reply);
        loop.quit();
    });
    QTimer::singleShot(m_options.timeout, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
    step.duration = step.timedOut ? m_options.timeout : std::chrono::milliseconds(clock.elapsed());
    if (step.timedOut)
        connectHandler(); // ends the request: its callback, which refers to local variables, never runs
    if (mayBeDueToTls(step))
        tryHandshake(step, m_options);
    judgeAnswer(step);
    return step.succeeded() && !step.isRedirect();
}

void Probe::connectHandler()
{
    m_handler = std::make_unique<NetworkHandler>();
    m_handler->setServerInfo(m_options.url, m_options.groupId, m_options.secret);
}
