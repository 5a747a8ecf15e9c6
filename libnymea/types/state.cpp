// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "types/state.h"

State::State(const StateTypeId &stateTypeId, const QVariant &value)
    : m_stateTypeId(stateTypeId)
    , m_value(value)
{
}

StateTypeId State::stateTypeId() const
{
    return m_stateTypeId;
}

QVariant State::value() const
{
    return m_value;
}

void State::setValue(const QVariant &value)
{
    m_value = value;
}

QVariant State::minValue() const
{
    return m_minValue;
}

void State::setMinValue(const QVariant &minValue)
{
    m_minValue = minValue;
}

QVariant State::maxValue() const
{
    return m_maxValue;
}

void State::setMaxValue(const QVariant &maxValue)
{
    m_maxValue = maxValue;
}
