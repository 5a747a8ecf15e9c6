// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef THING_H
#define THING_H

#include "types/param.h"
#include "types/state.h"
#include "types/thingclass.h"

#include <QObject>

/*! A device or service as the daemon knows it: parameters that identify it, states that show it.
    Owned by the daemon, which deletes it some time after the plugin's thingRemoved() has run. */
class LIBNYMEA_EXPORT Thing : public QObject
{
    Q_OBJECT
public:
    /*! Outcome of a job. */
    enum ThingError {
        ThingErrorNoError,
        ThingErrorPluginNotFound,
        ThingErrorVendorNotFound,
        ThingErrorThingNotFound,
        ThingErrorThingClassNotFound,
        ThingErrorActionTypeNotFound,
        ThingErrorStateTypeNotFound,
        ThingErrorEventTypeNotFound,
        ThingErrorThingDescriptorNotFound,
        ThingErrorMissingParameter,
        ThingErrorInvalidParameter,
        ThingErrorSetupFailed,
        ThingErrorDuplicateUuid,
        ThingErrorCreationMethodNotSupported,
        ThingErrorSetupMethodNotSupported,
        ThingErrorHardwareNotAvailable,
        ThingErrorHardwareFailure,
        ThingErrorAuthenticationFailure,
        ThingErrorThingInUse,
        ThingErrorThingInRule,
        ThingErrorThingIsChild,
        ThingErrorPairingTransactionIdNotFound,
        ThingErrorParameterNotWritable,
        ThingErrorItemNotFound,
        ThingErrorItemNotExecutable,
        ThingErrorUnsupportedFeature,
        ThingErrorTimeout
    };
    Q_ENUM(ThingError)

    /*! Where a thing's last set-up stands. */
    enum ThingSetupStatus {
        ThingSetupStatusNone,
        ThingSetupStatusInProgress,
        ThingSetupStatusComplete,
        ThingSetupStatusFailed
    };
    Q_ENUM(ThingSetupStatus)

    /*! A thing of \a thingClass with default parameters and states; \a id is null for a new identity. */
    explicit Thing(const ThingClass &thingClass, const ThingId &id = ThingId(), QObject *parent = nullptr);

    ThingId id() const;
    ThingClass thingClass() const;
    ThingClassId thingClassId() const;

    QString name() const;
    void setName(const QString &name);

    ThingId parentId() const;
    void setParentId(const ThingId &parentId);

    ParamList params() const;
    /*! The value of a parameter, or an invalid QVariant where the class has no such parameter. */
    QVariant paramValue(const ParamTypeId &paramTypeId) const;
    QVariant paramValue(const QString &paramName) const;
    /*! Sets a parameter of the class, converted to its type; others are refused with a warning. */
    void setParamValue(const ParamTypeId &paramTypeId, const QVariant &value);

    States states() const;
    /*! A copy of the state; without such a state, one with a null type id. */
    State state(const StateTypeId &stateTypeId) const;
    State state(const QString &stateName) const;
    /*! The value of a state, or an invalid QVariant where the class has no such state. */
    QVariant stateValue(const StateTypeId &stateTypeId) const;
    QVariant stateValue(const QString &stateName) const;

    /*! Sets a state to \a value converted to the state's type; the limits bind actions, not the plugin.
        Notifies only when this changes the value. An unknown state or a value that cannot be converted
        is refused with a warning. */
    void setStateValue(const StateTypeId &stateTypeId, const QVariant &value);
    void setStateValue(const QString &stateName, const QVariant &value);

    /*! Moves the greatest value that actions may set; the value stays. Notifies only on a change. */
    void setStateMaxValue(const StateTypeId &stateTypeId, const QVariant &maxValue);
    void setStateMaxValue(const QString &stateName, const QVariant &maxValue);

    ThingSetupStatus setupStatus() const;
    ThingError setupError() const;
    QString setupDisplayMessage() const;
    /*! The daemon's record of how the thing's last set-up went; a plugin never calls this. */
    void setSetupStatus(ThingSetupStatus status, ThingError error = ThingErrorNoError,
                        const QString &displayMessage = QString());

Q_SIGNALS:
    /*! A state's value or one of its limits has changed. */
    void stateValueChanged(const StateTypeId &stateTypeId, const QVariant &value, const QVariant &minValue,
                           const QVariant &maxValue);
    void setupStatusChanged();

private:
    int stateIndex(const StateTypeId &stateTypeId) const;
    int stateIndex(const QString &stateName) const;
    template <typename Key> int knownStateIndex(const Key &key) const;
    QVariant valueAt(int index) const;
    void setValueAt(int index, const QVariant &value);
    void setMaxValueAt(int index, const QVariant &maxValue);
    void notify(int index);

    const ThingClass m_thingClass;
    const ThingId m_id;
    ThingId m_parentId;
    QString m_name;
    ParamList m_params;
    States m_states; // one for each state type of the class, in its order
    ThingSetupStatus m_setupStatus = ThingSetupStatusNone;
    ThingError m_setupError = ThingErrorNoError;
    QString m_setupDisplayMessage;
};

/*! Shows a thing's name, class and id. */
LIBNYMEA_EXPORT QDebug operator<<(QDebug debug, const Thing *thing);

/*! Things, none of them owned by the list. */
class LIBNYMEA_EXPORT Things : public QList<Thing *>
{
public:
    Things() = default;
    Things(const QList<Thing *> &other);

    /*! The thing of that id, or null. */
    Thing *findById(const ThingId &id) const;
    /*! The things whose parameter of that type equals \a value. */
    Things filterByParam(const ParamTypeId &paramTypeId, const QVariant &value) const;
    Things filterByParentId(const ThingId &parentId) const;
};

#endif // THING_H
