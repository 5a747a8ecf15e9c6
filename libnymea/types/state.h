// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef STATE_H
#define STATE_H

#include "typeutils.h"

#include <QVariant>
#include <QVector>

/*! The value of one state of a thing, with its present limits. Plain data: Thing returns copies, so changing
    one does not change the thing. Values and limits have the state's type and unit. */
class LIBNYMEA_EXPORT State
{
public:
    explicit State(const StateTypeId &stateTypeId = StateTypeId(), const QVariant &value = QVariant())
        : m_stateTypeId(stateTypeId)
        , m_value(value)
    {
    }

    /*! Null for a state that the thing does not have. */
    StateTypeId stateTypeId() const { return m_stateTypeId; }

    QVariant value() const { return m_value; }
    void setValue(const QVariant &value) { m_value = value; }

    /*! The least value that an action may set; invalid if there is no minimum. The limits do not apply to
        values that a plugin sets. */
    QVariant minValue() const { return m_minValue; }
    void setMinValue(const QVariant &minValue) { m_minValue = minValue; }
    /*! The greatest value that an action may set; see Thing::setStateMaxValue(). */
    QVariant maxValue() const { return m_maxValue; }
    void setMaxValue(const QVariant &maxValue) { m_maxValue = maxValue; }

private:
    StateTypeId m_stateTypeId;
    QVariant m_value;
    QVariant m_minValue;
    QVariant m_maxValue;
};

using States = QVector<State>;

#endif // STATE_H
