// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "hostprocess.h"
#include "json.h"

#include <daemon.h>

#include <QtTest>

#include <csignal>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

/*! What the host keeps over a restart, an end by force and damage. */
class TestHostStorage : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void restoresThings();
    void onlyOneHostAtATime();
    void sweepsLeftovers();
    void unsafeFolderIsRefused_data();
    void unsafeFolderIsRefused();
    void newFolderIsPrivate();
    void fullDisk_data();
    void fullDisk();
    void damagedFileIsLeftAlone_data();
    void damagedFileIsLeftAlone();
    void damagedPluginStorageIsLeftAlone();
    void keepsThingsOfUnknownClasses();
    void circleOfParents();
    void valuesThatDoNotFit_data();
    void valuesThatDoNotFit();
    void writesOnlyWhatHasChanged();

private:
    std::unique_ptr<HostProcess> host() const
    {
        return std::make_unique<HostProcess>(FAKE_PLUGIN, m_folder->path());
    }
    QString path(const QString &file) const { return m_folder->filePath(file); }
    QByteArray content(const QString &file) const;
    void write(const QString &file, const QByteArray &content) const;
    QJsonArray storedThings() const;
    void storeThings(const QJsonArray &things) const;

    std::unique_ptr<QTemporaryDir> m_folder;
};

namespace {

QStringList names(const QJsonObject &answer)
{
    QStringList names;
    const QJsonArray things = answer.value("things").toArray();
    for (const QJsonValue &thing : things)
        names.append(thing.toObject().value("name").toString());
    return names;
}

void addBridge(HostProcess &host, int lamps)
{
    host.command(QStringLiteral("discover bridge address=A setup=announces children=%1").arg(lamps));
    host.command("add 1");
    while (host.eventsNamed("thingAdded").size() < 1 + lamps && !host.next().isEmpty()) { }
}

ino_t inode(const QString &file)
{
    struct stat status = {};
    return stat(QFile::encodeName(file).constData(), &status) == 0 ? status.st_ino : 0;
}

} // namespace

void TestHostStorage::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
}

QByteArray TestHostStorage::content(const QString &file) const
{
    QFile opened(path(file));
    return opened.open(QIODevice::ReadOnly) ? opened.readAll() : QByteArray();
}

void TestHostStorage::write(const QString &file, const QByteArray &content) const
{
    QFile opened(path(file));
    QVERIFY(opened.open(QIODevice::WriteOnly));
    QCOMPARE(opened.write(content), qint64(content.size()));
}

QJsonArray TestHostStorage::storedThings() const
{
    return json(content("things.json")).value("things").toArray();
}

void TestHostStorage::storeThings(const QJsonArray &things) const
{
    QJsonObject document;
    document.insert("things", things);
    write("things.json", QJsonDocument(document).toJson());
}

void TestHostStorage::restoresThings()
{
    auto first = host();
    addBridge(*first, 2);
    QVERIFY(first->command("set 'Lamp 2' brightness 7").value("ok").toBool());
    QVERIFY(first->command("set 'Lamp 2' power true").value("ok").toBool());
    const QJsonArray before = first->command("show 'Lamp 2'").value("things").toArray();
    QJsonObject expected = before.first().toObject();
    QCOMPARE(expected.value("states").toObject().value("power"), QJsonValue(true));
    first->kill(); // what was reported is stored

    auto second = host();
    second->nextEvent("setupFinished");
    QCOMPARE(names(second->command("things")), QStringList({"Bridge A", "Lamp 1", "Lamp 2"}));
    QJsonObject states = expected.value("states").toObject();
    states["power"] = false; // not cached
    expected["states"] = states;
    expected["setupStatus"] = "ThingSetupStatusComplete";
    while (second->eventsNamed("setupFinished").size() < 3 && !second->next().isEmpty()) { }
    QCOMPARE(second->command("show 'Lamp 2'").value("things").toArray().first().toObject(), expected);
    QCOMPARE(second->eventsNamed("thingAdded").size(), 0);
}

