// The operator's requests, carried out by the tick in their fixed order: film, zero, shutter, start/stop.
// Each flag is cleared before its first exchange, so that a click during the exchange counts for the next
// tick.
#include "monitor/Monitor.h"

#include <utility>

namespace drx9 {

void Monitor::takeRequests() {
    takeFilmRequest();
    if (linkFine()) {
        takeZeroRequest();
    }
    if (linkFine()) {
        takeShutterRequest();
    }
    if (runMode_ != kStarting && linkFine()) {
        queryShutter();
        takeStartStopRequest();
    }
}

void Monitor::takeFilmRequest() {
    if (!std::exchange(requests_.film, false) || filmIndex_ < 0) {
        return; // an empty selection drops the request
    }
    const int number = filmIndex_ + 1;
    parts_.commands.Comm_SelectFilm(number);
    answers_.noteRequest("D");
    if (parts_.link.outcome() == comm::kTimeout) {
        requests_.film = true; // unknown whether it arrived: again when the link is back
        return;
    }
    currentFilm_ = number;
    FilmRecord film;
    if (!parts_.commands.Comm_GetFilm(number, film, Messages::NonBlocking)) {
        parts_.films[static_cast<std::size_t>(number)] = film;
    }
    answers_.noteExchange("A");
    refreshReadouts();
}

void Monitor::takeZeroRequest() {
    if (!std::exchange(requests_.zero, false)) {
        return;
    }
    parts_.commands.Comm_ZeroThickness();
    answers_.noteRequest("S");
    if (parts_.link.outcome() == comm::kTimeout) {
        requests_.zero = true; // nothing arrived, or nobody knows: again when the link is back
        return;
    }
    parts_.commands.Comm_ZeroTime(); // ZeroAll sends it once more: kept
    answers_.noteExchange("T");
    ZeroAll();
}

void Monitor::takeShutterRequest() {
    if (!std::exchange(requests_.shutter, false)) {
        return;
    }
    if (shutterState_ == 0) {
        parts_.commands.Comm_SetUnit(1);
        if (runMode_ == kIdle) {
            requests_.startStop = true; // opening the shutter while idle starts a run in the same tick
        }
    } else {
        parts_.commands.Comm_SetUnit(0); // also after a failed query: -999 is not 0
    }
    answers_.noteRequest("U");
}

void Monitor::queryShutter() {
    const std::int16_t answer = parts_.commands.Comm_GetUnit();
    // The wrapper returns the status on failure, and 1 would read as open: the status decides.
    shutterState_ = parts_.link.outcome() == comm::kOk ? answer : kShutterUnknown;
    answers_.noteExchange("U?");
    changed();
}

void Monitor::takeStartStopRequest() {
    if (!std::exchange(requests_.startStop, false)) {
        return;
    }
    setRunMode(runMode_ == kIdle ? kRunning : kIdle);
}

} // namespace drx9
