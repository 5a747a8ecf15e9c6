// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "json.h"
#include "networkhandler.h"
#include "scriptedbackend.h"

#include <QMetaMethod>
#include <QtTest>

/*! What transcripts/client.txt does not show. */
class TestNetworkHandler : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void secretReplacesTheCallers();
    void interface();
};

void TestNetworkHandler::secretReplacesTheCallers()
{
    ScriptedBackend backend;
    NetworkHandler handler;
    handler.setServerInfo(backend.url(), "yard", "s3cret");
    QJsonObject body = json(R"({"secret": "caller's", "evse_ids": []})");
    handler.sendRequestPost("/vela/get_values/yard", body, [](QNetworkReply *) {});
    QCOMPARE(body, json(R"({"secret": "s3cret", "evse_ids": []})")); // changed in place
    QTRY_COMPARE(backend.requests().size(), 1);
    QCOMPARE(backend.requests().constFirst().json(), body);
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
