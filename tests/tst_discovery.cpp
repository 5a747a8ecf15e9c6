// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "site.h"

#include <QSettings>
#include <QtTest>

using Backend = ScriptedBackend;

class TestDiscovery : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void offersTheGateway();
    void fillsInOneFieldFromStorage_data();
    void fillsInOneFieldFromStorage();
    void emptyGroupIsAnError_data();
    void emptyGroupIsAnError();
    void failureLeavesTheJobPending();
    void existingGateways_data();
    void existingGateways();
    void laterAnswersAreIgnored();
    void sharesOneClient();
};

namespace {

constexpr char missing[] =
    "SetupFailed: Not all parameters are known. Please enter the discovery parameters.";
constexpr char unreachable[] =
    "SetupFailed: The OCPP Backend could not be reached!\nPlease check the entered URL.";

/*! What the plugin storage holds, as "KEY VALUE", sorted by key. */
QStringList stored(const Site &site)
{
    QStringList result;
    QSettings *storage = site.daemon->plugin()->pluginStorage();
    const QStringList keys = storage->allKeys();
    for (const QString &key : keys)
        result.append(key + ' ' + storage->value(key).toString().replace(site.backend.url(), "URL"));
    const QString group = site.daemon->thingClasses().findByName("vela").id.toString() + '/';
    return result.replaceInStrings(group, QString());
}

} // namespace

void TestDiscovery::offersTheGateway()
{
    Site site;
    QCOMPARE(site.story(), QStringList("debug: Initialize VELA Plugin."));
    site.log.clear();
    const Job job = site.discover();
    QCOMPARE(Site::result(job), "NoError");

    QCOMPARE(job->offers.size(), 1);
    const ThingDescriptor offer = job->offers.first();
    const ThingClass gateway = site.daemon->thingClasses().findByName("vela");
    QCOMPARE(offer.thingClassId(), gateway.id);
    QCOMPARE(offer.title(), "Tavensolis VELA");
    QCOMPARE(offer.description(), site.backend.url());
    QVERIFY(offer.thingId().isNull());
    QVERIFY(offer.parentId().isNull());
    QCOMPARE(offer.params().size(), 1);
    QCOMPARE(offer.params().constFirst().paramTypeId(), gateway.paramTypes.constFirst().id);
    QCOMPARE(offer.params().constFirst().value(), QVariant(site.backend.url()));
    QCOMPARE(stored(site), (QStringList{"groupId yard", "groupSecret s3cret", "url URL"}));
    QCOMPARE(site.story(),
             (QStringList{"debug: Starting discovery.", "debug: Full URL is QUrl(\"URL\")",
                          "debug: Get info about connected WBs.",
                          "debug: Send Post Request \"/vela/get_group_info/yard\"",
                          "debug: getConnectedInfra() - Received information about connected infrastructure.",
                          "debug: discoverThings() - OCPP reached successfully."}));
}

void TestDiscovery::fillsInOneFieldFromStorage_data()
{
    // Each as "url groupId groupSecret": "*" the backend's URL, "-" empty, "?" not even that.
    QTest::addColumn<QString>("inStorage");
    QTest::addColumn<QString>("entered");
    QTest::addColumn<QString>("used"); // group and secret as sent; empty: refused, nothing sent
    const auto row = [](const char *name, const char *inStorage, const char *entered, const char *used) {
        QTest::newRow(name) << inStorage << entered << used;
    };
    row("nothing entered: the URL alone", "* stored stored", "- - -", "- -");
    row("URL entered: the group alone", "* stored stored", "* - -", "stored -");
    row("secret missing", "* stored stored", "* entered -", "entered stored");
    row("what is entered wins", "* stored stored", "* entered entered", "entered entered");
    row("only the URL stored, the secret stays empty", "* - -", "- entered -", "entered -");
    row("the group is not known, the secret is", "- - stored", "* - -", "- stored");
    row("only the URL is known, and entered", "* - -", "* entered -", "");
    row("nothing known", "- - -", "* - entered", "");
    row("nothing known, nothing entered", "- - -", "? ? ?", "");
}

void TestDiscovery::fillsInOneFieldFromStorage()
{
    QFETCH(QString, inStorage);
    QFETCH(QString, entered);
    QFETCH(QString, used);
    const bool refused = used.isEmpty();
    Site site;
    const auto value = [&site](const QString &word) {
        return word == "?" ? QString() : word == "-" ? QString("") : word == "*" ? site.backend.url() : word;
    };
    QSettings *storage = site.daemon->plugin()->pluginStorage();
    storage->beginGroup(site.daemon->thingClasses().findByName("vela").id.toString());
    const QStringList keys{"url", "groupId", "groupSecret"};
    for (int i = 0; i < keys.size(); ++i) {
        if (inStorage.section(' ', i, i) != "-")
            storage->setValue(keys.at(i), value(inStorage.section(' ', i, i)));
    }
    storage->endGroup();

    const Job job = site.discover(value(entered.section(' ', 0, 0)), value(entered.section(' ', 1, 1)),
                                  value(entered.section(' ', 2, 2)));
    QCOMPARE(Site::result(job), refused ? missing : "NoError");
    const QStringList warnings = site.log.warnings();
    const Job fence = site.discover();
    QCOMPARE(Site::result(fence), "NoError");
    QStringList sent;
    const auto requests = site.backend.requests();
    for (const Backend::Request &request : requests) {
        sent.append(request.target.mid(int(strlen("/vela/get_group_info/"))) + ' '
                    + request.json()["secret"].toString());
    }
    QCOMPARE(sent, (refused ? QStringList() : QStringList(used.remove('-'))) + QStringList("yard s3cret"));
    QCOMPARE(warnings,
             refused ? QStringList("discoverThings() - Discovery params not entered.") : QStringList());
}

