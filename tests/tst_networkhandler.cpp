// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "json.h"
#include "networkhandler.h"
#include "scriptedbackend.h"
#include "waiting.h"

#include <QMetaMethod>
#include <QtTest>

/*! What transcripts/plugin-client.txt does not show. */
class TestNetworkHandler : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void request();
    void interface();
};

/*! The secret replaces the one that the caller has put there. */
void TestNetworkHandler::request()
{
    ScriptedBackend backend;
    NetworkHandler handler;
    handler.setServerInfo(backend.url(), "yard", "s3cret");
    QJsonObject body = json(R"({"secret": "caller's", "evse_ids": []})");
    handler.sendRequestPost("/vela/get_values/yard", body, [](QNetworkReply *) {});
    QCOMPARE(body, json(R"({"secret": "s3cret", "evse_ids": []})")); // changed in place
    QVERIFY(waitFor([&backend] { return !backend.requests().isEmpty(); }));
    const ScriptedBackend::Request request = backend.requests().constFirst();
    QCOMPARE(request.body, QJsonDocument(body).toJson()); // indented
    QCOMPARE(request.headers.value("content-type"), QByteArray("application/json"));
    QCOMPARE(request.headers.value("authorization"), QByteArray("3f6c1d2e-7a4b-4c8d-9e0f-1a2b3c4d5e6f"));
}

void TestNetworkHandler::interface()
{
    const QMetaObject &meta = NetworkHandler::staticMetaObject;
    QStringList methods;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        methods.append(meta.method(i).methodSignature() + ' ' + meta.method(i).parameterNames().join(','));
    QCOMPARE(
        methods,
        (QStringList{"daemonReachable(bool) state", "infraInfoReceived(QJsonObject) evseIds",
                     "valuesReceived(QJsonObject) receivedValues", "evseIsOnline(QString,bool) device,state",
                     "ocppDaemonStatus(bool) state", "getConnectedInfra() ", "isOnline() ",
                     "getEvseValues(QJsonArray) devices", "setProfileChargePowerLimit(QJsonObject&) data"}));
}

QTEST_GUILESS_MAIN(TestNetworkHandler)
#include "tst_networkhandler.moc"
