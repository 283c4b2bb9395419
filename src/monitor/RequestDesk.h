#pragma once

#include "link/ActionQueue.h"
#include "link/Commands.h"
#include "monitor/AnswerRecord.h"
#include "monitor/FilmChoice.h"
#include "monitor/LinkKeeper.h"
#include "monitor/RequestReport.h"
#include "monitor/RunState.h"
#include "platform/Clock.h"

#include <cstdint>
#include <optional>

namespace drx9 {

/// What carrying out a request changes beyond the instrument; the monitor's side of the desk.
class RunHost {
public:
    virtual ~RunHost() = default;
    [[nodiscard]] virtual RunState RunMode() const = 0;
    /// Resets charts and elapsed time and sends "T"; 0 or its status. Pumps events.
    virtual std::uint16_t ZeroAll() = 0;
    /// Starts a run, or stops the one in progress. Pumps events.
    virtual void toggleRun() = 0;
    virtual void filmChanged() = 0;
    virtual void shutterQueried() = 0;
};

/// Requests that wait for the next tick.
struct Requests {
    bool startStop = false;
    bool zero = false;
    bool shutter = false;
    bool film = false;
};

/// The operator's requests: raised by clicks, carried out by the tick in their fixed order (film, zero,
/// shutter, start/stop), each once, whatever its exchanges answer. Each flag is cleared before its first
/// exchange, so that a click during the exchange counts for the next tick. Nothing that acts on the process
/// is sent again by itself.
class RequestDesk {
public:
    static constexpr std::int16_t kShutterUnknown = -999; ///< the shutter query failed

    struct Parts {
        Commands& commands;
        Link& link;
        Films& films;
        FilmChoice& choice;
        AnswerRecord& answers;
        LinkKeeper& keeper;
        ActionQueue& actions;
        const Clock& clock;
    };

    explicit RequestDesk(const Parts& parts);

    void raiseStartStop() { flags_.startStop = true; }
    void raiseZero() { flags_.zero = true; }
    void raiseShutter() { flags_.shutter = true; }
    void raiseFilm() { flags_.film = true; } ///< for the entry that is chosen in the film list
    [[nodiscard]] const Requests& waiting() const { return flags_; }

    /// Carries out what waits. Ends between two requests where an action waits, unless `all`; a close lets no
    /// further request begin. Pumps events.
    void carryOut(RunHost& host, bool all = false);
    /// A stop does not wait for the link: true when one was requested in a run, which is then taken off the
    /// desk.
    [[nodiscard]] bool takeStop(RunState runMode);
    /// Drops what waits and says so: a window opens that would hold it as long as it stays open.
    void dropWaiting();
    /// A run begins: what was said of earlier requests goes.
    void runStarts();

    /// Last answer of the shutter query: above 0 open, else closed, or kShutterUnknown.
    [[nodiscard]] std::int16_t shutterState() const { return shutterState_; }
    [[nodiscard]] const RequestReport& report() const { return report_; }

private:
    [[nodiscard]] bool mayGoOn(bool all) const;
    void takeFilm(RunHost& host);
    void readFilm(int number);
    void takeZero(RunHost& host);
    bool takeShutter(const RunHost& host);
    void openShutter(const RunHost& host);
    void queryShutter(RunHost& host);
    void startBehindShutter(std::int16_t answer, RunState runMode);
    [[nodiscard]] bool inStep() const;
    std::uint16_t note(const char* command, std::uint16_t status);

    Parts parts_;
    Requests flags_;
    RequestReport report_;
    std::int16_t shutterState_ = 0;
    /// When "U1" was sent without being answered: the start that it raised waits for what "U?" says.
    /// Monotonic.
    std::optional<double> unansweredOpening_;
};

} // namespace drx9
