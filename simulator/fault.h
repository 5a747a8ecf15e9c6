// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT
#ifndef FAULT_H
#define FAULT_H

#include <QJsonObject>

#include <chrono>
#include <condition_variable>
#include <mutex>

/*! How the backend misbehaves. Everything may be combined; nothing set means that it behaves. */
struct Fault
{
    int status = 0;                     //!< answers with this HTTP status and does nothing; 0: off
    std::chrono::milliseconds delay{0}; //!< waits this long before it looks at a request
    bool garbage = false;               //!< answers with bytes that are no JSON and does nothing
    bool silent = false;                //!< looks at no request until this is over

    /*! Only what is set: {"status", "delayMs", "garbage", "silent"}. */
    QJsonObject toJson() const;
};

/*! Where every request to the backend waits out a silence or a delay. Safe to call from any thread. */
class FaultGate
{
public:
    /*! Takes the place of the fault before. Requests that a silence or a delay held back go on once that is
     *  over. */
    void setFault(const Fault &fault);
    Fault fault() const;

    /*! Holds the caller back for as long as the fault says. Returns the fault that it then meets. */
    Fault pass();
    /*! Holds nobody back any more: the program ends. */
    void open();

private:
    mutable std::mutex m_mutex; // guards all that follows
    std::condition_variable m_changed;
    Fault m_fault;
    bool m_isOpen = false;
};

#endif // FAULT_H
