// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef SIMULATEDWALLBOX_H
#define SIMULATEDWALLBOX_H

#include <QString>

#include <array>
#include <chrono>
#include <optional>

/*! Model time: what has passed in the yard, which may run faster than the clock on the wall. */
using Seconds = std::chrono::duration<double>;

//! Below this current a car may not draw anything (IEC 61851-1), so that a lower limit means none.
constexpr double minimumCurrent = 6; // A
//! What the largest plug of IEC 62196 type 2 carries on each of three phases.
constexpr double maximumCurrent = 63; // A
constexpr double phaseVoltage = 230;  // V

/*! The car at the plug, as far as a wallbox can tell. */
struct Car
{
    int phases = 3;         //!< 1 to 3
    double maxCurrent = 16; //!< ampere on each phase, minimumCurrent to maximumCurrent
};

/*! A limit that a wallbox has received. */
struct ChargeLimit
{
    double ampere; //!< on each phase
    QString time;  //!< when it arrived
};

/*! One wallbox with the car at its plug. A plain value that knows no clock: time passes by advance().

    The user's actions return an empty text when done, otherwise the reason why they cannot be done in the
    state the wallbox is in; then nothing has changed. */
struct SimulatedWallbox
{
    int maxChargingCurrent = 32; //!< the installation's limit in whole ampere on each phase
    /*! Holds until the next one, also from one car to the next. None: nothing but the maximum. */
    std::optional<ChargeLimit> limit;
    bool isBroken = false; //!< "Faulted" until it is repaired: no current; car and session stay

    /*! Opens a new session, whose meter starts at 0. The car takes 3 s ("Preparing") before it charges. */
    QString plugIn(const Car &car);
    /*! Ends the session; its energy stays on display until the next one. */
    QString unplug();
    /*! The car stops drawing current ("SuspendedEV"), as a full one does, until resume(). */
    QString pause() { return setPaused(true); }
    QString resume() { return setPaused(false); }
    /*! Ends the session with the car still at the plug ("Finishing"); only unplugging leads on from there. */
    QString finish();

    /*! Lets \a elapsed pass: the car gets ready, the session's meter counts. */
    void advance(Seconds elapsed);

    /*! Connector status in the words of OCPP 1.6 (ChargePointStatus). */
    QString status() const;
    const std::optional<Car> &car() const { return m_car; }
    bool isPaused() const { return m_paused; } //!< the car, if there is one

    std::array<double, 3> currents() const; //!< ampere, phase 1 first
    double power() const;                   //!< W
    double offeredPower() const;            //!< W the car could draw by limit and wallbox
    /*! Wh of this session, or of the last one, to 0.001. */
    double sessionEnergy() const;

private:
    QString setPaused(bool paused);
    double offeredCurrent() const;
    double chargingCurrent() const;

    std::optional<Car> m_car;
    Seconds m_untilReady{0};
    bool m_paused = false;
    bool m_finished = false;
    double m_sessionEnergy = 0;
};

#endif // SIMULATEDWALLBOX_H
