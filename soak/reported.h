// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef REPORTED_H
#define REPORTED_H

#include <QHash>
#include <QJsonArray>
#include <QJsonObject>
#include <QSet>
#include <QString>

/*! What a host has reported over all its lives, and what must therefore still be there. */
class Reported
{
public:
    /*! Takes note of one object of the host's output. */
    void note(const QJsonObject &object);
    /*! Notes that a command is under way that sets a state of the thing of that name. */
    void expectAction(const QString &name) { m_acting.append(name); }
    /*! Notes that a removal is under way. */
    void expectRemoval() { m_removing = true; }
    /*! The host has ended; nobody answers what is under way. */
    void hostHasEnded();

    /*! What is wrong with the list of things after a restart; empty when it is as it must be. What was
        stored and not reported before the end is noted now. */
    QString judge(const QJsonArray &things);
    /*! The same after a host whose disk was full, so that it may have reported what it could not store.
       Nothing of \a stored, the ids that it has found at its own start, may be lost. */
    QString judgeStored(const QStringList &stored, const QJsonArray &things);

    bool hasGateway() const;
    int unreported() const { return m_unreported; }

private:
    QString lost(const QJsonArray &things) const;
    QString changed(const QJsonObject &thing) const;
    QString doubled(const QJsonArray &things) const;
    void adopt(const QJsonArray &things);
    void settle(const QJsonArray &things);

    QHash<QString, QJsonObject> m_things; // by id, with the values that were reported last
    QSet<QString> m_removed;              // ids
    QStringList m_acting;                 // names, in the order of the commands
    QSet<QString> m_undecided;            // names: an action was under way when the host ended
    bool m_removing = false;              // under way, also when the host ended
    int m_unreported = 0;
};

#endif // REPORTED_H
