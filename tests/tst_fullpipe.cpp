// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "waiting.h"

#include <QtTest>

#include <csignal>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

/*! The host when the pipe that it writes to is full and is not read: a first signal cannot end it, but a
    second one kills it. */
class TestFullPipe : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void secondSignalKills();
};

void TestFullPipe::secondSignalKills()
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
    QVERIFY(waitFor([&] { return written() + answer.size() > capacity; }));
    // More than two may be needed: two that arrive together are one.
    QVERIFY(waitFor([&process] {
        process.terminate();
        return process.state() == QProcess::NotRunning;
    }));
    QCOMPARE(process.exitStatus(), QProcess::CrashExit);
    QCOMPARE(process.exitCode(), SIGTERM);
}

QTEST_GUILESS_MAIN(TestFullPipe)
#include "tst_fullpipe.moc"
