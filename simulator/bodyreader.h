// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT
#ifndef BODYREADER_H
#define BODYREADER_H

#include <QByteArray>
#include <QJsonObject>
#include <QStringList>

/*! Reads the optional members of a JSON object body and remembers the first thing that is wrong with it.
 *
 *  Ask for every member that the operation knows, then look at complaint() before anything is changed: a
 *  member that nobody has asked for is a complaint as well, so that a slip of the pen is never ignored. */
class BodyReader
{
public:
    /*! An empty \a body counts as an empty object. */
    explicit BodyReader(const QByteArray &body);

    bool contains(const char *name) const { return m_object.contains(QLatin1String(name)); }

    /*! Complains unless the body has a member called \a name. */
    void require(const char *name);
    /*! A number from \a least to \a most, or \a absent. */
    double number(const char *name, double least, double most, double absent);
    int wholeNumber(const char *name, int least, int most, int absent);
    bool flag(const char *name);
    QString text(const char *name, const QString &absent);

    /*! One sentence that says what would be right; empty when all is well. */
    QString complaint() const;

private:
    QJsonValue take(const char *name);
    void complain(const QString &complaint);

    QJsonObject m_object;
    QStringList m_known;
    QString m_complaint;
};

#endif // BODYREADER_H