void TestHostStorage::onlyOneHostAtATime()
{
    auto first = host();
    QVERIFY(first->command("things").value("ok").toBool());
    auto second = host();
    QCOMPARE(second->exitStatus(), 1);
    const QString log = second->log();
    QVERIFY2(log.contains(m_folder->path() + " is in use by another host (process "), qPrintable(log));
    first->kill();
    QVERIFY(host()->command("things").value("ok").toBool());
}

void TestHostStorage::sweepsLeftovers()
{
    const QString settings = "pluginconfig-00000000-0000-4000-8000-000000000001.conf";
    const QStringList leftovers{settings + ".lock", settings + ".lock.rmlock", "things.json.vela-host-new"};
    for (const QString &file : leftovers)
        write(file, "half");
    const QStringList backups{"things.json.Backup", "things.json.udlfdr", settings + ".BackUp"};
    for (const QString &file : backups)
        write(file, "whole");
    addBridge(*host(), 1); // writes both files: with a lock of QSettings in the way it would wait for ever
    for (const QString &file : leftovers)
        QVERIFY2(!QFile::exists(path(file)), qPrintable(file));
    for (const QString &file : backups)
        QCOMPARE(content(file), QByteArray("whole"));
    QVERIFY(QFile::exists(path(settings)));
}

void TestHostStorage::unsafeFolderIsRefused_data()
{
    QTest::addColumn<QString>("link");
    QTest::addColumn<uint>("mode");
    QTest::addColumn<uint>("owner");
    QTest::addColumn<QString>("reason");
    const QString link = " is a symbolic link";
    const uint own = getuid();
    QTest::newRow("lock file is a link") << "in-use-by" << 0700u << own << "in-use-by" + link;
    QTest::newRow("things are a link") << "things.json" << 0700u << own << "things.json" + link;
    QTest::newRow("temporary file is a link") << "things.json.vela-host-new" << 0700u << own << link;
    QTest::newRow("plugin storage is a link") << "pluginconfig-x.conf" << 0700u << own << "x.conf" + link;
    QTest::newRow("group can write") << "" << 0770u << own << "Other users can write in";
    QTest::newRow("all can write") << "" << 01707u << own << "Other users can write in";
    QTest::newRow("another user's") << "" << 0700u << own + 1 << "belongs to another user";
}

void TestHostStorage::unsafeFolderIsRefused()
{
    QFETCH(QString, link);
    QFETCH(uint, mode);
    QFETCH(uint, owner);
    QFETCH(QString, reason);
    QTemporaryFile target;
    QVERIFY(target.open() && target.write("kept") == 4 && target.flush());
    if (!link.isEmpty())
        QVERIFY(QFile::link(target.fileName(), path(link)));
    const QByteArray folder = QFile::encodeName(m_folder->path());
    QCOMPARE(chmod(folder.constData(), mode), 0);
    if (chown(folder.constData(), owner, gid_t(-1)) != 0)
        QSKIP("Only root can give a folder away.");
    const auto refused = host();
    QCOMPARE(refused->exitStatus(), 1);
    const QString log = refused->log();
    QVERIFY2(log.contains(reason) && log.contains(m_folder->path()), qPrintable(log));
    QVERIFY(target.seek(0));
    QCOMPARE(target.readAll(), QByteArray("kept"));
}

void TestHostStorage::newFolderIsPrivate()
{
    HostProcess running(FAKE_PLUGIN, path("new/yard"));
    QVERIFY(running.command("things").value("ok").toBool());
    struct stat status = {};
    QCOMPARE(stat(QFile::encodeName(path("new/yard")).constData(), &status), 0);
    QCOMPARE(status.st_mode & 0777u, 0700u);
}

void TestHostStorage::fullDisk_data()
{
    QTest::addColumn<bool>("mounts");
    QTest::addColumn<int>("left"); // bytes, on the file system
    QTest::addColumn<QString>("reason");
    QTest::addColumn<bool>("ends"); // while the disk is full
    QTest::newRow("full file system") << true << 0 << "No space left on device" << false;
    QTest::newRow("room for a new file without content") << true << 4096 << QString() << false;
    QTest::newRow("the same, and the host ends") << true << 4096 << QString() << true;
    QTest::newRow("files cannot grow") << false << 0 << "File too large" << false;
}

