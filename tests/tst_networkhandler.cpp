// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "json.h"
#include "logrecorder.h"
#include "networkhandler.h"
#include "scriptedbackend.h"

#include <QMetaMethod>
#include <QNetworkReply>
#include <QtTest>

using Backend = ScriptedBackend;

Q_DECLARE_METATYPE(Backend::Operation)

namespace {

QString compact(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

/*! A handler aimed at a backend of its own; what it emits is noted as "SIGNAL ARGUMENT". */
class Client
{
public:
    Client()
    {
        NetworkHandler *h = handler.data();
        const auto note = [this](const QString &text) { signalled.append(text); };
        QObject::connect(h, &NetworkHandler::daemonReachable, h,
                         [note](bool on) { note(QString("reachable %1").arg(on)); });
        QObject::connect(h, &NetworkHandler::infraInfoReceived, h,
                         [note](const QJsonObject &ids) { note("infra " + compact(ids)); });
        QObject::connect(h, &NetworkHandler::valuesReceived, h,
                         [note](const QJsonObject &values) { note("values " + compact(values)); });
        QObject::connect(h, &NetworkHandler::evseIsOnline, h,
                         [note](const QString &id) { note("evse " + id); });
        QObject::connect(h, &NetworkHandler::ocppDaemonStatus, h,
                         [note](bool on) { note(QString("daemon %1").arg(on)); });
        h->setServerInfo(backend.url(), "yard", "s3cret");
        log.clear();
    }

    void call(Backend::Operation operation) const
    {
        QJsonObject limits = json(R"({"a": {"value": 16, "unit": "A"}})");
        if (operation == Backend::Online)
            handler->isOnline();
        else if (operation == Backend::GroupInfo)
            handler->getConnectedInfra();
        else if (operation == Backend::Values)
            handler->getEvseValues({"a", "b"});
        else
            handler->setProfileChargePowerLimit(limits);
    }

    LogRecorder log;
    ScriptedBackend backend;
    QScopedPointer<NetworkHandler> handler{new NetworkHandler};
    QStringList signalled;
};

} // namespace

class TestNetworkHandler : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void request_data();
    void request();
    void success_data();
    void success();
    void failure_data();
    void failure();
    void url_data();
    void url();
    void secretReplacesTheCallers();
    void secretIsNotLogged();
    void retargetingLeavesRequestsUnderWay();
    void interface();
};

void TestNetworkHandler::request_data()
{
    QTest::addColumn<Backend::Operation>("operation");
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("target");
    QTest::addColumn<QString>("body");
    const auto row = [](const char *name, Backend::Operation operation, const char *line, const char *target,
                        const char *body) { QTest::newRow(name) << operation << line << target << body; };
    row("online", Backend::Online, "Check if the OCPP daemon is running.", "/is_online",
        R"({"secret":"s3cret"})");
    row("group info", Backend::GroupInfo, "Get info about connected WBs.", "/vela/get_group_info/yard",
        R"({"secret":"s3cret"})");
    row("values", Backend::Values, "Get info EVSE values.", "/vela/get_values/yard",
        R"({"evse_ids":["a","b"],"secret":"s3cret"})");
    row("limits", Backend::Limits, "Setting profile charge power limit.", "/vela/set_limits/yard",
        R"({"limits":{"a":{"unit":"A","value":16}},"secret":"s3cret"})");
}

void TestNetworkHandler::request()
{
    QFETCH(Backend::Operation, operation);
    QFETCH(QString, line);
    QFETCH(QString, target);
    Client client;
    client.call(operation);
    QCOMPARE(client.log.lines(),
             (QStringList{"debug: " + line, QString("debug: Send Post Request \"%1\"").arg(target)}));
    QTRY_COMPARE(client.backend.requests().size(), 1);
    const Backend::Request request = client.backend.requests().constFirst();
    QCOMPARE(QString(request.target), target);
    QTEST(compact(request.json()), "body");
    QCOMPARE(request.body, QJsonDocument(request.json()).toJson()); // indented
    QCOMPARE(request.headers.value("content-type"), QByteArray("application/json"));
    QCOMPARE(request.headers.value("authorization"), QByteArray("3f6c1d2e-7a4b-4c8d-9e0f-1a2b3c4d5e6f"));
}

