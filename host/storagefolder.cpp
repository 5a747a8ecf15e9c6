// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "storagefolder.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <cerrno>
#include <fcntl.h>
#include <limits>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace {

constexpr char lockFileName[] = "in-use-by";

QString createFolder(const QString &path)
{
    const bool hasParent = QDir().mkpath(QFileInfo(path).path());
    if (hasParent && (::mkdir(QFile::encodeName(path).constData(), S_IRWXU) == 0 || errno == EEXIST))
        return {};
    return QStringLiteral("Cannot create the storage folder %1.").arg(path);
}

QString ownerError(const QString &path)
{
    struct stat status = {};
    if (::stat(QFile::encodeName(path).constData(), &status) != 0)
        return QStringLiteral("Cannot read the storage folder %1: %2.").arg(path, qt_error_string(errno));
    if (status.st_uid != ::geteuid())
        return QStringLiteral("The storage folder %1 belongs to another user.").arg(path);
    if ((status.st_mode & (S_IWGRP | S_IWOTH)) != 0)
        return QStringLiteral("Other users can write in the storage folder %1; \"chmod go-w\" ends that.")
            .arg(path);
    return {};
}

QString linkError(const QString &path)
{
    const QStringList ours{QLatin1String(lockFileName), QStringLiteral("things.json*"),
                           QStringLiteral("pluginconfig-*"), QStringLiteral("history")};
    // QDir::System: links to nowhere as well.
    const QFileInfoList files =
        QDir(path).entryInfoList(ours, QDir::Files | QDir::Dirs | QDir::System | QDir::Hidden);
    for (const QFileInfo &file : files) {
        if (file.isSymLink())
            return QStringLiteral("%1 is a symbolic link; the host follows none in its storage folder.")
                .arg(file.filePath());
    }
    return {};
}

} // namespace

bool openNoFollow(QFile *file, QIODevice::OpenMode mode, int flags)
{
    const int fd = ::open(QFile::encodeName(file->fileName()).constData(), flags | O_NOFOLLOW | O_CLOEXEC,
                          S_IRUSR | S_IWUSR);
    return fd >= 0 && file->open(fd, mode, QFileDevice::AutoCloseHandle);
}

StorageFolder::StorageFolder(const QString &path)
    : m_path(QDir(path).absolutePath())
    , m_lockFile(QDir(m_path).filePath(QLatin1String(lockFileName)))
{
}

QString StorageFolder::claim()
{
    for (const auto check : {createFolder, ownerError, linkError}) {
        QString error = check(m_path);
        if (!error.isEmpty())
            return error;
    }
    QString error = lock();
    if (error.isEmpty())
        removeLeftovers();
    return error;
}

qint64 StorageFolder::freeSpace() const
{
    struct statvfs disk;
    if (::statvfs(QFile::encodeName(m_path).constData(), &disk) != 0)
        return std::numeric_limits<qint64>::max();
    return qint64(disk.f_bavail) * qint64(disk.f_frsize);
}

QString StorageFolder::lock()
{
    if (!openNoFollow(&m_lockFile, QIODevice::ReadWrite, O_RDWR | O_CREAT))
        return QStringLiteral("Cannot write in the storage folder %1: %2.")
            .arg(m_path, qt_error_string(errno));
    // The kernel's lock ends with its process, whatever ends that; a process id in a file would not, and in a
    // container the next process often has the same one.
    if (flock(m_lockFile.handle(), LOCK_EX | LOCK_NB) == 0) {
        m_lockFile.resize(0);
        m_lockFile.write(QByteArray::number(QCoreApplication::applicationPid()));
        m_lockFile.flush();
        return {};
    }
    if (errno != EWOULDBLOCK)
        return QStringLiteral("Cannot lock the storage folder %1: %2.").arg(m_path, qt_error_string(errno));
    return QStringLiteral("The storage folder %1 is in use by another host (process %2).")
        .arg(m_path, QString::fromLatin1(m_lockFile.readAll()));
}

void StorageFolder::removeLeftovers() const
{
    // Left by a kill in the middle of a write: our own temporary file, and the lock files of QSettings, which
    // waits for ever on one that names its own process id. The temporary files of QSettings stay: they end in
    // six letters of Qt's choice, as somebody's backup may, and do no harm.
    static const QRegularExpression leftover(
        QStringLiteral("^(things\\.json%1|pluginconfig-.*\\.conf\\.lock(\\.rmlock)?)$")
            .arg(QRegularExpression::escape(QLatin1String(newFileSuffix))));
    const QDir folder(m_path);
    const QStringList leftovers = folder.entryList(QDir::Files | QDir::Hidden).filter(leftover);
    for (const QString &file : leftovers)
        QFile::remove(folder.filePath(file));
}
