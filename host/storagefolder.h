// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef STORAGEFOLDER_H
#define STORAGEFOLDER_H

#include <QFile>
#include <QString>

/*! Ends the name under which a file is written before it replaces the one that it is named after. */
constexpr char newFileSuffix[] = ".vela-host-new";

/*! The folder that holds a daemon's things and its plugin's storage, for one daemon at a time. */
class StorageFolder
{
public:
    explicit StorageFolder(const QString &path);

    /*! Creates the folder where it is missing, locks it until this object ends, and removes what a killed
        predecessor left half done. Returns an empty text, or the sentence that says what is wrong. */
    [[nodiscard]] QString claim();

    QString path() const;

private:
    QString lock();
    void sweep() const;

    const QString m_path;
    QFile m_lockFile;
};

#endif // STORAGEFOLDER_H
