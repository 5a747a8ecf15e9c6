// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef THING_H
#define THING_H

#include "types/param.h"
#include "types/state.h"
#include "types/thingclass.h"

#include <QObject>

/*! A device or service as the daemon knows it: parameters that identify it, states that show it. Owned by
    the daemon, from before its first set-up until the event loop runs after the plugin's thingRemoved(). A
    plugin may keep the pointer from setupThing() to thingRemoved(). It lives on the main thread, like
    everything here. */
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
        ThingErrorThingClassNotFound,      //!< The plugin has no such thing class.
        ThingErrorActionTypeNotFound,      //!< The thing's class has no such action.
        ThingErrorStateTypeNotFound,       //!< The thing's class has no such state.
        ThingErrorEventTypeNotFound,       //!< The thing's class has no such event.
        ThingErrorThingDescriptorNotFound, //!< The daemon does not know the offer, or not any more.
        ThingErrorMissingParameter,        //!< A parameter without a default value is missing.
        ThingErrorInvalidParameter, //!< A parameter is unknown, of the wrong type or out of its limits.
        ThingErrorSetupFailed,      //!< The thing cannot be made to work, or is not set up.
        ThingErrorDuplicateUuid,    //!< There is a thing of that id already.
        ThingErrorCreationMethodNotSupported, //!< Things of the class are not created in this way.
        ThingErrorSetupMethodNotSupported,    //!< Things of the class are not paired in this way.
        ThingErrorHardwareNotAvailable,       //!< A device or service that the thing needs cannot be reached.
        ThingErrorHardwareFailure,            //!< The device or service was reached and failed.
        ThingErrorAuthenticationFailure,      //!< The device or service has refused the credentials.
        ThingErrorThingInUse,                 //!< Another job of the thing is pending.
        ThingErrorThingInRule,                //!< A rule uses the thing, so it is not removed.
        ThingErrorThingIsChild,               //!< The thing goes with its parent and is not removed alone.
        ThingErrorPairingTransactionIdNotFound, //!< There is no such pairing, or not any more.
        ThingErrorParameterNotWritable, //!< The parameter is set when the thing is created, not later.
        ThingErrorItemNotFound,         //!< There is no such item to browse.
        ThingErrorItemNotExecutable,    //!< The item to browse cannot be executed.
        ThingErrorUnsupportedFeature,   //!< The plugin does not implement the operation.
        ThingErrorTimeout               //!< The plugin has not finished the job in time.
    };
    Q_ENUM(ThingError)

    /*! How far a thing's last set-up has got. */
    enum ThingSetupStatus {
        ThingSetupStatusNone,       //!< none has begun
        ThingSetupStatusInProgress, //!< its ThingSetupInfo is pending
        ThingSetupStatusComplete,   //!< actions are accepted
        ThingSetupStatusFailed      //!< the thing is kept if it was before; actions are refused
    };
    Q_ENUM(ThingSetupStatus)

    /*! A thing of \a thingClass with the defaults of all parameters and states. A null \a id makes it a new
        one with an id of its own. Only the daemon creates things; a plugin asks for them with
        ThingDescriptor. */
    explicit Thing(const ThingClass &thingClass, const ThingId &id = ThingId(), QObject *parent = nullptr);

    /*! Stays the same over restarts. */
    ThingId id() const { return m_id; }
    ThingClass thingClass() const { return m_thingClass; }
    ThingClassId thingClassId() const { return m_thingClass.id; }

    /*! For people, who may change it. Not unique. */
    QString name() const { return m_name; }
    void setName(const QString &name) { m_name = name; }

    /*! The thing with which this one is removed; null for none. */
    ThingId parentId() const { return m_parentId; }
    void setParentId(const ThingId &parentId) { m_parentId = parentId; }

    /*! One for each parameter of the class. */
    ParamList params() const { return m_params; }
    /*! The value of a parameter, or an invalid QVariant if the class has no such parameter. */
    QVariant paramValue(const ParamTypeId &paramTypeId) const;
    QVariant paramValue(const QString &paramName) const;
    /*! Sets a parameter to \a value, converted to its type. Refused with a warning if the class has no such
        parameter or the value cannot be converted. Limits do not count here. */
    void setParamValue(const ParamTypeId &paramTypeId, const QVariant &value);

    /*! One for each state of the class, in its order. */
    States states() const { return m_states; }
    /*! A copy of the state; one with a null type id if the class has no such state. */
    State state(const StateTypeId &stateTypeId) const;
    State state(const QString &stateName) const;
    /*! The value of a state, or an invalid QVariant if the class has no such state. */
    QVariant stateValue(const StateTypeId &stateTypeId) const;
    QVariant stateValue(const QString &stateName) const;

    /*! Sets a state to \a value, converted to the state's type and in the state's unit. The limits bind
        actions, not the plugin. Notifies, before it returns, only if this changes the value. Refused with a
        warning if the class has no such state or the value cannot be converted. */
    void setStateValue(const StateTypeId &stateTypeId, const QVariant &value);
    void setStateValue(const QString &stateName, const QVariant &value);

    /*! Moves the greatest value that actions may set; the value of the state stays as it is, even above.
        Notifies and is refused as setStateValue(). Not kept over a restart: a plugin calls this at each
        set-up. */
    void setStateMaxValue(const StateTypeId &stateTypeId, const QVariant &maxValue);
    void setStateMaxValue(const QString &stateName, const QVariant &maxValue);

    ThingSetupStatus setupStatus() const { return m_setupStatus; }
    /*! What the last set-up finished with; ThingErrorNoError before it has. */
    ThingError setupError() const { return m_setupError; }
    QString setupDisplayMessage() const { return m_setupDisplayMessage; }
    /*! The daemon notes how the last set-up of the thing went; a plugin never calls this. */
    void setSetupStatus(ThingSetupStatus status, ThingError error = ThingErrorNoError,
                        const QString &displayMessage = QString());

Q_SIGNALS:
    /*! A state's value or one of its limits has changed. A handler may change the state again, and then the
        signal is emitted within its own emission. */
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

/*! Pointers to things. The list owns none of them, and a thing that is deleted stays in copies of it. The
    filters return empty lists if nothing fits. */
class LIBNYMEA_EXPORT Things : public QList<Thing *>
{
public:
    Things() = default;
    Things(const QList<Thing *> &other);

    /*! The thing of that id, or null. */
    Thing *findById(const ThingId &id) const;
    /*! The things that have a parameter of that type with a value equal to \a value. */
    Things filterByParam(const ParamTypeId &paramTypeId, const QVariant &value) const;
    /*! With a null \a parentId, the things that have no parent. */
    Things filterByParentId(const ThingId &parentId) const;
};

#endif // THING_H
