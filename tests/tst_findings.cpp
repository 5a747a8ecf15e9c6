// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "groupinfo.h"
#include "mask.h"
#include "report.h"
#include "transport.h"
#include "valuesreply.h"

#include <QJsonArray>
#include <QJsonDocument>
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

Answer httpAnswer(int status, const QByteArray &body = "{}")
{
    Answer answer;
    answer.status = status;
    answer.body = body;
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

Answer slowAnswer(std::chrono::milliseconds duration)
{
    Answer answer = httpAnswer(200);
    answer.duration = duration;
    return answer;
}

Answer noAnswer()
{
    Answer answer;
    answer.timedOut = true;
    answer.duration = 10s;
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
    void maxCurrent_data();
    void maxCurrent();
    void wallboxCount();
    void valuesReply_data();
    void valuesReply();
    void record_data();
    void record();
    void limitRequest_data();
    void limitRequest();
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
    QTest::newRow("host and port") << "http://192.168.1.20:8080"
                                   << "";
    QTest::newRow("bare slash") << "https://backend/"
                                << "";
    QTest::newRow("path") << "http://backend/api/v1"
                          << "remark path-replaced";
    QTest::newRow("query") << "http://backend?x=1"
                           << "remark query-kept";
    QTest::newRow("address without scheme") << "192.168.1.20:8080"
                                            << "problem unusable-url";
    QTest::newRow("name without scheme") << "localhost:8080"
                                         << "problem unusable-url";
    QTest::newRow("other scheme") << "ftp://backend"
                                  << "problem unusable-url";
    QTest::newRow("no host") << "http://"
                             << "problem unusable-url";
    QTest::newRow("port out of range") << "http://backend:70000"
                                       << "problem unusable-url";
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
    QTest::newRow("just in time") << Step::LiveValues << slowAnswer(2000ms) << "";
    QTest::newRow("late") << Step::LiveValues << slowAnswer(2001ms) << "remark slow";
    QTest::newRow("too late") << Step::LiveValues << slowAnswer(12001ms) << "problem too-slow";
    QTest::newRow("late once") << Step::GroupInfo << slowAnswer(12001ms) << "remark slow";
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
    QTest::newRow("one wallbox") << QByteArray(R"({"evse_ids": {"EVSE-01": {"max_charging_current": 32}}})")
                                 << "";
    QTest::newRow("no body") << QByteArray() << "problem not-json";
    QTest::newRow("page") << QByteArray("<html>It works!</html>") << "problem not-json";
    QTest::newRow("cut") << QByteArray(R"({"evse_ids": {)") << "problem not-json";
    QTest::newRow("array") << QByteArray("[]") << "problem not-json";
    QTest::newRow("no ids") << QByteArray(R"({"success": true})") << "problem no-evse-ids";
    QTest::newRow("list of ids") << QByteArray(R"({"evse_ids": ["EVSE-01"]})") << "problem no-evse-ids";
    QTest::newRow("empty group") << QByteArray(R"({"evse_ids": {}})") << "problem no-wallboxes";
    QTest::newRow("only the bad one is named")
        << QByteArray(R"({"evse_ids": {"a": {"max_charging_current": 16}, "b": 16}})")
        << "problem unusable-max-current b";
}

void TestFindings::groupInfo()
{
    QFETCH(QByteArray, body);
    QTEST(listed(judgeGroupInfo(body)), "expected");
}

void TestFindings::maxCurrent_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QString>("sentence");
    const QString range = "the plugin takes whole amperes from 6 to 32";
    QTest::newRow("least") << QByteArray("6") << "";
    QTest::newRow("most") << QByteArray("32") << "";
    QTest::newRow("whole in disguise") << QByteArray("16.0") << "";
    QTest::newRow("fraction") << QByteArray("16.5") << "the number 16.5; " + range + " and would read 0";
    QTest::newRow("text") << QByteArray("\"16\"") << "the text \"16\"; " + range + " and would read 0";
    QTest::newRow("null") << QByteArray("null") << "null; " + range + " and would read 0";
    QTest::newRow("zero") << QByteArray("0") << "the number 0; " + range;
    QTest::newRow("too little to charge") << QByteArray("5") << "the number 5; " + range;
    QTest::newRow("too much") << QByteArray("33") << "the number 33; " + range;
    QTest::newRow("negative") << QByteArray("-6") << "the number -6; " + range;
}

void TestFindings::maxCurrent()
{
    QFETCH(QByteArray, value);
    QFETCH(QString, sentence);
    const Findings findings =
        judgeGroupInfo(R"({"evse_ids": {"EVSE-01": {"max_charging_current": )" + value + "}}}");
    const QString expected = sentence.isEmpty() ? QString() : "\"max_charging_current\" is " + sentence;
    QCOMPARE(findings.value(0).sentence(), expected);
}

void TestFindings::wallboxCount()
{
    QJsonObject evseIds;
    const auto judge = [&evseIds] {
        return listed(judgeGroupInfo(QJsonDocument(QJsonObject{
                                                       {"evse_ids", evseIds}
        })
                                         .toJson()));
    };
    while (evseIds.size() < 32)
        evseIds.insert(QString::number(evseIds.size()),
                       QJsonObject{
                           {"max_charging_current", 16}
        });
    QCOMPARE(judge(), QString());
    evseIds.insert("one more",
                   QJsonObject{
                       {"max_charging_current", 16}
    });
    QCOMPARE(judge(), QString("problem too-many-wallboxes"));
}

