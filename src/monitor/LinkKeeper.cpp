#include "monitor/LinkKeeper.h"

#include <utility>

namespace drx9 {

namespace {
constexpr double kAttemptInterval = 1.5; // s
/// Bad ticks, or readings out of step, in a row before a link that answers is opened again.
constexpr int kBadBeforeReopen = 4;
constexpr double kLongLoss = 3;        // s
constexpr double kLivingInterval = 60; // s between two reopenings that do not help

/// The instrument answered, but refused or answered garbled: it lives.
bool livingAnswer(std::uint16_t status) {
    return status >= comm::kNotReady && status <= comm::kChecksum;
}
} // namespace

LinkKeeper::LinkKeeper(Link& link, Discovery& discovery, ActionQueue& actions, const Clock& clock)
    : link_(link)
    , discovery_(discovery)
    , actions_(actions)
    , clock_(clock) {
    discovery_.addListener(*this);
}

LinkKeeper::Tick LinkKeeper::judge(RunState runMode) {
    const bool keeps = runMode == RunState::Idle || runMode == RunState::Running;
    living_ = false;
    acceptedBefore_ = link_.accepted();
    if (!link_.CommOK()) {
        return wasOnLine_ && keeps ? Tick::Reopen : Tick::Nothing;
    }
    wasOnLine_ = true;
    if (fine()) {
        living_ = keeps && livingReopenDue();
        return living_ ? Tick::Reopen : Tick::Poll;
    }
    return link_.CommStatus() != comm::kBusy && keeps ? Tick::Reopen : Tick::Nothing;
}

bool LinkKeeper::fine() {
    if (livingAnswer(link_.CommStatus())) {
        link_.setCommStatus(comm::kOk);
    }
    return link_.CommStatus() == comm::kOk;
}

bool LinkKeeper::livingReopenDue() const {
    const bool bad = refusedTicks_ >= kBadBeforeReopen || strays_ >= kBadBeforeReopen;
    return bad && (helped_ || clock_.monotonic() - lastLivingReopen_ >= kLivingInterval);
}

void LinkKeeper::readingEnded(Commands::ReadResult reading) {
    const bool stray = reading == Commands::ReadResult::OutOfStep;
    strays_ = stray ? strays_ + 1 : reading == Commands::ReadResult::Done ? 0 : strays_;
    helped_ = helped_ || (link_.accepted() != acceptedBefore_ && !stray);
}

void LinkKeeper::tickEnded() {
    refusedTicks_ = link_.accepted() != acceptedBefore_ ? 0 : refusedTicks_ + 1;
}

bool LinkKeeper::beginLoss() {
    if (lost_) {
        return false;
    }
    lost_ = true;
    versionAtLoss_ = link_.CommVersion();
    return true;
}

LinkKeeper::Attempt LinkKeeper::attempt() {
    const double now = clock_.monotonic();
    if (lastAttempt_ >= 0 && now - lastAttempt_ < kAttemptInterval) {
        return Attempt::NotDue;
    }
    lastAttempt_ = now;
    repeated_ = living_ && !helped_;
    if (living_) {
        helped_ = false;
        lastLivingReopen_ = now;
        refusedTicks_ = strays_ = 0;
    }
    const bool opened = discovery_.Comm_Open(Messages::NonBlocking, [this] { return actions_.waiting(); });
    return opened ? Attempt::Opened : Attempt::Failed;
}

void LinkKeeper::startOver() {
    lost_ = false;
    wasOnLine_ = link_.CommOK();
    refusedTicks_ = strays_ = 0;
    helped_ = true;
}

void LinkKeeper::linkOpening() {
    silentFrom_ = silentFrom_ < 0 ? link_.lastReplyTime() : silentFrom_;
}

void LinkKeeper::linkOpened() {
    const double now = clock_.monotonic();
    if (now - std::exchange(silentFrom_, -1) > kLongLoss) {
        longLossEnded_ = now;
    }
    lost_ = false;
    wasOnLine_ = true;
}

} // namespace drx9
