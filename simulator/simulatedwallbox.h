// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef SIMULATEDWALLBOX_H
#define SIMULATEDWALLBOX_H

#include <QString>

#include <array>
#include <chrono>
#include <optional>

/*! Simulated time, which may run faster than the clock. */
using Seconds = std::chrono::duration<double>;

/*! A car draws at least this current or none at all (IEC 61851-1), so a lower limit stops it. */
constexpr double minimumCurrent = 6; // A
/*! The largest current of an IEC 62196 type 2 plug, on each of three phases. */
constexpr double maximumCurrent = 63; // A
constexpr double phaseVoltage = 230;  // V

/*! The car that is plugged in, as far as a wallbox knows it. */
struct Car
{
    int phases = 3;         //!< 1 to 3
    double maxCurrent = 16; //!< ampere on each phase, minimumCurrent to maximumCurrent
    bool isPaused = false;  //!< draws no current for now
};

/*! A limit that a wallbox has received. */
struct ChargeLimit
{
    double ampere; //!< on each phase
    QString time;  //!< when it arrived
};

/*! A wallbox with the car that is plugged in. It is a plain value without a clock: advance() lets time pass.

    The user's actions return an empty text on success. Otherwise they return why the state of the wallbox does
    not allow them, and change nothing. */
struct SimulatedWallbox
{
    int maxChargingCurrent = 32; //!< in whole ampere on each phase, set by the installer
    /*! Valid until the next one arrives, also for the next car. Without a limit, only the maximum counts. */
    std::optional<ChargeLimit> limit;
    bool isBroken = false; //!< "Faulted" until it is repaired: no current flows; the car and its session stay
    /*! Starts a session, whose meter starts at 0. The car prepares for 3 s ("Preparing") before it charges. */
    QString plugIn(const Car &car);
    /*! Ends the session. sessionEnergy() keeps its value until the next one starts. */
    QString unplug();
    /*! The car draws no current ("SuspendedEV"), like a full one, until resume(). */
    QString pause() { return setPaused(true); }
    QString resume() { return setPaused(false); }
    /*! Ends the session with the car still plugged in ("Finishing"). The next step can only be unplug(). */
    QString finish();

    /*! Lets \a elapsed pass, in which the car prepares and the meter counts. */
    void advance(Seconds elapsed);

    /*! The connector status, ChargePointStatus of OCPP 1.6. */
    QString status() const;
    const std::optional<Car> &car() const { return m_car; }

    std::array<double, 3> currents() const; //!< ampere, phase 1 first
    double power() const;                   //!< W
    double offeredPower() const;            //!< W that the limit and the maximum allow the car
    /*! Wh of this session, or of the last one; rounded to 0.001. */
    double sessionEnergy() const;

private:
    QString setPaused(bool paused);
    double offeredCurrent() const;
    double chargingCurrent() const;

    std::optional<Car> m_car;
    Seconds m_untilReady{0};
    bool m_finished = false;
    double m_sessionEnergy = 0;
};

#endif // SIMULATEDWALLBOX_H