void TestFindings::valuesReply_data()
{
    const QByteArray good =
        R"({"timestamp": "2026-05-01T12:00:00Z", "status": "Available", "meter_value": 0, "phase_1": 0})";
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("expected");
    QTest::newRow("as asked for") << R"({"success": true, "values": {"a": )" + good + "}}"
                                  << "";
    QTest::newRow("not JSON") << QByteArray("\x1f\x8b") << "problem not-json";
    QTest::newRow("no values") << QByteArray(R"({"success": true})") << "problem no-values-object";
    QTest::newRow("null") << QByteArray(R"({"values": null})") << "problem no-values-object";
    QTest::newRow("without success") << R"({"values": {"a": )" + good + "}}"
                                     << "remark no-success";
    QTest::newRow("success as text") << R"({"success": "true", "values": {"a": )" + good + "}}"
                                     << "remark no-success";
    QTest::newRow("left out") << QByteArray(R"({"success": true, "values": {}})") << "problem no-values a";
    QTest::newRow("other case") << R"({"success": true, "values": {"A": )" + good + "}}"
                                << "problem no-values a, remark not-asked-for A";
    QTest::newRow("no object") << QByteArray(R"({"success": true, "values": {"a": "Available"}})")
                               << "problem no-record a";
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
    QTest::newRow("known status") << "status" << QJsonValue("SuspendedEVSE") << "";
    QTest::newRow("status of its own right") << "status" << QJsonValue("Unavailable") << "";
    QTest::newRow("lower case status") << "status" << QJsonValue("charging") << "problem unknown-status a";
    QTest::newRow("no status") << "status" << missing << "problem unknown-status a";
    QTest::newRow("status by number") << "status" << QJsonValue(3) << "problem unknown-status a";
    QTest::newRow("offset") << "timestamp" << QJsonValue("2026-05-01T14:00:00.250+02:00") << "";
    QTest::newRow("no time") << "timestamp" << missing << "remark no-timestamp a";
    QTest::newRow("empty time") << "timestamp" << QJsonValue("") << "remark no-timestamp a";
    QTest::newRow("seconds") << "timestamp" << QJsonValue(1777636800) << "problem unreadable-timestamp a";
    QTest::newRow("other format") << "timestamp" << QJsonValue("01.05.2026 12:00")
                                  << "problem unreadable-timestamp a";
    QTest::newRow("local time") << "timestamp" << QJsonValue("2026-05-01T14:00:00") << "remark no-timezone a";
    QTest::newRow("UTC that does not say so") << "timestamp" << QJsonValue("2026-05-01T12:00:00")
                                              << "remark no-timezone a, remark clock-difference a";
    QTest::newRow("five minutes old") << "timestamp" << QJsonValue("2026-05-01T11:55:00Z") << "";
    QTest::newRow("older") << "timestamp" << QJsonValue("2026-05-01T11:54:59Z")
                           << "remark clock-difference a";
    QTest::newRow("from the future") << "timestamp" << QJsonValue("2026-05-01T12:05:01Z")
                                     << "remark clock-difference a";
    QTest::newRow("meter as text") << "meter_value" << QJsonValue("3500") << "problem not-a-number a";
    QTest::newRow("no meter") << "meter_value" << missing << "remark no-meter-value a";
    QTest::newRow("phase as text") << "phase_2" << QJsonValue("16") << "problem not-a-number a";
    QTest::newRow("phase null") << "phase_2" << QJsonValue() << "";
    QTest::newRow("no phase") << "phase_1" << missing << "remark no-currents a";
    QTest::newRow("unknown member") << "soc" << QJsonValue("50 %") << "";
}

void TestFindings::record()
{
    QFETCH(QString, member);
    QFETCH(QJsonValue, value);
    QJsonObject record{
        {"timestamp",   "2026-05-01T12:00:00Z"},
        {"status",      "Charging"            },
        {"meter_value", 3500                  },
        {"phase_1",     16                    },
    };
    record.insert(member, value);
    const QJsonObject body{
        {"success", true                      },
        {"values",  QJsonObject{{"a", record}}}
    };
    QTEST(listed(judgeValues(QJsonDocument(body).toJson(), {"a"}, noon())), "expected");
}

void TestFindings::limitRequest_data()
{
    QTest::addColumn<QString>("wallbox");
    QTest::addColumn<double>("ampere");
    QTest::addColumn<QString>("expected");
    QTest::newRow("within") << "a" << 16.0 << "";
    QTest::newRow("off") << "a" << 0.0 << "";
    QTest::newRow("above") << "a" << 17.0 << "problem limit-not-sent a";
    QTest::newRow("in another group") << "A" << 6.0 << "problem limit-not-sent A";
}

void TestFindings::limitRequest()
{
    QFETCH(QString, wallbox);
    QFETCH(double, ampere);
    const QJsonObject evseIds{
        {"a", QJsonObject{{"max_charging_current", 16}}}
    };
    QTEST(listed(judgeLimitRequest({wallbox, ampere}, evseIds)), "expected");
}

void TestFindings::mask_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    QTest::newRow("nothing to hide") << "s3cret"
                                     << "s3cret";
    QTest::newRow("as it is") << "<a\"b ü> and <a\"b ü>"
                              << "*** and ***";
    QTest::newRow("in JSON") << R"({"secret":"<a\"b ü>"})"
                             << R"({"secret":"***"})";
    QTest::newRow("in a URL") << "/?s=%3Ca%22b%20%C3%BC%3E"
                              << "/?s=***";
    QTest::newRow("in HTML") << "<b>&lt;a&quot;b ü&gt;</b>"
                             << "<b>***</b>";
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
    report.findings = {problem("x", "%1").quoting("a\x1b[2Jb\nc")};
    QVERIFY(stepText(report).endsWith(QStringLiteral("  PROBLEM  a\uFFFD[2Jb c\n")));
}

QTEST_GUILESS_MAIN(TestFindings)
#include "tst_findings.moc"