void TestNetworkHandler::success_data()
{
    QTest::addColumn<Backend::Operation>("operation");
    QTest::addColumn<QString>("body");
    QTest::addColumn<QString>("lines"); // what follows the request's two
    QTest::addColumn<QString>("signalled");
    const QString online = "debug: isOnline() - OCPP Daemon is online.";
    const auto row = [](const char *name, Backend::Operation operation, const char *body,
                        const QString &lines, const char *signalled) {
        QTest::newRow(name) << operation << body << lines << signalled;
    };
    row("online, whatever the body", Backend::Online, "no json", online, "reachable 1");
    row("online, no body", Backend::Online, "", online, "reachable 1");
    const QString infra = "debug: getConnectedInfra() - Received information about connected infrastructure.";
    row("group of one", Backend::GroupInfo, R"({"evse_ids":{"a":{"max_charging_current":16}}})", infra,
        R"(infra {"a":{"max_charging_current":16}})");
    row("group without a list", Backend::GroupInfo, "{}", infra, "infra {}");
    row("list as an array", Backend::GroupInfo, R"({"evse_ids":["a"]})", infra, "infra {}");
    row("broken JSON", Backend::GroupInfo, R"({"evse_ids":{)", infra, "infra {}");
    row("values", Backend::Values, R"({"success":true,"values":{"a":{}}})",
        "debug: QJsonObject({\"success\":true,\"values\":{\"a\":{}}})\ndebug: values QJsonObject({\"a\":{}})",
        R"(values {"a":{}})");
    row("values without success", Backend::Values, R"({"values":{"a":{}}})",
        R"(debug: QJsonObject({"values":{"a":{}}}))", R"(values {"a":{}})");
    row("success as a text", Backend::Values, R"({"success":"true"})",
        R"(debug: QJsonObject({"success":"true"}))", "values {}");
    row("an array at the top", Backend::Values, "[1]", "debug: QJsonObject()", "values {}");
    row("limits, whatever the body", Backend::Limits, R"({"success":false})",
        "debug: setProfileChargePowerLimit() - Setting profile power limit succesfull.", "");
}

void TestNetworkHandler::success()
{
    QFETCH(Backend::Operation, operation);
    QFETCH(QString, body);
    QFETCH(QString, lines);
    Client client;
    client.backend.answer(operation, 200, body.toUtf8());
    client.call(operation);
    QTRY_COMPARE(client.log.lines().mid(2), lines.split('\n'));
    QTEST(client.signalled.join("; "), "signalled");
}

void TestNetworkHandler::failure_data()
{
    QTest::addColumn<Backend::Operation>("operation");
    QTest::addColumn<int>("status"); // as sent, or -1: refuses the connection, -2: closes it unanswered
    QTest::addColumn<QString>("what");
    QTest::addColumn<QString>("after"); // the line that follows the warning
    QTest::addColumn<QString>("signalled");
    const QString online = "isOnline() - OCPP Daemon is not online.";
    const QString infra = "getConnectedInfra() - Could not get info about connected devices.";
    const QString values = "getEvseValues() - Could not get info about EVSE values.";
    const QString limits = "setProfileChargePowerLimit() - Could not set profile power limit.";
    const auto row = [](const char *name, Backend::Operation operation, int status, const QString &what,
                        const char *after, const char *signalled) {
        QTest::addRow("%s %d", name, status) << operation << status << what << after << signalled;
    };
    for (const int status : {404, 418, 500, -1, -2, 0})
        row("online", Backend::Online, status, online, "", "reachable 0");
    for (const int status : {400, 401, 403, 404, 500, 503, -1, -2, 0})
        row("group info", Backend::GroupInfo, status, infra, "", "daemon 0");
    row("group info", Backend::GroupInfo, 418, infra,
        "warning: getConnectedInfra() - received status code 418", "");
    for (const auto &[name, operation, what] : {
             std::tuple{"values", Backend::Values, values},
             {"limits", Backend::Limits, limits}
    }) {
        // Without a response there is no status, which is not the same as a status of 0.
        for (const int status : {401, 404, 418, 500, -1, -2})
            row(name, operation, status, what, "", "");
        row(name, operation, 400, what, "debug: isEvseOnline() - WB likely not connected anymore.", "");
        row(name, operation, 0, what, "debug: isEvseOnline() - OCPP likely not running.", "daemon 0");
    }
}

void TestNetworkHandler::failure()
{
    QFETCH(Backend::Operation, operation);
    QFETCH(int, status);
    QFETCH(QString, what);
    QFETCH(QString, after);
    Client client;
    client.backend.answer(operation, status);
    if (status == -1)
        client.backend.shutDown();
    else if (status == -2)
        client.backend.hangUp(operation);
    else if (status == 0) // as a broken proxy may send it; fails, since the body cannot be unpacked
        client.backend.hangUp(operation,
                              "HTTP/1.1 000 Nothing\r\nContent-Encoding: gzip\r\nContent-Length: "
                              "8\r\n\r\n\xff\xff\xff\xff\xff\xff\xff\xff");
    client.call(operation);
    QTRY_COMPARE(client.log.lines().size(), after.isEmpty() ? 3 : 4);
    static const QRegularExpression layout(
        "^warning: (.+)\n Error:  QNetworkReply::\\w+ \n Error code:  (\\d+) \n Error reply:  \".+\"$");
    const QRegularExpressionMatch warning = layout.match(client.log.lines().at(2));
    QCOMPARE(warning.captured(1), what);
    QCOMPARE(warning.captured(2), QString::number(qMax(status, 0)));
    QCOMPARE(client.log.lines().value(3), after);
    QTEST(client.signalled.join("; "), "signalled");
}

