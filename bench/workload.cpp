// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "workload.h"

#include "measuredplugin.h"
#include "replies.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QProcess>
#include <QTextStream>

#include <memory>

namespace {

/*! Returns the replies of one kind in turn, each parsed. */
class ParsedReplies
{
public:
    ParsedReplies(int wallboxes, const QString &report)
        : m_replies(valuesReplies(wallboxes, report))
    {
    }

    QJsonDocument next() { return QJsonDocument::fromJson(m_replies.at(m_next++ % m_replies.size())); }

private:
    const QList<QByteArray> m_replies;
    int m_next = 0;
};

/*! This program once more, as the backend. */
class BackendProcess
{
public:
    BackendProcess(int wallboxes, const QString &report)
    {
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(QCoreApplication::applicationFilePath(),
                        {"backend", QString::number(wallboxes), report});
        while (!m_process.canReadLine()) {
            if (!m_process.waitForReadyRead(-1)) // however busy the machine is
                qFatal("The backend does not start: %s", qPrintable(m_process.errorString()));
        }
        url = QString::fromUtf8(m_process.readLine().trimmed());
    }
    ~BackendProcess()
    {
        m_process.terminate();
        m_process.waitForFinished();
    }
    Q_DISABLE_COPY(BackendProcess)

    QString url;

private:
    QProcess m_process;
};

/*! Posts the plugin's values request without the plugin. */
class BareClient
{
public:
    BareClient(const QString &url, int wallboxes)
        : m_request(QUrl(url + "/vela/get_values/yard"))
    {
        const QJsonObject body{
            {"evse_ids", QJsonArray::fromStringList(infraIds(wallboxes))},
            {"secret",   "s3cret"                                       }
        };
        m_body = QJsonDocument(body).toJson();
        m_request.setHeader(QNetworkRequest::ContentTypeHeader, "application/json");
        m_request.setRawHeader("Authorization", "3f6c1d2e-7a4b-4c8d-9e0f-1a2b3c4d5e6f");
    }

    void post()
    {
        QNetworkReply *reply = m_manager.post(m_request, m_body);
        QObject::connect(reply, &QNetworkReply::finished, reply, [this, reply] {
            reply->readAll();
            reply->deleteLater();
            m_loop.quit();
        });
        m_loop.exec();
    }

private:
    QNetworkAccessManager m_manager;
    QNetworkRequest m_request;
    QByteArray m_body;
    QEventLoop m_loop;
};

} // namespace

std::function<void()> makeWorkload(const QString &name, int wallboxes, const QString &report)
{
    const auto replies = std::make_shared<ParsedReplies>(wallboxes, report);
    if (name == "parse")
        return [replies] { replies->next(); };
    const auto backend = std::make_shared<BackendProcess>(wallboxes, report);
    if (name == "post") {
        const auto client = std::make_shared<BareClient>(backend->url, wallboxes);
        return [backend, client] { client->post(); };
    }
    const QString file = name == "poll-nolog" ? VELA_NOLOG_PLUGIN_FILE : VELA_PLUGIN_FILE;
    const auto plugin = std::make_shared<MeasuredPlugin>(file, backend->url, wallboxes);
    if (name == "apply")
        return [replies, backend, plugin] {
            plugin->apply(replies->next().object().value("values").toObject());
        };
    return [backend, plugin] { plugin->poll(); };
}

int runBackend(int wallboxes, const QString &report)
{
    ScriptedBackend backend;
    const QStringList ids = infraIds(wallboxes);
    for (const QString &id : ids)
        backend.setWallbox(id, 32);
    backend.answerInTurn(ScriptedBackend::Values, valuesReplies(wallboxes, report));
    QTextStream(stdout) << backend.url() << '\n';
    return QCoreApplication::exec();
}
