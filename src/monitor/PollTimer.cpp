#include "monitor/PollTimer.h"

#include <algorithm>
#include <utility>

namespace drx9 {

PollTimer::Hold::Hold(PollTimer& timer, std::string reason)
    : timer_(timer)
    , reason_(std::move(reason)) {
    timer_.holds_.push_back(reason_);
    timer_.apply();
}

PollTimer::Hold::~Hold() {
    const auto mine = std::find(timer_.holds_.begin(), timer_.holds_.end(), reason_);
    timer_.holds_.erase(mine);
    timer_.apply();
}

void PollTimer::setWanted(bool wanted) {
    wanted_ = wanted;
    apply();
}

void PollTimer::apply() {
    const bool run = wanted_ && holds_.empty();
    if (run && !ticker_.running()) {
        ticker_.start();
    } else if (!run && ticker_.running()) {
        ticker_.stop();
    }
}

} // namespace drx9
