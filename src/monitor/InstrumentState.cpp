#include "monitor/InstrumentState.h"

#include "monitor/Texts.h"
#include "util/Text.h"

#include <utility>

namespace drx9 {

void InstrumentState::InitForm() {
    const ActionQueue::Scope scope(parts_.actions);
    owed_ = outOfStep_ = false;
    onLine_ = parts_.link.CommOK();
    started_ = true;
    if (!onLine_) {
        showOffLine();
        return;
    }
    parts_.keeper.noteOnLine();
    parts_.answers.begin();
    title_ =
        std::string(kProgramName) + " - [Ver. " + utf8FromAnsi(trimmed(parts_.link.Comm_VersionText())) + "]";
    parts_.window.changed();
    // What the exchange before was answered says nothing of these: a film read under another status than 0 is
    // refused, and nobody would read the list again.
    parts_.link.setCommStatus(comm::kOk);
    take(parts_.refresh.run());
    parts_.answers.publish();
    // A record that one exchange could not read is told by systemKnown(). Whether the link lives the next
    // reading finds out: left as it is, the status would open the link again, refresh again, and never come
    // to a reading.
    parts_.link.setCommStatus(comm::kOk);
    parts_.window.changed();
}

void InstrumentState::showOffLine() {
    parts_.choice.clearList();
    title_ = std::string(kProgramName) + " - [Off Line]";
    if (!parts_.discovery.failure().empty()) {
        parts_.answers.say(parts_.discovery.failure());
    }
    parts_.window.changed();
}

void InstrumentState::take(InstrumentRefresh::Result result) {
    if (result.end == InstrumentRefresh::End::OutOfStep) {
        outOfStep_ = true;
        systemKnown_ = false;
        parts_.answers.noteFailure(monitorText::kRefreshOutOfStep);
        return;
    }
    systemKnown_ = result.recordAsked ? result.recordRead : systemKnown_;
    if (result.end == InstrumentRefresh::End::Cut) {
        owed_ = true;
        return;
    }
    // A choice that waits outlives the refresh.
    const int asked = parts_.desk.waiting().film ? parts_.choice.index() : -1;
    if (parts_.choice.setList(std::move(result.films), asked)) {
        parts_.desk.raiseFilm();
    }
}

} // namespace drx9
