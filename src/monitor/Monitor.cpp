#include "monitor/Monitor.h"

#include "util/Numbers.h"
#include "util/Text.h"

#include <algorithm>

namespace drx9 {

namespace {
/// Percent of `done` out of `count`, as a whole number.
std::int16_t percent(int done, int count) {
    return toInt16(done * 100.0 / count);
}

std::string listName(const FilmRecord& film) {
    std::string name = film.FilmName;
    name.erase(name.find_last_not_of(' ') + 1);
    return utf8FromAnsi(name);
}
} // namespace

Monitor::Monitor(const MonitorParts& parts)
    : parts_(parts)
    , charts_(parts.graphs)
    , answers_(parts.link, parts.clock) {}

bool Monitor::Form_Load() {
    if (runMode_ == kExiting) {
        return false;
    }
    const ActionQueue::Scope scope(parts_.actions);
    parts_.LoadSettings();
    parts_.readouts.setDisplay(parts_.settings.Display);
    parts_.readouts.setGraph(parts_.settings.Graph);
    charts_.Init();
    window_->setHourglass(true);
    window_->showWindow();
    setRunMode(kStarting);
    parts_.discovery.Comm_Open(); // a failure leaves the communications menu enabled, as modes 0 and 1 do
    setRunMode(kIdle);
    window_->setHourglass(false);
    return true;
}

void Monitor::Form_QueryUnload() {
    parts_.settings.Display = parts_.readouts.Display();
    parts_.settings.Graph = parts_.readouts.Graph();
    parts_.SaveSettings();
    setRunMode(kExiting);
    window_->closeOtherWindows();
}

void Monitor::setRunMode(std::int16_t mode) {
    const ActionQueue::Scope scope(parts_.actions);
    if (runMode_ == kRunning) {
        if (parts_.settings.log.Type != kLogNone) {
            parts_.log.endBlock(currentFilmName());
        }
        parts_.log.runEnded();
        parts_.sleep.release();
    }
    runMode_ = mode;
    enterMode(mode);
    changed();
}

void Monitor::enterMode(std::int16_t mode) {
    switch (mode) {
    case kStarting:
        locked_ = false;
        parts_.timer.setWanted(false);
        break;
    case kIdle:
        locked_ = false;
        InitForm();
        // A lost link is opened again from the tick, so the tick goes on while it is lost.
        parts_.timer.setWanted(parts_.link.CommOK() || reconnecting_);
        break;
    case kRunning:
        locked_ = true;
        parts_.timer.setWanted(parts_.link.CommOK() || reconnecting_);
        startRun();
        break;
    default:
        parts_.timer.setWanted(false);
        break;
    }
}

void Monitor::startRun() {
    notice_.clear();
    runStart_ = parts_.clock.local();
    parts_.sleep.hold("A deposition run is in progress");
    changed(); // STOP shows before the exchanges below
    readings_.startTime = parts_.clock.monotonic();
    ZeroAll();
    parts_.commands.Comm_ZeroTime();
    answers_.noteExchange("T");
    if (parts_.settings.log.Type != kLogNone) {
        parts_.log.InitDataLog();
        parts_.log.startBlock(currentFilmName());
    }
}

void Monitor::ZeroAll() {
    points_.clear();
    charts_.restart();
    readings_.startTime = parts_.clock.monotonic();
    parts_.commands.Comm_ZeroTime();
    answers_.noteExchange("T");
}

void Monitor::InitForm() {
    const ActionQueue::Scope scope(parts_.actions);
    const bool onLine = parts_.link.CommOK();
    controlsVisible_ = onLine;
    started_ = true;
    filmNames_.clear();
    const int asked =
        requests_.film ? filmIndex_ : -1; // a choice that waits for the link outlives the refresh
    filmIndex_ = -1;
    if (!onLine) {
        title_ = std::string(kProgramName) + " - [Off Line]";
        if (!parts_.discovery.failure().empty()) {
            answers_.say(parts_.discovery.failure());
        }
        changed();
        return;
    }
    wasOnLine_ = true;
    answers_.begin();
    title_ =
        std::string(kProgramName) + " - [Ver. " + utf8FromAnsi(trimmed(parts_.link.Comm_VersionText())) + "]";
    changed();
    // What the exchange before was answered says nothing of these: a film read under another status than 0 is
    // refused, and nobody would read the list again.
    parts_.link.setCommStatus(comm::kOk);
    const bool whole = readFilms();
    selectFilmAfterRefresh(asked, whole);
    if (!closing_) {
        systemKnown_ = parts_.commands.Comm_GetSystem(parts_.settings.system);
        answers_.noteExchange("C?");
        if (!systemKnown_) {
            answers_.noteFailure("B?: not read"); // the outcome is that of "C?"
        }
    }
    answers_.publish();
    // A record that one exchange could not read is told by systemKnown(). Whether the link lives the next
    // reading finds out: left as it is, the status would open the link again, refresh again, and never come
    // to a reading.
    parts_.link.setCommStatus(comm::kOk);
    changed();
}

bool Monitor::readFilms() {
    parts_.progress.ProgressShow("Reading DRX-9 Films", ProgressOwner::MainWindow);
    const int count = std::min<int>(parts_.link.FilmCount(), 99);
    for (int i = 1; i <= count && !closing_; ++i) {
        parts_.progress.setProgress(percent(i, count));
        FilmRecord film;
        if (parts_.commands.Comm_GetFilm(i, film, Messages::NonBlocking)) {
            answers_.noteExchange("A");
            break;
        }
        parts_.films[static_cast<std::size_t>(i)] = film;
        filmNames_.push_back(listName(film));
        changed();
    }
    parts_.progress.ProgressHide();
    return static_cast<int>(filmNames_.size()) == count;
}

void Monitor::selectFilmAfterRefresh(int asked, bool whole) {
    const int listed = static_cast<int>(filmNames_.size());
    if (filmIndex_ >= 0) {
        return; // chosen while the list was being read
    }
    if (asked >= 0 && asked < listed) {
        filmIndex_ = asked;
    } else if (currentFilm_ >= 1 && currentFilm_ <= listed) {
        filmIndex_ = currentFilm_ - 1;
    } else if (listed > 0 && (whole || currentFilm_ < 1)) { // else the film in use was only not read
        cboFilms_Click(0); // counts as a selection, so that list and instrument agree
    }
}

void Monitor::cmdStartStop_Click() {
    requests_.startStop = true;
    changed();
}

void Monitor::cmdZero_Click() {
    requests_.zero = true;
    changed();
}

void Monitor::cmdShutter_Click() {
    requests_.shutter = true;
    changed();
}

void Monitor::cboFilms_Click(int index) {
    filmIndex_ = index;
    requests_.film = true;
    changed();
}

void Monitor::sensorItemClicked(std::int16_t item) {
    parts_.readouts.sensorItemClicked(item);
    if (answers_.hasReading()) {
        refreshReadouts();
    } else {
        changed();
    }
}

std::string Monitor::shutterCaption() const {
    return shutterState_ > 0 ? "Close Shutter" : "Open Shutter";
}

std::string Monitor::startStopCaption() const {
    return runMode_ == kRunning ? "STOP" : "START";
}

const FilmRecord* Monitor::currentFilm() const {
    return currentFilm_ >= 0 && currentFilm_ <= 99 ? &parts_.films[static_cast<std::size_t>(currentFilm_)]
                                                   : nullptr;
}

std::string Monitor::currentFilmName() const {
    const FilmRecord* film = currentFilm();
    return film != nullptr ? film->FilmName : std::string(8, ' ');
}

void Monitor::changed() {
    if (window_ != nullptr) {
        window_->changed();
    }
}

} // namespace drx9
