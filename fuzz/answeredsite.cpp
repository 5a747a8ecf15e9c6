// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "answeredsite.h"

#include "fuzzing.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QNetworkAccessManager>
#include <QNetworkReply>

namespace {

QByteArray &nextReply()
{
    static QByteArray reply;
    return reply;
}

/*! Runs the event loop until there is nothing left to do. */
void runEvents()
{
    do {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    } while (QAbstractEventDispatcher::instance()->hasPendingEvents());
}

} // namespace

/*! In place of Qt's own function. Qt answers a data URL by itself, from the event loop. */
QNetworkReply *QNetworkAccessManager::post(const QNetworkRequest &, const QByteArray &)
{
    return get(QNetworkRequest(QUrl("data:application/json;base64," + nextReply().toBase64())));
}

AnsweredSite::AnsweredSite()
{
    nextReply() =
        R"({"evse_ids":{"EVSE-01":{"max_charging_current":16},"EVSE-02":{"max_charging_current":32}}})";
    const Job discovery = discover();
    runEvents();
    require(discovery->offers.size() == 1, "the gateway is found");
    m_offer = discovery->offers.first();
    renewGateway(nextReply());
    require(wallboxes().size() == 2, "the group has two wallboxes");
}

void AnsweredSite::renewGateway(const QByteArray &groupInfo)
{
    if (gateway())
        remove(gateway());
    nextReply() = groupInfo;
    const Job job = add(m_offer);
    runEvents();
    require(job->text == "NoError", "the gateway is added");
}

void AnsweredSite::setupGateway(const QByteArray &groupInfo)
{
    nextReply() = groupInfo;
    const Job job = setup(gateway());
    runEvents();
    require(job->text == "NoError", "an answered set-up ends");
}

void AnsweredSite::poll(const QByteArray &values)
{
    nextReply() = values;
    tick();
    runEvents();
    log.clear();
}
