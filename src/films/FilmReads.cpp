#include "films/FilmReads.h"

#include <utility>

namespace drx9 {

Commands::FilmAnswer FilmReads::read(int number, Messages messages) {
    Commands::FilmAnswer answer = parts_.instrument.readFilm(number, messages);
    if (answer.film) {
        films_.push_back(*answer.film);
    }
    return answer;
}

FilmReads::Taken FilmReads::take() {
    Taken taken;
    if (films_.empty()) {
        return taken;
    }
    using Step = FilmInstrument::Step;
    const bool unanswered = parts_.instrument.unanswered();
    const Step step = parts_.instrument.look();
    const bool doubtful = unanswered || step == Step::Doubtful;
    lastIsLost_ = false;
    const bool own = step != Step::Broken && (!doubtful || confirmSuspects());
    before_ = films_.back();
    if (own && lastIsLost_) {
        taken.lost.push_back(before_->FilmNum);
        films_.pop_back();
    }
    for (FilmRecord& film : std::exchange(films_, {})) {
        if (own) {
            taken.own.push_back(std::move(film));
        } else {
            taken.lost.push_back(film.FilmNum);
        }
    }
    return taken;
}

bool FilmReads::likeTheOneBefore(std::size_t i) const {
    std::optional<FilmRecord> before = i == 0 ? before_ : films_[i - 1];
    if (before) {
        before->FilmNum = films_[i].FilmNum;
    }
    return before == films_[i];
}

/// Where answers have moved over films that are alike, the last one of these has another's answer.
bool FilmReads::isSuspect(std::size_t i) const {
    const bool endsTheRow = i + 1 == films_.size() || !likeTheOneBefore(i + 1);
    return endsTheRow && likeTheOneBefore(i);
}

/// Reads the suspects once more: the line is quiet now. False when the films are not their own; the last one
/// alone is lost where nothing answers any more.
bool FilmReads::confirmSuspects() {
    bool asked = false;
    for (std::size_t i = 0; i < films_.size(); ++i) {
        if (!isSuspect(i)) {
            continue;
        }
        asked = true;
        Commands::FilmAnswer again;
        if (!parts_.stopped()) {
            again = parts_.instrument.readFilm(films_[i].FilmNum, Messages::Silent);
        }
        lastIsLost_ = !again.film && i + 1 == films_.size();
        if (again.film != films_[i] && !lastIsLost_) {
            return false;
        }
    }
    return !asked || parts_.instrument.look() != FilmInstrument::Step::Broken;
}

} // namespace drx9
