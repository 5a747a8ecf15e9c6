// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "integrations/thing.h"

#include "loggingcategories.h"

#include <QDebug>

#include <algorithm>

namespace {

/*! \a value converted to \a type; invalid if it cannot be converted. */
QVariant converted(const QVariant &value, QMetaType::Type type)
{
    if (value.userType() == type)
        return value;
    QVariant result = value;
    return result.convert(type) ? result : QVariant();
}

template <typename Predicate> Things filtered(const Things &things, Predicate predicate)
{
    Things result;
    std::copy_if(things.cbegin(), things.cend(), std::back_inserter(result), predicate);
    return result;
}

} // namespace

Thing::Thing(const ThingClass &thingClass, const ThingId &id, QObject *parent)
    : QObject(parent)
    , m_thingClass(thingClass)
    , m_id(id.isNull() ? ThingId::createThingId() : id)
    , m_name(thingClass.displayName)
{
    for (const ParamType &paramType : m_thingClass.paramTypes)
        m_params.append(Param(paramType.id, paramType.defaultValue));
    for (const StateType &stateType : m_thingClass.stateTypes) {
        State state(stateType.id, stateType.defaultValue);
        state.setMinValue(stateType.minValue);
        state.setMaxValue(stateType.maxValue);
        m_states.append(state);
    }
}

QVariant Thing::paramValue(const ParamTypeId &paramTypeId) const
{
    return m_params.paramValue(paramTypeId);
}

QVariant Thing::paramValue(const QString &paramName) const
{
    return m_params.paramValue(m_thingClass.paramTypes.findByName(paramName).id);
}

void Thing::setParamValue(const ParamTypeId &paramTypeId, const QVariant &value)
{
    const QVariant newValue = converted(value, m_thingClass.paramTypes.findById(paramTypeId).type);
    if (!newValue.isValid() || !m_params.setParamValue(paramTypeId, newValue))
        qCWarning(dcThing) << this << "has no parameter" << paramTypeId << "that could hold" << value;
}

State Thing::state(const StateTypeId &stateTypeId) const
{
    return m_states.value(stateIndex(stateTypeId));
}

State Thing::state(const QString &stateName) const
{
    return m_states.value(stateIndex(stateName));
}

QVariant Thing::stateValue(const StateTypeId &stateTypeId) const
{
    return valueAt(stateIndex(stateTypeId));
}

QVariant Thing::stateValue(const QString &stateName) const
{
    return valueAt(stateIndex(stateName));
}

/*! The index of a state; -1, with a warning, if there is no such state. */
template <typename Key> int Thing::knownStateIndex(const Key &key) const
{
    const int index = stateIndex(key);
    if (index < 0)
        qCWarning(dcThing) << this << "has no state" << key;
    return index;
}

void Thing::setStateValue(const StateTypeId &stateTypeId, const QVariant &value)
{
    setValueAt(knownStateIndex(stateTypeId), value);
}

void Thing::setStateValue(const QString &stateName, const QVariant &value)
{
    setValueAt(knownStateIndex(stateName), value);
}

void Thing::setStateMaxValue(const StateTypeId &stateTypeId, const QVariant &maxValue)
{
    setMaxValueAt(knownStateIndex(stateTypeId), maxValue);
}

void Thing::setStateMaxValue(const QString &stateName, const QVariant &maxValue)
{
    setMaxValueAt(knownStateIndex(stateName), maxValue);
}

void Thing::setSetupStatus(ThingSetupStatus status, ThingError error, const QString &displayMessage)
{
    m_setupStatus = status;
    m_setupError = error;
    m_setupDisplayMessage = displayMessage;
    emit setupStatusChanged();
}

int Thing::stateIndex(const StateTypeId &stateTypeId) const
{
    for (int i = 0; i < m_states.size(); ++i) {
        if (m_states.at(i).stateTypeId() == stateTypeId)
            return i;
    }
    return -1;
}

int Thing::stateIndex(const QString &stateName) const
{
    const StateTypes &types = m_thingClass.stateTypes;
    const auto it = std::find_if(types.cbegin(), types.cend(),
                                 [&stateName](const StateType &type) { return type.name == stateName; });
    return it == types.cend() ? -1 : int(it - types.cbegin());
}

QVariant Thing::valueAt(int index) const
{
    return index < 0 ? QVariant() : m_states.at(index).value();
}

void Thing::setValueAt(int index, const QVariant &value)
{
    if (index < 0)
        return;
    const StateType &type = m_thingClass.stateTypes.at(index);
    const QVariant newValue = converted(value, type.type);
    if (!newValue.isValid()) {
        qCWarning(dcThing) << this << "cannot hold" << value << "in its state" << type.name;
        return;
    }
    if (m_states.at(index).value() == newValue)
        return;
    m_states[index].setValue(newValue);
    notify(index);
}

void Thing::setMaxValueAt(int index, const QVariant &maxValue)
{
    if (index < 0)
        return;
    const StateType &type = m_thingClass.stateTypes.at(index);
    const QVariant newMaxValue = converted(maxValue, type.type);
    if (!newMaxValue.isValid()) {
        qCWarning(dcThing) << this << "cannot have" << maxValue << "as the maximum of its state" << type.name;
        return;
    }
    if (m_states.at(index).maxValue() == newMaxValue)
        return;
    m_states[index].setMaxValue(newMaxValue);
    notify(index);
}

void Thing::notify(int index)
{
    // The getters return copies, so a listener may change the state again.
    const State &state = m_states.at(index);
    emit stateValueChanged(state.stateTypeId(), state.value(), state.minValue(), state.maxValue());
}

QDebug operator<<(QDebug debug, const Thing *thing)
{
    const QDebugStateSaver saver(debug);
    if (!thing)
        return debug.nospace() << "Thing(null)";
    return debug.nospace().noquote() << "Thing(" << thing->name() << ", class " << thing->thingClass().name
                                     << ", id " << thing->id().toString() << ")";
}

Things::Things(const QList<Thing *> &other)
    : QList<Thing *>(other)
{
}

Thing *Things::findById(const ThingId &id) const
{
    const auto it = std::find_if(cbegin(), cend(), [&id](const Thing *thing) { return thing->id() == id; });
    return it == cend() ? nullptr : *it;
}

Things Things::filterByParam(const ParamTypeId &paramTypeId, const QVariant &value) const
{
    return filtered(*this, [&](const Thing *thing) {
        return thing->params().hasParam(paramTypeId) && thing->paramValue(paramTypeId) == value;
    });
}

Things Things::filterByParentId(const ThingId &parentId) const
{
    return filtered(*this, [&parentId](const Thing *thing) { return thing->parentId() == parentId; });
}
