// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "storagefolder.h"

#include <QCoreApplication>
#include <QDir>
#include <QRegularExpression>

#include <cerrno>
#include <sys/file.h>

StorageFolder::StorageFolder(const QString &path)
    : m_path(QDir(path).absolutePath())
    , m_lockFile(QDir(m_path).filePath(QStringLiteral("in-use-by")))
{
}

QString StorageFolder::claim()
{
    if (!QDir().mkpath(m_path))
        return QStringLiteral("Cannot create the storage folder %1.").arg(m_path);
    QString error = lock();
    if (error.isEmpty())
        sweep();
    return error;
}

QString StorageFolder::path() const
{
    return m_path;
}

QString StorageFolder::lock()
{
    if (!m_lockFile.open(QIODevice::ReadWrite))
        return QStringLiteral("Cannot write in the storage folder %1: %2.")
            .arg(m_path, m_lockFile.errorString());
    // The kernel's lock ends with its process, whatever ends that; a process id in a file would not, and in a
    // container the next process often has the same one.
    if (flock(m_lockFile.handle(), LOCK_EX | LOCK_NB) == 0) {
        m_lockFile.resize(0);
        m_lockFile.write(QByteArray::number(QCoreApplication::applicationPid()));
        m_lockFile.flush();
        return QString();
    }
    if (errno != EWOULDBLOCK)
        return QStringLiteral("Cannot lock the storage folder %1: %2.").arg(m_path, qt_error_string(errno));
    return QStringLiteral("The storage folder %1 is in use by another host (process %2).")
        .arg(m_path, QString::fromLatin1(m_lockFile.readAll()));
}

void StorageFolder::sweep() const
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