void TestNetworkHandler::url_data()
{
    QTest::addColumn<QString>("suffix"); // of the backend's URL
    QTest::addColumn<QString>("groupId");
    QTest::addColumn<QString>("target");
    const auto row = [](const char *name, const char *suffix, const char *groupId, const char *target) {
        QTest::newRow(name) << suffix << groupId << target;
    };
    row("trailing slash", "/", "yard", "/vela/get_values/yard");
    row("path is replaced", "/api/v1", "yard", "/vela/get_values/yard");
    row("query stays", "/api?tenant=7", "yard", "/vela/get_values/yard?tenant=7");
    row("no group id", "", "", "/vela/get_values/");
    row("space", "", "my yard", "/vela/get_values/my%20yard");
    row("percent sign is literal", "", "50%20", "/vela/get_values/50%2520");
    row("question mark is no query", "", "a?b#c", "/vela/get_values/a%3Fb%23c");
    row("umlaut", "", "höfe", "/vela/get_values/h%C3%B6fe");
}

/*! With an empty secret and no ids, both of which are sent nevertheless. */
void TestNetworkHandler::url()
{
    QFETCH(QString, suffix);
    QFETCH(QString, groupId);
    Client client;
    client.handler->setServerInfo(client.backend.url() + suffix, groupId, QString());
    client.handler->getEvseValues({});
    QTRY_COMPARE(client.backend.requests().size(), 1);
    QTEST(QString(client.backend.requests().constFirst().target), "target");
    QCOMPARE(compact(client.backend.requests().constFirst().json()), R"({"evse_ids":[],"secret":""})");
}

void TestNetworkHandler::secretReplacesTheCallers()
{
    Client client;
    QJsonObject body = json(R"({"secret": "caller's", "evse_ids": []})");
    client.handler->sendRequestPost("/vela/get_values/yard", body, [](QNetworkReply *) {});
    QCOMPARE(compact(body), R"({"evse_ids":[],"secret":"s3cret"})"); // changed in place
    QTRY_COMPARE(client.backend.requests().size(), 1);
    QCOMPARE(client.backend.requests().constFirst().json(), body);
}

void TestNetworkHandler::secretIsNotLogged()
{
    Client client;
    client.handler->setServerInfo(client.backend.url(), "yard", "s3cret");
    QCOMPARE(client.log.lines(), QStringList("debug: Full URL is QUrl(\"" + client.backend.url() + "\")"));
    for (const auto operation : {Backend::Online, Backend::GroupInfo, Backend::Values, Backend::Limits}) {
        client.backend.answer(operation, 500);
        client.call(operation);
    }
    QTRY_COMPARE(client.log.warnings().size(), 4);
    QCOMPARE(client.log.lines().filter(QRegularExpression("s3cret|3f6c1d2e")), QStringList());
}

/*! The first request keeps its target, even when that is changed before it has left; its answer comes
    second, and is taken second. */
void TestNetworkHandler::retargetingLeavesRequestsUnderWay()
{
    Client client;
    ScriptedBackend other;
    client.backend.hold(Backend::GroupInfo);
    client.handler->getConnectedInfra();
    client.handler->setServerInfo(other.url(), "depot", "0ther");
    client.handler->getConnectedInfra();
    QTRY_COMPARE(client.signalled, QStringList("infra {}"));
    QTRY_COMPARE(client.backend.requests().size(), 1);
    QVERIFY(client.backend.release(Backend::GroupInfo, R"({"evse_ids":{"a":{}}})"));
    QTRY_COMPARE(client.signalled, (QStringList{"infra {}", R"(infra {"a":{}})"}));

    QCOMPARE(client.backend.requests().constFirst().target, QByteArray("/vela/get_group_info/yard"));
    QCOMPARE(compact(client.backend.requests().constFirst().json()), R"({"secret":"s3cret"})");
    QCOMPARE(other.requests().size(), 1);
    QCOMPARE(other.requests().constFirst().target, QByteArray("/vela/get_group_info/depot"));
    QCOMPARE(compact(other.requests().constFirst().json()), R"({"secret":"0ther"})");
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
