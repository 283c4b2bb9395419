#pragma once

#include <functional>
#include <memory>
#include <string>

/// What a window beside the main one may ask of the running program, each subject an interface of its own, so
/// that a window is handed just the ones that it uses. The monitor implements them; tests fake them.

namespace drx9 {

/// Something that lasts as long as this lives: the timer's pause, a place in the round before closing.
class Tenure {
public:
    virtual ~Tenure() = default;
};

class PollingAccess {
public:
    virtual ~PollingAccess() = default;
    /// `reason` is shown to the operator: "System Parameters is open". Holds are counted: the timer runs
    /// again when the last one has gone.
    [[nodiscard]] virtual std::unique_ptr<Tenure> holdTimer(const std::string& reason) = 0;
};

/// For the communications window.
class LinkSetupAccess {
public:
    virtual ~LinkSetupAccess() = default;
    /// The window has loaded: the run mode becomes Starting, so that nothing is read or shown.
    virtual void linkSetupOpened() = 0;
    /// A find that the operator asked for has connected: a loss that lasted until now is over.
    virtual void linkFound() = 0;
    /// A command was typed that selects a film or resets the films: the film in use is no longer known for
    /// sure.
    virtual void filmUnconfirmed() = 0;
    /// The window closes. `reopen`: opens the link again first, without a box; the reason of a failure goes
    /// to the status bar. `sameLink`: the link is the one that was set when the window opened, so attempts to
    /// open it go on while it is lost. Then the run mode becomes Idle, which refreshes the main window.
    /// Pumps events.
    virtual void linkSetupClosed(bool reopen, bool sameLink) = 0;
};

/// For the system parameters window.
class SystemRecordAccess {
public:
    virtual ~SystemRecordAccess() = default;
    /// Both records were read from the instrument, or sent to it and accepted, since it came on line.
    [[nodiscard]] virtual bool systemKnown() const = 0;
    /// A save has ended; `accepted` when the instrument took both records. What it holds is not known
    /// otherwise.
    virtual void systemSent(bool accepted) = 0;
    /// The window has closed: the timer is wanted again.
    virtual void systemClosed() = 0;
};

/// For the film window.
class FilmMemoryAccess {
public:
    virtual ~FilmMemoryAccess() = default;
    /// The instrument's films may be others than the main window shows: it is refreshed as when
    /// the run mode becomes Idle. Pumps events.
    virtual void filmMemoryChanged() = 0;
    /// A "D" or "Z" that no request of the main window sent: the film in use is no longer known for sure.
    virtual void filmUnconfirmed() = 0;
};

/// Questions that must be asked, and transfers that must end, before the program closes.
class CloseRound {
public:
    using Question = std::function<void()>;

    virtual ~CloseRound() = default;
    /// `question` is called before the settings are saved, as long as the returned object lives; it may show
    /// a box. It cannot cancel the close. At the session's end it must not ask: `sessionEnds()` is true then.
    [[nodiscard]] virtual std::unique_ptr<Tenure> beforeClose(Question question) = 0;
    [[nodiscard]] virtual bool sessionEnds() const = 0;
};

} // namespace drx9
