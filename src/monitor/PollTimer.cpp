#include "monitor/PollTimer.h"

#include <algorithm>
#include <utility>

namespace drx9 {

PollTimer::Hold::Hold(PollTimer& timer, std::string reason)
    : timer_(timer)
    , reason_(std::move(reason)) {
    if (!timer_.held()) {
        timer_.beginPause();
    }
    timer_.holds_.push_back(reason_);
    timer_.apply();
}

PollTimer::Hold::~Hold() {
    const auto mine = std::find(timer_.holds_.begin(), timer_.holds_.end(), reason_);
    timer_.holds_.erase(mine);
    if (!timer_.held()) {
        timer_.endPause();
    }
    timer_.apply();
}

void PollTimer::beginPause() {
    pauses_.push_back({clock_.monotonic(), 0});
    if (pauses_.size() > kPausesKept) {
        pauses_.pop_front();
    }
}

void PollTimer::endPause() {
    pauses_.back().to = clock_.monotonic();
}

double PollTimer::heldSince(double time) const {
    double seconds = 0;
    for (const Pause& pause : pauses_) {
        const bool grows = held() && &pause == &pauses_.back();
        const double to = grows ? clock_.monotonic() : pause.to;
        seconds += std::max(0.0, to - std::max(time, pause.from));
    }
    return seconds;
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
