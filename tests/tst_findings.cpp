// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "groupinfo.h"
#include "json.h"
#include "mask.h"
#include "report.h"
#include "transport.h"
#include "valuesreply.h"

#include <QtTest>

using namespace std::chrono_literals;

namespace {

QDateTime noon()
{
    return QDateTime::fromString("2026-05-01T12:00:00Z", Qt::ISODate);
}

/*! The findings as a reader of the row compares them: "problem CODE WALLBOX, remark CODE". */
QString listed(const Findings &findings)
{
    QStringList lines;
    for (const Finding &finding : findings) {
        const QString kind = finding.kind == Finding::Kind::Problem ? "problem " : "remark ";
        lines.append((kind + finding.code + ' ' + finding.wallbox).trimmed());
    }
    return lines.join(", ");
}

/*! A group of one wallbox, "a", with that maximum. */
QByteArray withMaximum(const QByteArray &ampere)
{
    return R"({"evse_ids": {"a": {"max_charging_current": )" + ampere + "}}}";
}

Answer httpAnswer(int status, const QByteArray &body = "{}", std::chrono::milliseconds duration = 0ms)
{
    Answer answer;
    answer.status = status;
    answer.body = body;
    answer.duration = duration;
    if (status >= 400)
        answer.error = QNetworkReply::UnknownContentError;
    return answer;
}

Answer networkAnswer(QNetworkReply::NetworkError error)
{
    Answer answer;
    answer.error = error;
    return answer;
}

Answer noAnswer()
{
    Answer answer;
    answer.timedOut = true;
    return answer;
}

} // namespace

Q_DECLARE_METATYPE(Answer)
Q_DECLARE_METATYPE(Step)

class TestFindings : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void url_data();
    void url();
    void answer_data();
    void answer();
    void groupInfo_data();
    void groupInfo();
    void valuesReply_data();
    void valuesReply();
    void record_data();
    void record();
    void mask_data();
    void mask();
    void cuttingLeavesNoPartOfASecret();
    void terminalIsNotSteered();
};

void TestFindings::initTestCase()
{
    qputenv("TZ", "UTC-2"); // POSIX: two hours east of UTC
}

void TestFindings::url_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, const char *url, const char *expected) {
        QTest::newRow(name) << url << expected;
    };
    row("host and port", "https://192.168.1.20:8080", "");
    row("secret in clear text", "http://192.168.1.20:8080", "remark clear-text");
    row("this machine", "http://localhost:8080", "");
    row("this machine, IPv6", "http://[::1]:8080", "");
    row("bare slash", "https://backend/", "");
    row("path", "https://backend/api/v1", "remark path-replaced");
    row("query", "https://backend?x=1", "remark query-kept");
    row("address without scheme", "192.168.1.20:8080", "problem unusable-url");
    row("name without scheme", "localhost:8080", "problem unusable-url");
    row("other scheme", "ftp://backend", "problem unusable-url");
    row("no host", "http://", "problem unusable-url");
    row("port out of range", "http://backend:70000", "problem unusable-url");
}

void TestFindings::url()
{
    QFETCH(QString, url);
    QTEST(listed(judgeUrl(url)), "expected");
}

