// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef STATE_H
#define STATE_H

#include "typeutils.h"

#include <QVariant>

/*! A thing's value of one state type, with the limits in force for it. Plain data. */
class LIBNYMEA_EXPORT State
{
public:
    explicit State(const StateTypeId &stateTypeId = StateTypeId(), const QVariant &value = QVariant());

    StateTypeId stateTypeId() const;

    QVariant value() const;
    void setValue(const QVariant &value);

    /*! Limits for actions on the state; invalid without one. A plugin may move them at run time. */
    QVariant minValue() const;
    void setMinValue(const QVariant &minValue);
    QVariant maxValue() const;
    void setMaxValue(const QVariant &maxValue);

private:
    StateTypeId m_stateTypeId;
    QVariant m_value;
    QVariant m_minValue;
    QVariant m_maxValue;
};

using States = QVector<State>;

#endif // STATE_H
