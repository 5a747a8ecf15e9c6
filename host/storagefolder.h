// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef STORAGEFOLDER_H
#define STORAGEFOLDER_H

#include <QFile>
#include <QString>

/*! Ends the name under which a file is written before it replaces the one that it is named after. */
constexpr char newFileSuffix[] = ".vela-host-new";

/*! Opens \a file for \a mode and with the \a flags of open(2), unless it is a symbolic link. A new one is for
    its owner alone. After a failure errno is set. Afterwards \a file has no name. */
bool openNoFollow(QFile *file, QIODevice::OpenMode mode, int flags);

/*! The folder that holds a daemon's things and its plugin's settings, for one daemon at a time. */
class StorageFolder
{
public:
    explicit StorageFolder(const QString &path);

    /*! Creates the folder if it is missing, locks it until this object is deleted, and removes the unfinished
        files of a host that was killed. The folder holds secrets: it must belong to this user, only its owner
        may write in it, and none of its files may be a link. Returns an empty text, or the sentence that says
        what is wrong. */
    [[nodiscard]] QString claim();

    QString path() const { return m_path; }
    /*! In bytes; the greatest number if the system does not say. */
    qint64 freeSpace() const;

private:
    QString lock();
    void removeLeftovers() const;

    const QString m_path;
    QFile m_lockFile;
};

#endif // STORAGEFOLDER_H