/*! An empty file replaced the good one, and nobody was told. */
void TestHostStorage::fullDisk()
{
    QFETCH(bool, mounts);
    QFETCH(int, left);
    QFETCH(QString, reason);
    const QByteArray folder = QFile::encodeName(m_folder->path());
    if (mounts && mount("none", folder.constData(), "tmpfs", 0, "size=64k,mode=0700") != 0)
        QSKIP("Only root can mount a small file system.");
    const auto unmount = qScopeGuard([&] { mounts ? umount2(folder.constData(), MNT_DETACH) : 0; });
    std::signal(SIGXFSZ, SIG_IGN); // inherited by the host, whose writes then fail instead
    auto running = host();
    addBridge(*running, 1);
    const QString settings = "pluginconfig-00000000-0000-4000-8000-000000000001.conf";
    const QByteArray things = content("things.json");
    const QByteArray oldSettings = content(settings);
    const auto limitFiles = [this](rlim_t size) {
        const rlimit limit{size, RLIM_INFINITY};
        return prlimit(content("in-use-by").toInt(), RLIMIT_FSIZE, &limit, nullptr) == 0;
    };
    QFile filler(path("filler"));
    QVERIFY(filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    if (mounts) {
        while (filler.write(QByteArray(512, '0')) > 0) { }
        QVERIFY(filler.resize(filler.size() - left));
    } else {
        QVERIFY(limitFiles(10));
    }

    running->command("set 'Lamp 1' order vanish"); // which the plugin's storage notes
    QCOMPARE(content(settings), oldSettings);
    if (!reason.isNull())
        QCOMPARE(content("things.json"), things);
    QFETCH(bool, ends);
    if (ends) {
        running->closeInput();
        QCOMPARE(running->exitStatus(), 1);
        QCOMPARE(content(settings), oldSettings);
        return;
    }
    if (mounts)
        QVERIFY(filler.remove());
    else
        QVERIFY(limitFiles(RLIM_INFINITY));
    QTRY_COMPARE_WITH_TIMEOUT(storedThings().size(), 1, HostProcess::patience);
    QTRY_VERIFY_WITH_TIMEOUT(content(settings).contains("vanished=true"), HostProcess::patience);
    running->closeInput();
    QCOMPARE(running->exitStatus(), 0);
    const QString log = running->log();
    const QString warning = QString("Cannot store the things in %1: %2.").arg(path("things.json"), reason);
    QVERIFY2(reason.isNull() || log.contains(warning), qPrintable(log));
    QVERIFY2(log.contains("Cannot write the plugin's storage " + path(settings)), qPrintable(log));
    QVERIFY2(log.contains("The plugin's storage is written again."), qPrintable(log));
}

void TestHostStorage::damagedFileIsLeftAlone_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("truncated") << QByteArray(R"({"things": [)");
    QTest::newRow("no list") << QByteArray(R"({"things": {}})");
    QTest::newRow("thing without id") << QByteArray(R"({"things": [{}]})");
    const QByteArray thing = R"({"id": "00000000-0000-4000-8000-000000000099"})";
    QTest::newRow("id used twice") << "{\"things\": [" + thing + "," + thing + "]}";
}

void TestHostStorage::damagedFileIsLeftAlone()
{
    QFETCH(QByteArray, content);
    write("things.json", content);
    const auto damaged = host();
    damaged->send("things");
    QCOMPARE(damaged->exitStatus(), 1);
    QVERIFY(damaged->log().contains(path("things.json")));
    QCOMPARE(this->content("things.json"), content);
}