void TestFindings::answer_data()
{
    const auto refused = networkAnswer(QNetworkReply::ConnectionRefusedError);
    const auto closed = networkAnswer(QNetworkReply::RemoteHostClosedError);
    const auto other = networkAnswer(QNetworkReply::ProxyNotFoundError);
    QTest::addColumn<Step>("step");
    QTest::addColumn<Answer>("answer");
    QTest::addColumn<QString>("expected");
    QTest::newRow("accepted") << Step::GroupInfo << httpAnswer(200) << "";
    QTest::newRow("any other success") << Step::GroupInfo << httpAnswer(299) << "";
    QTest::newRow("token") << Step::GroupInfo << httpAnswer(401) << "problem token-refused";
    QTest::newRow("secret") << Step::GroupInfo << httpAnswer(403) << "problem secret-refused";
    QTest::newRow("group") << Step::GroupInfo << httpAnswer(404) << "problem unknown-group";
    QTest::newRow("request") << Step::LiveValues << httpAnswer(400) << "problem bad-request";
    QTest::newRow("crash") << Step::ChargeLimit << httpAnswer(500) << "problem backend-error";
    QTest::newRow("unusual status") << Step::GroupInfo << httpAnswer(451) << "problem http-error";
    QTest::newRow("no online check") << Step::OnlineCheck << httpAnswer(404) << "remark no-online-check";
    QTest::newRow("online check crashes") << Step::OnlineCheck << httpAnswer(500) << "remark backend-error";
    QTest::newRow("online check hangs") << Step::OnlineCheck << noAnswer() << "remark no-answer";
    QTest::newRow("nobody online") << Step::OnlineCheck << refused << "problem unreachable";
    QTest::newRow("silence") << Step::LiveValues << noAnswer() << "problem no-answer";
    QTest::newRow("connection cut") << Step::GroupInfo << closed << "problem connection-closed";
    QTest::newRow("other failure") << Step::GroupInfo << other << "problem network-error";
    QTest::newRow("redirect") << Step::GroupInfo << httpAnswer(302, "<html>") << "problem redirect";
    QTest::newRow("redirect that is read") << Step::GroupInfo << httpAnswer(302, "{}") << "";
    QTest::newRow("just in time") << Step::LiveValues << httpAnswer(200, "{}", 1500ms) << "";
    QTest::newRow("late") << Step::LiveValues << httpAnswer(200, "{}", 1501ms) << "remark slow";
    QTest::newRow("too late") << Step::LiveValues << httpAnswer(200, "{}", 12001ms) << "problem too-slow";
    QTest::newRow("late once") << Step::GroupInfo << httpAnswer(200, "{}", 12001ms) << "remark slow";
    Answer withCookie = httpAnswer(200);
    withCookie.setsCookie = true;
    QTest::newRow("cookie") << Step::GroupInfo << withCookie << "remark sets-cookie";
}

void TestFindings::answer()
{
    QFETCH(Step, step);
    QFETCH(Answer, answer);
    QTEST(listed(judgeAnswer(step, answer)), "expected");
}

void TestFindings::groupInfo_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, const QByteArray &body, const char *expected) {
        QTest::newRow(name) << body << expected;
    };
    row("no body", "", "problem not-json");
    row("page", "<html>It works!</html>", "problem not-json");
    row("cut", R"({"evse_ids": {)", "problem not-json");
    row("array", "[]", "problem not-json");
    row("no ids", R"({"success": true})", "problem no-evse-ids");
    row("list of ids", R"({"evse_ids": ["EVSE-01"]})", "problem no-evse-ids");
    row("empty group", R"({"evse_ids": {}})", "problem no-wallboxes");
    row("only the bad one is named", R"({"evse_ids": {"a": {"max_charging_current": 16}, "b": 16}})",
        "problem unusable-max-current b");
    for (const char *sound : {"6", "32", "16.0"})
        QTest::addRow("maximum %s", sound) << withMaximum(sound) << "";
    for (const char *unusable : {"5", "33", "-6", "16.5", "\"16\"", "null"})
        QTest::addRow("maximum %s", unusable) << withMaximum(unusable) << "problem unusable-max-current a";
    QByteArray wallboxes;
    for (int i = 1; i <= 32; ++i)
        wallboxes += '"' + QByteArray::number(i) + R"(": {"max_charging_current": 16},)";
    row("32 wallboxes", R"({"evse_ids": {)" + wallboxes.chopped(1) + "}}", "");
    row("33 wallboxes", R"({"evse_ids": {)" + wallboxes + R"("0": {"max_charging_current": 16}}})",
        "problem too-many-wallboxes");
}

void TestFindings::groupInfo()
{
    QFETCH(QByteArray, body);
    QTEST(listed(judgeGroupInfo(body)), "expected");
}

void TestFindings::valuesReply_data()
{
    const QByteArray good =
        R"({"timestamp": "2026-05-01T12:00:00Z", "status": "Available", "meter_value": 0, "phase_1": 0})";
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, const QByteArray &body, const char *expected) {
        QTest::newRow(name) << body << expected;
    };
    row("as asked for", R"({"success": true, "values": {"a": )" + good + "}}", "");
    row("not JSON", "\x1f\x8b", "problem not-json");
    row("no values", R"({"success": true})", "problem no-values-object");
    row("null", R"({"values": null})", "problem no-values-object");
    row("without success", R"({"values": {"a": )" + good + "}}", "remark no-success");
    row("success as text", R"({"success": "true", "values": {"a": )" + good + "}}", "remark no-success");
    row("left out", R"({"success": true, "values": {}})", "problem no-values a");
    row("other case", R"({"success": true, "values": {"A": )" + good + "}}",
        "problem no-values a, remark not-asked-for A");
    row("no object", R"({"success": true, "values": {"a": "Available"}})", "problem no-record a");
}

