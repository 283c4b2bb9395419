#include "monitor/Lifecycle.h"

#include "monitor/Texts.h"
#include "util/ProgramName.h"
#include "util/Text.h"

#include <string>
#include <utility>

namespace drx9 {

Lifecycle::Lifecycle(Parts parts)
    : parts_(std::move(parts)) {}

bool Lifecycle::Form_Load() {
    if (parts_.monitor.RunMode() == RunState::Exiting) {
        return false;
    }
    const ActionQueue::Scope scope(parts_.actions);
    parts_.settings.load();
    parts_.run.initCharts();
    parts_.window.setHourglass(true);
    parts_.window.showWindow();
    parts_.monitor.setRunMode(RunState::Starting);
    // A failure leaves the communications menu enabled, as modes 0 and 1 do.
    parts_.discovery.Comm_Open(Messages::Blocking, [this] { return parts_.actions.closing(); });
    parts_.monitor.setRunMode(RunState::Idle);
    if (parts_.instrument.outOfStep()) {
        parts_.instrument.InitForm(); // there is nothing yet that could be kept
    }
    parts_.window.setHourglass(false);
    return true;
}

void Lifecycle::close() {
    parts_.questions.askAll(parts_.fault);
    Form_QueryUnload();
}

void Lifecycle::Form_QueryUnload() {
    std::string notSaved;
    step([&] { notSaved = parts_.settings.save(); });
    step([this] { parts_.monitor.setRunMode(RunState::Exiting); });
    if (!notSaved.empty() && !sessionEnds()) {
        parts_.boxes.show(filled(monitorText::kSettingsNotSaved, {notSaved}), kProgramName,
                          MessageIcon::Exclamation);
    }
    step([this] { parts_.window.closeOtherWindows(); });
}

void Lifecycle::lastWords() {
    if (parts_.monitor.RunMode() == RunState::Exiting) {
        return;
    }
    try {
        parts_.monitor.exitAtOnce();
        static_cast<void>(parts_.settings.save());
    } catch (const std::exception&) {
        // Nobody is left to be told.
    }
}

/// One step of closing: what it throws must not keep the next from being made.
void Lifecycle::step(const std::function<void()>& action) const {
    try {
        action();
    } catch (const std::exception& error) {
        parts_.fault(error);
    }
}

} // namespace drx9
