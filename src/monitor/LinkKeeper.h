#pragma once

#include "link/ActionQueue.h"
#include "link/Commands.h"
#include "link/Discovery.h"
#include "link/Link.h"
#include "monitor/RunState.h"
#include "platform/Clock.h"

#include <cstdint>
#include <string>

namespace drx9 {

/// Keeps the link: judges at each tick what its status asks for, opens it again when it was lost, and knows
/// how long it was gone. A loss begins here and ends as soon as anybody has opened the link.
class LinkKeeper : public LinkListener {
public:
    enum class Tick {
        Nothing, ///< off line since the start, or an exchange is in flight
        Poll,
        Reopen,
    };
    enum class Attempt { NotDue, Failed, Opened };

    LinkKeeper(Link& link, Discovery& discovery, ActionQueue& actions, const Clock& clock);

    /// What the tick that begins has to do. The status of a living instrument's refusal is cleared.
    Tick judge(RunState runMode);
    /// Clears the status of a living instrument's refusal; true when the link can be used.
    bool fine();
    /// The tick's reading has ended.
    void readingEnded(Commands::ReadResult reading);
    /// A tick that polled has ended.
    void tickEnded();

    /// True when a loss begins with this; false when it was lost already.
    bool beginLoss();
    /// Opens the link again, at most once in 1.5 s; ends early where an action waits. Pumps events.
    Attempt attempt();
    /// The operator has chosen another link: no loss goes on and nothing is opened by itself until it
    /// answers.
    void startOver();

    /// The link was lost since it was last on line; attempts to open it go on.
    [[nodiscard]] bool lost() const { return lost_; }
    [[nodiscard]] bool wasOnLine() const { return wasOnLine_; } ///< since the start, on the present link
    void noteOnLine() { wasOnLine_ = true; }
    /// The last attempt opened a link that did answer before, and had helped nothing the last time.
    [[nodiscard]] bool repeated() const { return repeated_; }
    /// The version text is the one from before the last loss.
    [[nodiscard]] bool sameVersion() const { return link_.CommVersion() == versionAtLoss_; }
    /// The link was lost for more than 3 s and opened again at or after this monotonic time.
    [[nodiscard]] bool longLossSince(double time) const { return longLossEnded_ >= time; }

    void linkOpening() override;
    void linkOpened() override;

private:
    [[nodiscard]] bool livingReopenDue() const;

    Link& link_;
    Discovery& discovery_;
    ActionQueue& actions_;
    const Clock& clock_;
    bool wasOnLine_ = false;
    bool lost_ = false;
    bool living_ = false; ///< the tick reopens a link that answers, but refuses or is out of step
    bool repeated_ = false;
    bool helped_ = true;   ///< since a living link was last reopened, a reading was answered in step
    int refusedTicks_ = 0; ///< in a row in which no exchange was accepted
    int strays_ = 0;       ///< readings in a row out of step since the link was last opened for them
    std::uint32_t acceptedBefore_ = 0; ///< exchanges accepted before the tick in hand
    double lastAttempt_ = -1;          ///< monotonic, as the others
    double lastLivingReopen_ = -1;
    double silentFrom_ = -1; ///< last answer before the link was opened
    double longLossEnded_ = -1;
    std::string versionAtLoss_;
};

} // namespace drx9
