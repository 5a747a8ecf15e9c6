// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef STATECHANGES_H
#define STATECHANGES_H

#include <integrations/thing.h>

#include <QHash>
#include <QVector>

#include <utility>

struct StateChange
{
    Thing *thing; //!< the daemon's
    StateTypeId stateTypeId;
    QVariant value;
};

/*! Collects what happens to the values of watched things' states, in order, until it is taken. */
class StateChanges : public QObject
{
    Q_OBJECT
public:
    void watch(Thing *thing);
    /*! Ends the watch; changes of \a thing that have not been taken are dropped. */
    void forget(Thing *thing);

    QVector<StateChange> take() { return std::exchange(m_changes, {}); }

Q_SIGNALS:
    /*! There are changes to take, after there were none. */
    void available();

private:
    QVector<StateChange> m_changes;
    // The last values seen: a thing also notifies when only a limit has moved.
    QHash<const Thing *, QHash<StateTypeId, QVariant>> m_values;
};

#endif // STATECHANGES_H
