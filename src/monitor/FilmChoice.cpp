#include "monitor/FilmChoice.h"

#include "monitor/Texts.h"
#include "util/Text.h"

#include <utility>

namespace drx9 {

namespace {
constexpr double kNothingRestartsFaster = 3; // s
constexpr std::size_t kNameLength = 8;
} // namespace

std::string filmListName(const FilmRecord& film) {
    std::string name = film.FilmName;
    name.erase(name.find_last_not_of(' ') + 1);
    return utf8FromAnsi(name);
}

FilmChoice::FilmChoice(const Films& films, const Link& link, Discovery& discovery,
                       const LinkSettings& settings, const PollTimer& timer, const Clock& clock)
    : films_(films)
    , link_(link)
    , settings_(settings)
    , timer_(timer)
    , clock_(clock) {
    discovery.addListener(*this);
}

void FilmChoice::clearList() {
    names_.clear();
    index_ = -1;
}

bool FilmChoice::setList(std::vector<std::string> names, int asked) {
    names_ = std::move(names);
    const int listed = static_cast<int>(names_.size());
    index_ = -1;
    if (asked >= 0 && asked < listed) {
        index_ = asked;
        return false;
    }
    if (current_ >= 1 && current_ <= listed) {
        index_ = current_ - 1;
        return false;
    }
    if (listed == 0 || current_ >= 1) {
        return false; // the film in use is only not listed
    }
    index_ = 0; // counts as a selection, so that list and instrument agree
    return true;
}

const FilmRecord* FilmChoice::current() const {
    return current_ >= 0 && current_ <= kMostFilms ? &films_[static_cast<std::size_t>(current_)] : nullptr;
}

std::string FilmChoice::currentName() const {
    return current() != nullptr ? current()->FilmName : std::string(kNameLength, ' ');
}

std::string FilmChoice::nameBesideList() const {
    return index_ < 0 && current_ >= 1 ? filmListName(*current()) : std::string();
}

void FilmChoice::showCurrent() {
    index_ = current_ >= 1 && current_ <= static_cast<int>(names_.size()) ? current_ - 1 : -1;
}

void FilmChoice::selected(int number, bool confirmed) {
    current_ = number;
    confirmed_ = confirmed;
    confirmedAtLoss_ = confirmedAtLoss_ && confirmed;
    linkThen_ = settings_;
    versionThen_ = link_.CommVersion();
}

void FilmChoice::unconfirm() {
    confirmed_ = confirmedAtLoss_ = false;
}

std::string FilmChoice::mark() const {
    if (current_ < 1) {
        return {};
    }
    if (!confirmed_) {
        return monitorText::kFilmNotConfirmed;
    }
    return index_ < 0 ? monitorText::kListEndsBefore : std::string();
}

bool FilmChoice::takeRepeat() {
    return std::exchange(confirmedAtLoss_, false) && link_.CommVersion() == versionThen_ && index_ >= 0;
}

void FilmChoice::linkOpening() {
    const double last = link_.lastReplyTime();
    const double silence = clock_.monotonic() - last - timer_.heldSince(last);
    if (silence > kNothingRestartsFaster || !sameInstrument(settings_, linkThen_)) {
        confirmed_ = false;
    }
}

void FilmChoice::linkOpened() {
    confirmed_ = confirmed_ && link_.CommVersion() == versionThen_;
}

} // namespace drx9
