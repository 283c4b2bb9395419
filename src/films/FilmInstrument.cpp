#include "films/FilmInstrument.h"

#include <algorithm>

namespace drx9 {

void FilmInstrument::begin() {
    timeouts_ = 0;
    unanswered_ = false;
    longest_ = 0;
    link_.watch().begin();
}

void FilmInstrument::beginExchange() {
    link_.setCommStatus(comm::kOk);
    reached_ = true;
    began_ = clock_.monotonic();
}

void FilmInstrument::endExchange(std::uint16_t status) {
    timeouts_ = comm::isSilence(status) ? timeouts_ + 1 : 0;
    unanswered_ = unanswered_ || timeouts_ > 0;
    if (status == comm::kOk) {
        longest_ = std::max(longest_, clock_.monotonic() - began_);
    }
}

Commands::UnitAnswer FilmInstrument::unit() {
    beginExchange();
    const Commands::UnitAnswer answer = commands_.Comm_GetUnit();
    endExchange(answer.status);
    return answer;
}

Commands::FilmAnswer FilmInstrument::readFilm(int number, Messages messages) {
    beginExchange();
    Commands::FilmAnswer answer = commands_.Comm_GetFilm(number, messages);
    endExchange(answer.status);
    return answer;
}

std::uint16_t FilmInstrument::writeFilm(int number, const FilmRecord& film) {
    beginExchange();
    const std::uint16_t status = commands_.Comm_SetFilm(number, film);
    endExchange(status);
    return status;
}

std::uint16_t FilmInstrument::resetFilms() {
    beginExchange();
    const std::uint16_t status = commands_.Comm_FilmDefaults();
    endExchange(status);
    return status;
}

/// An answer that is one too many moves all behind it by one, and then the last one is still to come: within
/// the time of one exchange. After a time-out there is nothing to wait for.
FilmInstrument::Step FilmInstrument::look() {
    if (timeouts_ == 0) {
        link_.listen(lookTime());
    }
    const StepWatch& watch = link_.watch();
    const bool doubtful = watch.doubtful() || (watch.mayHaveMoved() && unanswered_);
    const Step step = watch.surplus() ? Step::Broken : doubtful ? Step::Doubtful : Step::Sound;
    longest_ = 0;
    unanswered_ = false;
    link_.watch().begin();
    return step;
}

} // namespace drx9
