// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef THING_H
#define THING_H

#include "types/param.h"
#include "types/state.h"
#include "types/thingclass.h"

#include <QObject>

/*! The daemon's object for a device or service: parameters identify it, and states show its values. It is
    owned by the daemon and exists from before its first set-up until the event loop runs again after the
    plugin's thingRemoved(), or after that first set-up has failed, which thingRemoved() does not follow. So a
    plugin may keep the pointer from a successful set-up to thingRemoved(). It is used on the main thread only,
    like everything here. */
class LIBNYMEA_EXPORT Thing : public QObject
{
    Q_OBJECT
public:
    /*! The outcome of a job. */
    enum ThingError {
        ThingErrorNoError,        //!< The job has succeeded.
        ThingErrorPluginNotFound, //!< No plugin of that id is loaded.
        ThingErrorVendorNotFound, //!< No plugin has a vendor of that id.
        ThingErrorThingNotFound,  //!< There is no such thing, or it was removed before the job was finished.
        ThingErrorThingClassNotFound,         //!< The plugin has no such thing class.
        ThingErrorActionTypeNotFound,         //!< The thing's class has no such action.
        ThingErrorStateTypeNotFound,          //!< The thing's class has no such state.
        ThingErrorEventTypeNotFound,          //!< The thing's class has no such event.
        ThingErrorThingDescriptorNotFound,    //!< There is no such offer, or no longer.
        ThingErrorMissingParameter,           //!< A parameter without a default value is missing.
        ThingErrorInvalidParameter,           //!< A parameter is unknown, of the wrong type or out of range.
        ThingErrorSetupFailed,                //!< The set-up has failed, or the thing is not set up.
        ThingErrorDuplicateUuid,              //!< There already is a thing with this id.
        ThingErrorCreationMethodNotSupported, //!< Things of the class are not created in this way.
        ThingErrorSetupMethodNotSupported,    //!< Things of the class are not paired in this way.
        ThingErrorHardwareNotAvailable,       //!< A device or service that the thing needs cannot be reached.
        ThingErrorHardwareFailure,            //!< The device or service was reached, but failed.
        ThingErrorAuthenticationFailure,      //!< The device or service has refused the credentials.
        ThingErrorThingInUse,                 //!< Another job of the thing is pending.
        ThingErrorThingInRule,                //!< A rule uses the thing, so it is not removed.
        ThingErrorThingIsChild,               //!< The thing is removed with its parent, not alone.
        ThingErrorPairingTransactionIdNotFound, //!< There is no such pairing, or no longer.
        ThingErrorParameterNotWritable,         //!< The parameter can only be set when the thing is created.
        ThingErrorItemNotFound,                 //!< There is no such item to browse.
        ThingErrorItemNotExecutable,            //!< The item to browse cannot be executed.
        ThingErrorUnsupportedFeature,           //!< The plugin does not implement the operation.
        ThingErrorTimeout                       //!< The plugin has not finished the job in time.
    };
    Q_ENUM(ThingError)

    /*! The progress of a thing's last set-up. */
    enum ThingSetupStatus {
        ThingSetupStatusNone,       //!< none has begun
        ThingSetupStatusInProgress, //!< its ThingSetupInfo is pending
        ThingSetupStatusComplete,   //!< actions are accepted
        ThingSetupStatusFailed      //!< actions are refused; a new thing is deleted, any other is kept
    };
    Q_ENUM(ThingSetupStatus)

    /*! A thing of \a thingClass with the defaults of all parameters and states. If \a id is null, the
        thing gets a new id. Only the daemon creates things; a plugin requests them with a
        ThingDescriptor. */
    explicit Thing(const ThingClass &thingClass, const ThingId &id = ThingId(), QObject *parent = nullptr);

    /*! Stays the same across restarts. */
    ThingId id() const { return m_id; }
    ThingClass thingClass() const { return m_thingClass; }
    ThingClassId thingClassId() const { return m_thingClass.id; }

    /*! Shown to users, who may change it. Not unique. */
    QString name() const { return m_name; }
    void setName(const QString &name) { m_name = name; }

    /*! When the parent is removed, this thing is removed first. Null for a thing without a parent. */
    ThingId parentId() const { return m_parentId; }
    void setParentId(const ThingId &parentId) { m_parentId = parentId; }

    /*! One for each parameter of the class. */
    ParamList params() const { return m_params; }
    /*! The value of a parameter, or an invalid QVariant if the class has no such parameter. */
    QVariant paramValue(const ParamTypeId &paramTypeId) const;
    QVariant paramValue(const QString &paramName) const;
    /*! Sets a parameter to \a value, converted to its type. Refused with a warning if the class has no such
        parameter or the value cannot be converted. Limits are not checked. */
    void setParamValue(const ParamTypeId &paramTypeId, const QVariant &value);

    /*! One for each state of the class, in its order. */
    States states() const { return m_states; }
    /*! A copy of the state. Its type id is null if the class has no such state. */
    State state(const StateTypeId &stateTypeId) const;
    State state(const QString &stateName) const;
    /*! The value of a state, or an invalid QVariant if the class has no such state. */
    QVariant stateValue(const StateTypeId &stateTypeId) const;
    QVariant stateValue(const QString &stateName) const;

    /*! Sets a state to \a value, converted to the state's type and in the state's unit. The limits
        are for actions, not for the plugin. If the value changes, stateValueChanged() is emitted before this
        returns. Refused with a warning if the class has no such state or the value cannot be converted. */
    void setStateValue(const StateTypeId &stateTypeId, const QVariant &value);
    void setStateValue(const QString &stateName, const QVariant &value);

    /*! Changes the greatest value that actions may set. The value of the state is not changed, even if it is
        greater. Emits and is refused like setStateValue(). Not kept across a restart, so a plugin calls this
        at each set-up. */
    void setStateMaxValue(const StateTypeId &stateTypeId, const QVariant &maxValue);
    void setStateMaxValue(const QString &stateName, const QVariant &maxValue);

    ThingSetupStatus setupStatus() const { return m_setupStatus; }
    /*! The result of the last set-up; ThingErrorNoError until it has finished. */
    ThingError setupError() const { return m_setupError; }
    QString setupDisplayMessage() const { return m_setupDisplayMessage; }
    /*! Called by the daemon, never by a plugin. */
    void setSetupStatus(ThingSetupStatus status, ThingError error = ThingErrorNoError,
                        const QString &displayMessage = QString());

Q_SIGNALS:
    /*! A state's value or one of its limits has changed. A handler may change the state again; the signal is
        then emitted recursively. */
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

/*! Writes "Thing(NAME, class CLASS, id {ID})", or "Thing(null)". */
LIBNYMEA_EXPORT QDebug operator<<(QDebug debug, const Thing *thing);

/*! Pointers to things, which the list does not own. Pointers to deleted things remain in it. The filters
    return an empty list if no thing matches. */
class LIBNYMEA_EXPORT Things : public QList<Thing *>
{
public:
    Things() = default;
    Things(const QList<Thing *> &other);

    /*! The thing with this id, or null. */
    Thing *findById(const ThingId &id) const;
    /*! The things that have a parameter of this type with the value \a value. */
    Things filterByParam(const ParamTypeId &paramTypeId, const QVariant &value) const;
    /*! The children of the thing \a parentId. If it is null, the things without a parent. */
    Things filterByParentId(const ThingId &parentId) const;
};

#endif // THING_H