void TestFindings::valuesReply()
{
    QFETCH(QByteArray, body);
    QTEST(listed(judgeValues(body, {"a"}, noon())), "expected");
}

void TestFindings::record_data()
{
    QTest::addColumn<QString>("member");
    QTest::addColumn<QJsonValue>("value");
    QTest::addColumn<QString>("expected");
    const QJsonValue missing(QJsonValue::Undefined);
    const auto row = [](const char *name, const char *member, const QJsonValue &value, const char *expected) {
        QTest::newRow(name) << member << value << expected;
    };
    row("known status", "status", "SuspendedEVSE", "");
    row("status of its own right", "status", "Unavailable", "");
    row("lower case status", "status", "charging", "problem unknown-status a");
    row("no status", "status", missing, "problem unknown-status a");
    row("status by number", "status", 3, "problem unknown-status a");
    row("offset", "timestamp", "2026-05-01T14:00:00.250+02:00", "");
    row("no time", "timestamp", missing, "remark no-timestamp a");
    row("empty time", "timestamp", "", "remark no-timestamp a");
    row("seconds", "timestamp", 1777636800, "problem unreadable-timestamp a");
    row("other format", "timestamp", "01.05.2026 12:00", "problem unreadable-timestamp a");
    row("local time", "timestamp", "2026-05-01T14:00:00", "remark no-timezone a");
    row("UTC that does not say so", "timestamp", "2026-05-01T12:00:00",
        "remark no-timezone a, remark clock-difference a");
    row("five minutes old", "timestamp", "2026-05-01T11:55:00Z", "");
    row("older", "timestamp", "2026-05-01T11:54:59Z", "remark clock-difference a");
    row("from the future", "timestamp", "2026-05-01T12:05:01Z", "remark clock-difference a");
    row("meter as text", "meter_value", "3500", "problem not-a-number a");
    row("no meter", "meter_value", missing, "remark no-meter-value a");
    row("phase as text", "phase_2", "16", "problem not-a-number a");
    row("phase null", "phase_2", QJsonValue::Null, "");
    row("no phase", "phase_1", missing, "remark no-currents a");
    row("unknown member", "soc", "50 %", "");
}

void TestFindings::record()
{
    QFETCH(QString, member);
    QFETCH(QJsonValue, value);
    QJsonObject record = json(
        R"({"timestamp": "2026-05-01T12:00:00Z", "status": "Charging", "meter_value": 3500, "phase_1": 16})");
    record.insert(member, value);
    const QByteArray body = R"({"success": true, "values": {"a": )" + QJsonDocument(record).toJson() + "}}";
    QTEST(listed(judgeValues(body, {"a"}, noon())), "expected");
}

void TestFindings::mask_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, const char *text, const char *expected) {
        QTest::newRow(name) << text << expected;
    };
    row("nothing to hide", "s3cret", "s3cret");
    row("as it is", "<a\"b ü> and <a\"b ü>", "*** and ***");
    row("in JSON", R"({"secret":"<a\"b ü>"})", R"({"secret":"***"})");
    row("in a URL", "/?s=%3Ca%22b%20%C3%BC%3E", "/?s=***");
    row("in HTML", "<b>&lt;a&quot;b ü&gt;</b>", "<b>***</b>");
}

void TestFindings::mask()
{
    QFETCH(QString, text);
    Mask mask;
    mask.hide("");
    mask.hide(R"(<a"b ü>)");
    QTEST(mask(text), "expected");
}

void TestFindings::cuttingLeavesNoPartOfASecret()
{
    Mask mask;
    mask.hide("s3cret");
    StepReport report;
    report.findings = {problem("x", "%1").quoting(QString(197, '.') + "s3cret")};
    report.answer.body = QByteArray(197, '.') + "s3cret";
    const StepReport clean = masked(report, mask);
    QCOMPARE(clean.findings.first().sentence(), QString(197, '.') + "***");
    QCOMPARE(QString::fromUtf8(clean.answer.body), QString(197, '.') + "***");
}

void TestFindings::terminalIsNotSteered()
{
    StepReport report;
    report.findings = {problem("x", "%1").quoting("a\x1b[2Jb\nc\u202e")};
    QVERIFY(stepText(report).endsWith(QStringLiteral("  PROBLEM  a\uFFFD[2Jb c\uFFFD\n")));
}

QTEST_GUILESS_MAIN(TestFindings)
#include "tst_findings.moc"