void TestHostStorage::damagedPluginStorageIsLeftAlone()
{
    const QString settings = "pluginconfig-00000000-0000-4000-8000-000000000001.conf";
    write(settings, "neither a group\nnor a key\n");
    const auto damaged = host();
    damaged->send("things");
    QCOMPARE(damaged->exitStatus(), 1);
    QVERIFY(damaged->log().contains(path(settings)));
    QCOMPARE(content(settings), QByteArray("neither a group\nnor a key\n"));
}

void TestHostStorage::keepsThingsOfUnknownClasses()
{
    auto first = host();
    addBridge(*first, 2);
    first->command("discover bridge address=A children=0"); // so that a restart announces none
    first->command("add 1");
    first.reset();
    QJsonArray things = storedThings();
    QJsonObject stranger = things.at(1).toObject();
    stranger["class"] = "00000000-0000-4000-8000-000000000077";
    things[1] = stranger;
    storeThings(things);

    auto restarted = host();
    QCOMPARE(names(restarted->command("things")), QStringList({"Bridge A", "Lamp 2"}));
    QVERIFY(restarted->command("set 'Lamp 2' brightness 9").value("ok").toBool());
    restarted->closeInput();
    QCOMPARE(restarted->exitStatus(), 0);
    QVERIFY(restarted->log().contains("no class for the stored thing Lamp 1"));
    QVERIFY(storedThings().contains(stranger));
    QCOMPARE(storedThings().size(), 3);
}

void TestHostStorage::circleOfParents()
{
    addBridge(*host(), 1);
    QJsonArray things = storedThings();
    QJsonObject bridge = things.at(0).toObject();
    bridge["parentId"] = things.at(1).toObject().value("id");
    things[0] = bridge;
    storeThings(things);
    auto restarted = host();
    QCOMPARE(names(restarted->command("things")), QStringList({"Bridge A", "Lamp 1"}));
    QVERIFY(restarted->command("remove 'Bridge A'").value("ok").toBool());
    QCOMPARE(names(restarted->command("things")), QStringList());
}

void TestHostStorage::valuesThatDoNotFit_data()
{
    QTest::addColumn<QJsonValue>("stored");
    QTest::newRow("negative, for an unsigned number") << QJsonValue(-5);
    QTest::newRow("beyond all integers") << QJsonValue(1e300);
    QTest::newRow("half of one") << QJsonValue(2.5);
    QTest::newRow("text") << QJsonValue("2");
    QTest::newRow("null") << QJsonValue();
}

/*! A limit of -5 A was restored as one of 4294967291 A. */
void TestHostStorage::valuesThatDoNotFit()
{
    QFETCH(QJsonValue, stored);
    addBridge(*host(), 0);
    QJsonObject bridge = storedThings().at(0).toObject();
    QJsonObject params = bridge.value("params").toObject();
    params["00000000-0000-4000-8000-000000000013"] = stored;
    bridge["params"] = params;
    QJsonObject states;
    states["00000000-0000-4000-8000-000000000017"] = stored;
    bridge["states"] = states;
    storeThings({bridge});
    auto restarted = host();
    restarted->nextEvent("setupFinished");
    const QJsonObject shown =
        restarted->command("show 'Bridge A'").value("things").toArray().first().toObject();
    QCOMPARE(shown.value("params").toObject().value("children"), QJsonValue(0));
    QCOMPARE(shown.value("states").toObject().value("setups"), QJsonValue(1));
    restarted->closeInput();
    QCOMPARE(restarted->exitStatus(), 0);
    QCOMPARE(restarted->log().count("The stored value"), 2);
}

void TestHostStorage::writesOnlyWhatHasChanged()
{
    auto running = host();
    addBridge(*running, 1);
    running->command("set 'Lamp 1' power false");
    const ino_t before = inode(path("things.json"));
    QVERIFY(running->command("set 'Lamp 1' power true").value("ok").toBool());
    QCOMPARE(inode(path("things.json")), before);
    QVERIFY(running->command("set 'Lamp 1' brightness 2").value("ok").toBool());
    QVERIFY(inode(path("things.json")) != before);
}

QTEST_GUILESS_MAIN(TestHostStorage)
#include "tst_hoststorage.moc"
