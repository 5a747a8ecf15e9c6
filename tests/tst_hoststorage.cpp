// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "hostprocess.h"

#include <QtTest>

#include <csignal>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

/*! The host where something is full: its disk, or the pipe that it writes to. */
class TestHostStorage : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void fullDisk_data();
    void fullDisk();
    void fullPipe();
};

namespace {

QByteArray content(const QString &file)
{
    QFile opened(file);
    return opened.open(QIODevice::ReadOnly) ? opened.readAll() : QByteArray();
}

} // namespace

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
    QFETCH(bool, ends);
    const QTemporaryDir folder;
    const QByteArray folderName = QFile::encodeName(folder.path());
    if (mounts && mount("none", folderName.constData(), "tmpfs", 0, "size=64k,mode=0700") != 0)
        QSKIP("Only root can mount a small file system.");
    const auto unmount = qScopeGuard([&] { mounts ? umount2(folderName.constData(), MNT_DETACH) : 0; });
    std::signal(SIGXFSZ, SIG_IGN); // inherited by the host, whose writes then fail instead
    HostProcess host(FAKE_PLUGIN, folder.path());
    host.command("discover bridge address=A setup=announces children=1");
    host.command("add 1");
    while (host.eventsNamed("thingAdded").size() < 2)
        QVERIFY(!host.next().isEmpty());
    const QString thingsFile = folder.filePath("things.json");
    const QString settingsFile = folder.filePath("pluginconfig-00000000-0000-4000-8000-000000000001.conf");
    const QByteArray things = content(thingsFile);
    const QByteArray settings = content(settingsFile);
    QFile filler(folder.filePath("filler"));
    const auto limitFiles = [&](rlim_t size) {
        const rlimit limit{size, RLIM_INFINITY};
        return prlimit(content(folder.filePath("in-use-by")).toInt(), RLIMIT_FSIZE, &limit, nullptr) == 0;
    };
    if (mounts) {
        QVERIFY(filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
        while (filler.write(QByteArray(512, '0')) > 0) { }
        QVERIFY(filler.resize(filler.size() - left));
    } else {
        QVERIFY(limitFiles(10));
    }

    host.command("set 'Lamp 1' order vanish"); // which the plugin's storage notes
    QCOMPARE(content(settingsFile), settings);
    if (!reason.isNull())
        QCOMPARE(content(thingsFile), things);
    if (ends) {
        host.closeInput();
        QCOMPARE(host.exitStatus(), 1);
        QCOMPARE(content(settingsFile), settings);
        return;
    }
    QVERIFY(mounts ? filler.remove() : limitFiles(RLIM_INFINITY));
    QTRY_VERIFY_WITH_TIMEOUT(!content(thingsFile).contains("Lamp 1"), HostProcess::patience);
    QTRY_VERIFY_WITH_TIMEOUT(content(settingsFile).contains("vanished=true"), HostProcess::patience);
    host.closeInput();
    QCOMPARE(host.exitStatus(), 0);
    const QString log = host.log();
    QVERIFY2(log.contains(QString("Cannot store the things in %1: %2.").arg(thingsFile, reason))
                 || reason.isNull(),
             qPrintable(log));
    QVERIFY2(log.contains("Cannot write the plugin's storage " + settingsFile), qPrintable(log));
    QVERIFY2(log.contains("The plugin's storage is written again."), qPrintable(log));
}

/*! A first signal cannot end a host whose output is stuck; a second one kills it. */
void TestHostStorage::fullPipe()
{
    const QTemporaryDir folder;
    const QString pipe = folder.filePath("pipe");
    const QByteArray pipeName = QFile::encodeName(pipe);
    QCOMPARE(mkfifo(pipeName.constData(), 0600), 0);
    const int fd = open(pipeName.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    const auto close = qScopeGuard([fd] { ::close(fd); });
    const int capacity = fcntl(fd, F_SETPIPE_SZ, 4096);
    QVERIFY(capacity > 0);
    QProcess process;
    process.setStandardOutputFile(pipe);
    process.start(VELA_HOST, {"--json", "--plugin", FAKE_PLUGIN, "--storage", folder.path()});
    const QByteArray command = "things\n";
    const QByteArray answer = "{\"answer\":\"things\",\"ok\":true,\"things\":[]}\n";
    process.write(command.repeated(capacity / answer.size() + 1));
    const auto written = [fd] {
        int size = 0;
        return ioctl(fd, FIONREAD, &size) == 0 ? size : -1;
    };
    QTRY_VERIFY(written() + answer.size() > capacity);
    // More than two may be needed: two that arrive together are one.
    for (int i = 0; i < 100 && !process.waitForFinished(100); ++i)
        process.terminate();
    QCOMPARE(process.exitStatus(), QProcess::CrashExit);
    QCOMPARE(process.exitCode(), SIGTERM);
}

QTEST_GUILESS_MAIN(TestHostStorage)
#include "tst_hoststorage.moc"
