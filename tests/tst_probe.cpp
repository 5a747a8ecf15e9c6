// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "transport.h"

#include <QtTest>

/*! How the probe judges delays and failures that would take a transcript too long, or that depend on the
    machine. */
class TestProbe : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void findings_data();
    void findings();
    void badRequestAtPortWithTls();
};

void TestProbe::findings_data()
{
    QTest::addColumn<int>("stage");
    QTest::addColumn<int>("milliseconds");
    QTest::addColumn<int>("error");
    QTest::addColumn<QString>("expected"); // code and severity
    using Error = QNetworkReply::NetworkError;
    const auto row = [](const char *name, Step::Stage stage, int milliseconds, Error error,
                        const char *expected) {
        QTest::newRow(name) << int(stage) << milliseconds << int(error) << expected;
    };
    row("just in time", Step::LiveValues, 1500, Error::NoError, "");
    row("late", Step::LiveValues, 1501, Error::NoError, "warning slow");
    row("almost too late", Step::LiveValues, 12000, Error::NoError, "warning slow");
    row("too late", Step::LiveValues, 12001, Error::NoError, "problem too-slow");
    row("late once", Step::GroupInfo, 12001, Error::NoError, "warning slow");
    row("unknown host", Step::OnlineCheck, 0, Error::HostNotFoundError, "problem unreachable");
    row("no route", Step::OnlineCheck, 0, Error::TimeoutError, "problem unreachable");
    row("Qt without TLS", Step::OnlineCheck, 0, Error::ProtocolUnknownError, "problem unusable-url");
    row("other failure", Step::GroupInfo, 0, Error::ProxyNotFoundError, "problem network-error");
}

void TestProbe::findings()
{
    QFETCH(int, stage);
    QFETCH(int, milliseconds);
    QFETCH(int, error);
    Step step;
    step.stage = Step::Stage(stage);
    step.error = QNetworkReply::NetworkError(error);
    step.duration = std::chrono::milliseconds(milliseconds);
    judgeAnswer(step);
    QStringList found;
    for (const Finding &finding : qAsConst(step.findings))
        found.append((finding.severity == Problem ? "problem " : "warning ") + finding.code);
    QTEST(found.join(", "), "expected");
}

/*! Some servers answer a request without TLS with status 400, and not by closing the connection. */
void TestProbe::badRequestAtPortWithTls()
{
    Step step;
    step.stage = Step::OnlineCheck;
    step.url = "http://127.0.0.1";
    step.error = QNetworkReply::ProtocolInvalidOperationError;
    step.status = 400;
    QVERIFY(mayBeDueToTls(step));
    step.speaksTls = true;
    judgeAnswer(step);
    QCOMPARE(step.findings.size(), 1);
    QCOMPARE(step.findings.constFirst().code, QString("needs-https"));
}

QTEST_APPLESS_MAIN(TestProbe)
#include "tst_probe.moc"
