#pragma once

#include <cstdint>

namespace drx9 {

// What the main window may ask of the program. What it shows it pulls from StatusBoard and Readouts.

/// The run bar and the view menu. A request only raises its flag; the tick carries it out.
class RunControl {
public:
    virtual ~RunControl() = default;
    virtual void cmdStartStop_Click() = 0;
    virtual void cmdZero_Click() = 0;
    virtual void cmdShutter_Click() = 0;
    /// `index` is the chosen entry of the film list, from 0.
    virtual void cboFilms_Click(int index) = 0;
    /// The view menu's graph items, 1 to 4.
    virtual void graphItemClicked(std::int16_t item) = 0;
    /// The view menu's sensor items, 1 rate, 2 thickness, 3 frequency: the fields change with their labels,
    /// also while nothing is read.
    virtual void sensorItemClicked(std::int16_t item) = 0;
    /// Carries out what waits before a window opens that holds the timer; what the link cannot take is
    /// dropped and said. False when that window must not open any more: a run has begun, or the program
    /// closes. Pumps events.
    [[nodiscard]] virtual bool carryOutBeforeWindow() = 0;
};

/// The end of the program.
class ProgramEnd {
public:
    virtual ~ProgramEnd() = default;
    /// The desktop's session ends: nothing is asked, and no box or dialog keeps the program open.
    [[nodiscard]] virtual bool sessionEnds() const = 0;
    /// Asks the round of questions, saves the settings, ends a run's log, closes the other windows. Never
    /// cancelled. Call when idle only. Pumps events.
    virtual void close() = 0;
};

} // namespace drx9
