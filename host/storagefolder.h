// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef STORAGEFOLDER_H
#define STORAGEFOLDER_H

#include <QFile>
#include <QString>

/*! Ends the name under which a file is written before it replaces the one that it is named after. */
constexpr char newFileSuffix[] = ".vela-host-new";

/*! Opens \a file for \a mode and with the \a flags of open(2), unless it is a symbolic link. A new one is for
    its owner alone. errno tells why it failed. Afterwards \a file no longer knows its name. */
bool openNoFollow(QFile *file, QIODevice::OpenMode mode, int flags);

/*! The folder that holds a daemon's things and its plugin's storage, for one daemon at a time. */
class StorageFolder
{
public:
    explicit StorageFolder(const QString &path);

    /*! Creates the folder where it is missing, locks it until this object ends, and removes what a killed
        predecessor left half done. The folder holds secrets: it must be ours, nobody else may write in it,
        and none of its files may be a link. Returns an empty text, or the sentence that says what is wrong.
     */
    [[nodiscard]] QString claim();

    QString path() const { return m_path; }
    /*! Bytes that can still be written there; the greatest number where the system does not tell. */
    qint64 room() const;

private:
    QString lock();
    void sweep() const;

    const QString m_path;
    QFile m_lockFile;
};

#endif // STORAGEFOLDER_H
