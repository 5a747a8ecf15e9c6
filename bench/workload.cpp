// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "workload.h"

#include "backendprocess.h"
#include "site.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>

namespace {

/*! Gives out the replies of one kind in turn. */
class Ring
{
public:
    Ring(int wallboxes, Yard yard)
        : m_replies(valuesReplies(wallboxes, yard))
    {
    }

    const QByteArray &next() { return m_replies.at(m_next++ % m_replies.size()); }

private:
    const QVector<QByteArray> m_replies;
    int m_next = 0;
};

class Parse : public Workload
{
public:
    Parse(int wallboxes, Yard yard)
        : m_ring(wallboxes, yard)
    {
    }

    void run() override { m_document = QJsonDocument::fromJson(m_ring.next()); }

private:
    Ring m_ring;
    QJsonDocument m_document;
};

class Apply : public Workload
{
public:
    Apply(int wallboxes, Yard yard)
        : m_backend(wallboxes, yard)
        , m_site(QStringLiteral(VELA_PLUGIN_FILE), m_backend.url(), wallboxes)
        , m_ring(wallboxes, yard)
    {
    }

    void run() override
    {
        const QJsonObject answer = QJsonDocument::fromJson(m_ring.next()).object();
        m_site.apply(answer.value(QLatin1String("values")).toObject());
    }

private:
    BackendProcess m_backend;
    Site m_site;
    Ring m_ring;
};

class Post : public Workload
{
public:
    Post(int wallboxes, Yard yard)
        : m_backend(wallboxes, yard)
        , m_request(QUrl(m_backend.url() + QLatin1String("/vela/get_values/yard")))
        , m_body(
              QJsonDocument(QJsonObject{
                                {QStringLiteral("evse_ids"), QJsonArray::fromStringList(infraIds(wallboxes))},
                                {QStringLiteral("secret"),   QStringLiteral("s3cret")                       }
    })
                  .toJson())
    {
        m_request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
        m_request.setRawHeader("Authorization", "3f6c1d2e-7a4b-4c8d-9e0f-1a2b3c4d5e6f");
    }

    void run() override
    {
        QNetworkReply *reply = m_manager.post(m_request, m_body);
        QObject::connect(reply, &QNetworkReply::finished, reply, [this, reply] {
            reply->readAll();
            reply->deleteLater();
            m_loop.quit();
        });
        m_loop.exec();
    }

    int connections() override { return m_backend.connections(); }

private:
    BackendProcess m_backend;
    QNetworkAccessManager m_manager;
    QNetworkRequest m_request;
    const QByteArray m_body;
    QEventLoop m_loop;
};

class Poll : public Workload
{
public:
    Poll(const QString &pluginFile, int wallboxes, Yard yard)
        : m_backend(wallboxes, yard)
        , m_site(pluginFile, m_backend.url(), wallboxes)
    {
    }

    void run() override { m_site.poll(); }
    int connections() override { return m_backend.connections(); }

private:
    BackendProcess m_backend;
    Site m_site;
};

} // namespace

QStringList workloadNames()
{
    return {QStringLiteral("parse"), QStringLiteral("apply"), QStringLiteral("post"), QStringLiteral("poll"),
            QStringLiteral("poll-nolog")};
}

std::unique_ptr<Workload> makeWorkload(const QString &name, int wallboxes, Yard yard)
{
    if (name == QLatin1String("parse"))
        return std::make_unique<Parse>(wallboxes, yard);
    if (name == QLatin1String("apply"))
        return std::make_unique<Apply>(wallboxes, yard);
    if (name == QLatin1String("post"))
        return std::make_unique<Post>(wallboxes, yard);
    if (name == QLatin1String("poll"))
        return std::make_unique<Poll>(QStringLiteral(VELA_PLUGIN_FILE), wallboxes, yard);
    if (name == QLatin1String("poll-nolog"))
        return std::make_unique<Poll>(QStringLiteral(VELA_NOLOG_PLUGIN_FILE), wallboxes, yard);
    return nullptr;
}