void TestDiscovery::emptyGroupIsAnError_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("no wallboxes") << QByteArray(R"({"evse_ids":{}})");
    QTest::newRow("no evse_ids") << QByteArray("{}");
    QTest::newRow("a list") << QByteArray(R"({"evse_ids":["EVSE-01"]})");
    QTest::newRow("no object") << QByteArray("[]");
    QTest::newRow("HTML") << QByteArray("<html>Sign in</html>");
    QTest::newRow("invalid UTF-8") << QByteArray("{\"evse_ids\":{\"\xff\":{}}}");
}

void TestDiscovery::emptyGroupIsAnError()
{
    QFETCH(QByteArray, body);
    Site site;
    site.backend.answer(Backend::GroupInfo, 200, body);
    const Job job = site.discover();
    QCOMPARE(Site::result(job), unreachable);
    QCOMPARE(job->offers.size(), 0);
    QCOMPARE(stored(site), QStringList());
    QCOMPARE(site.log.warnings(), QStringList("discoverThings() - OCPP Backend could not be reached."));
}

void TestDiscovery::failureLeavesTheJobPending()
{
    Site site;
    site.backend.answer(Backend::GroupInfo, 500);
    const Job job = site.discover();
    QTRY_COMPARE(site.log.warnings().size(), 1);
    QCoreApplication::processEvents(); // a job ends one turn of the event loop after its finish
    QCOMPARE(job->text, "pending");
    QCOMPARE(stored(site), QStringList());
    QCOMPARE(site.log.count("debug: discoverThings() - "), 0);
}

void TestDiscovery::existingGateways_data()
{
    QTest::addColumn<int>("gateways"); // of the same URL
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<bool>("recognised");
    QTest::newRow("one") << 1 << "" << true;
    QTest::newRow("one, but for a slash") << 1 << "/" << false;
    QTest::newRow("two") << 2 << "" << false;
}

void TestDiscovery::existingGateways()
{
    QFETCH(int, gateways);
    QFETCH(QString, suffix);
    QFETCH(bool, recognised);
    Site site;
    for (int i = 0; i < gateways; ++i)
        QCOMPARE(site.addGateway(), QString());
    site.log.clear();

    const Job job = site.discover(site.backend.url() + suffix, "yard", "s3cret");
    QCOMPARE(Site::result(job), "NoError");
    QCOMPARE(job->offers.first().thingId(), recognised ? site.gateway()->id() : ThingId());
    QCOMPARE(site.log.warnings(),
             recognised ? QStringList("This OCPP backend already exists") : QStringList());
}

/*! Two discoveries share the client: the first answer finishes both, the second finds none. */
void TestDiscovery::laterAnswersAreIgnored()
{
    Site site;
    site.backend.hold(Backend::GroupInfo);
    const Job first = site.discover(site.backend.url(), "yard", "one");
    const Job second = site.discover(site.backend.url(), "depot", "two");
    QTRY_COMPARE(site.backend.requests().size(), 2);
    // Both at once: the second may come before the jobs have been disposed of.
    for (int answers = 0; answers < 2; ++answers)
        QVERIFY(site.backend.release(Backend::GroupInfo));
    QTRY_COMPARE(site.log.count("debug: getConnectedInfra() - Received"), 2);
    for (const Job &job : {first, second}) {
        QCOMPARE(Site::result(job), "NoError");
        QCOMPARE(job->offers.size(), 1);
    }
    QCOMPARE(stored(site), (QStringList{"groupId depot", "groupSecret two", "url URL"}));
    QCOMPARE(site.log.warnings(), QStringList());
    QCOMPARE(site.log.count("debug: discoverThings() - OCPP reached successfully."), 2);
}

/*! A discovery elsewhere takes the polling of a working gateway along, until that is set up again. */
void TestDiscovery::sharesOneClient()
{
    Site site;
    QCOMPARE(site.addGateway(), QString());
    ScriptedBackend other;
    const Job job = site.discover(other.url(), "depot", "0ther");
    QCOMPARE(Site::result(job), unreachable);
    QVERIFY(site.poll());
    QCOMPARE(site.backend.requests(Backend::Values).size(), 0);
    QCOMPARE(other.requests(Backend::Values).size(), 1);
    QCOMPARE(other.requests(Backend::Values).constFirst().target, QByteArray("/vela/get_values/depot"));

    const Job setup = site.setup(site.gateway()); // with what the last successful discovery has stored
    QCOMPARE(Site::result(setup), "NoError");
    QVERIFY(site.poll());
    QCOMPARE(site.backend.requests(Backend::Values).size(), 1);
    QCOMPARE(other.requests(Backend::Values).size(), 1);
}

QTEST_GUILESS_MAIN(TestDiscovery)
#include "tst_discovery.moc"
