#include "monitor/RequestDesk.h"

#include "monitor/Texts.h"

#include <utility>

namespace drx9 {

namespace {
/// The status that failed first.
std::uint16_t firstFailure(std::uint16_t first, std::uint16_t second) {
    return first != comm::kOk ? first : second;
}
} // namespace

RequestDesk::RequestDesk(const Parts& parts)
    : parts_(parts)
    , report_(parts.clock) {}

bool RequestDesk::mayGoOn(bool all) const {
    return parts_.keeper.fine() && !parts_.actions.closing() && (all || !parts_.actions.waiting());
}

void RequestDesk::carryOut(RunHost& host, bool all) {
    report_.beginRound();
    if (mayGoOn(all)) {
        takeFilm(host);
    }
    if (mayGoOn(all)) {
        takeZero(host);
    }
    // The shutter, its query and the start that it raises belong together.
    const bool shutter = mayGoOn(all) && takeShutter(host);
    if (host.RunMode() == RunState::Starting || !mayGoOn(all || shutter)) {
        return;
    }
    queryShutter(host);
    // A query that failed does not hold a start or stop up.
    const bool waits = parts_.actions.closing() || (parts_.actions.waiting() && !all && !shutter);
    if (!waits && std::exchange(flags_.startStop, false)) {
        host.toggleRun();
    }
}

void RequestDesk::takeFilm(RunHost& host) {
    if (!std::exchange(flags_.film, false) || parts_.choice.index() < 0) {
        return; // an empty selection drops the request
    }
    const int number = parts_.choice.index() + 1;
    parts_.link.watch().begin();
    const std::uint16_t status = note("D", parts_.commands.Comm_SelectFilm(number));
    if (status == comm::kOk) {
        readFilm(number);
    }
    parts_.choice.selected(number, status == comm::kOk && inStep());
    report_.ended(monitorText::kFilm, status, inStep());
    host.filmChanged();
}

void RequestDesk::readFilm(int number) {
    const Commands::FilmAnswer answer = parts_.commands.Comm_GetFilm(number, Messages::NonBlocking);
    note("A", answer.status);
    if (answer.film && inStep()) {
        parts_.films[static_cast<std::size_t>(number)] = *answer.film;
    }
}

void RequestDesk::takeZero(RunHost& host) {
    if (!std::exchange(flags_.zero, false)) {
        return;
    }
    parts_.link.watch().begin();
    std::uint16_t status = note("S", parts_.commands.Comm_ZeroThickness());
    // ZeroAll sends it once more: kept.
    status = firstFailure(status, note("T", parts_.commands.Comm_ZeroTime()));
    status = firstFailure(status, host.ZeroAll());
    report_.ended(monitorText::kZero, status, inStep());
}

bool RequestDesk::takeShutter(const RunHost& host) {
    if (!std::exchange(flags_.shutter, false)) {
        return false;
    }
    parts_.link.watch().begin();
    if (shutterState_ == 0) {
        openShutter(host);
    } else {
        // Also when the query failed: kept.
        const std::uint16_t status = note("U", parts_.commands.Comm_SetUnit(0));
        report_.ended(monitorText::kShutter, status, inStep());
    }
    return true;
}

void RequestDesk::openShutter(const RunHost& host) {
    const std::uint16_t status = note("U", parts_.commands.Comm_SetUnit(1));
    report_.ended(monitorText::kShutter, status, inStep());
    if (host.RunMode() != RunState::Idle) {
        return;
    }
    if (status == comm::kOk && inStep()) {
        flags_.startStop = true; // opening the shutter while idle starts a run in the same tick
    } else if (status == comm::kOk || comm::isUnanswered(status)) {
        unansweredOpening_ = parts_.clock.monotonic();
    }
}

void RequestDesk::queryShutter(RunHost& host) {
    const Commands::UnitAnswer answer = parts_.commands.Comm_GetUnit();
    shutterState_ = answer.unit.value_or(kShutterUnknown);
    note("U?", answer.status);
    if (answer.unit) {
        startBehindShutter(*answer.unit, host.RunMode());
    }
    host.shutterQueried();
}

void RequestDesk::startBehindShutter(std::int16_t answer, RunState runMode) {
    const std::optional<double> sent = std::exchange(unansweredOpening_, std::nullopt);
    if (sent && answer > 0 && runMode == RunState::Idle && !parts_.keeper.longLossSince(*sent)) {
        flags_.startStop = true;
    }
}

bool RequestDesk::takeStop(RunState runMode) {
    return runMode == RunState::Running && std::exchange(flags_.startStop, false);
}

void RequestDesk::dropWaiting() {
    const std::pair<bool, const char*> waiting[] = {{flags_.film, monitorText::kFilm},
                                                    {flags_.zero, monitorText::kZero},
                                                    {flags_.shutter, monitorText::kShutter},
                                                    {flags_.startStop, monitorText::kStart}};
    report_.beginRound();
    for (const auto& [flag, name] : waiting) {
        if (flag) {
            report_.notSent(name);
        }
    }
    if (flags_.film) {
        parts_.choice.showCurrent();
    }
    flags_ = {};
    unansweredOpening_.reset();
}

void RequestDesk::runStarts() {
    report_.clear();
    unansweredOpening_.reset();
}

/// Nothing came late or unasked since the request began.
bool RequestDesk::inStep() const {
    return !parts_.link.watch().broken();
}

std::uint16_t RequestDesk::note(const char* command, std::uint16_t status) {
    parts_.answers.noteExchange(command, status);
    return status;
}

} // namespace drx9
