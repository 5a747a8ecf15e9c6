// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef MASK_H
#define MASK_H

#include <QStringList>

/*! Hides secrets in texts, wherever a backend or an error message may repeat them. */
class Mask
{
public:
    /*! Hides \a secret from now on, as it is and as JSON, URLs and HTML write it. */
    void hide(const QString &secret);

    /*! \a text with "***" in place of secrets. */
    QString operator()(const QString &text) const;
    /*! The same, cut to a readable length: for what the backend or the user said. */
    QString quoted(const QString &text) const;

private:
    QStringList m_hidden; // the longest first, so that none leaves a part of another
};

#endif // MASK_H
