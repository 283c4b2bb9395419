#include "films/FilmUpload.h"

#include "films/FilmRows.h"
#include "films/Texts.h"
#include "util/ProgramName.h"
#include "util/Text.h"

#include <algorithm>
#include <utility>

namespace drx9 {

LibraryNotice FilmUpload::run() {
    const ShownProgress shown(parts_.progress, filmText::kReading, ProgressOwner::FilmWindow);
    readFilms(shown);
    if (!failure_.empty()) {
        parts_.boxes.show(failure_, kProgramName, MessageIcon::None);
    }
    if (failed_ != 0) {
        parts_.boxes.show(filled(filmText::kUploadError, {std::to_string(failed_)}),
                          filmText::kUploadErrorTitle, MessageIcon::Critical);
    }
    return report_.notice();
}

void FilmUpload::readFilms(const ShownProgress& shown) {
    report_.expect(parts_.instrument.FilmCount());
    double stored = parts_.clock.monotonic();
    for (int i = 1; i <= parts_.instrument.FilmCount() && failed_ == 0 && !parts_.stopped(); ++i) {
        shown.reach(i, parts_.instrument.FilmCount());
        readFilm(i);
        if (parts_.clock.monotonic() - stored + parts_.instrument.lookTime() >= kStoreWithin) {
            store();
            stored = parts_.clock.monotonic();
        }
    }
    store();
}

void FilmUpload::readFilm(int number) {
    const Commands::FilmAnswer answer = reads_.read(number, Messages::Silent);
    if (answer.film) {
        return;
    }
    fail(number);
    failure_ = answer.failure;
    report_.fail(filled(filmText::kFilmFailed,
                        {std::to_string(number),
                         answer.status == comm::kOk ? filmText::kNoFilm : commStatusText(answer.status)}));
}

void FilmUpload::fail(int number) {
    failed_ = failed_ == 0 ? number : std::min(failed_, number);
}

/// Films that may be others' are not stored.
void FilmUpload::store() {
    const FilmReads::Taken taken = reads_.take();
    storeFilms(taken.own);
    for (const int number : taken.lost) {
        report_.fail(filmText::kOutOfStep);
        report_.name(filmText::kNotStored, std::to_string(number));
        fail(number);
    }
}

/// In one commit.
void FilmUpload::storeFilms(const std::vector<FilmRecord>& films) {
    if (films.empty()) {
        return;
    }
    if (!parts_.library.gatherCommits()) {
        report_.fail(parts_.library.standing().text);
    }
    if (std::exchange(replacements_, parts_.library.replacements()) != replacements_) {
        report_.undo();
        report_.fail(filmText::kReplaced);
    }
    int stored = 0;
    for (const FilmRecord& film : films) {
        parts_.film(film.FilmNum) = film;
        stored += storeFilm(film) ? 1 : 0;
    }
    if (parts_.library.commitGathered()) {
        report_.done(stored);
    } else {
        report_.fail(parts_.library.notice().text);
    }
}

bool FilmUpload::storeFilm(const FilmRecord& film) {
    const StoredFilm stored = CommToDBFilm(parts_.library, film);
    const std::string number = std::to_string(film.FilmNum);
    if (!stored.row) {
        report_.name(filmText::kNotStored, number);
    } else {
        for (const std::string& field : stored.unfit) {
            report_.name(filmText::kNotStored, filled(filmText::kFieldOf, {field, number}));
        }
    }
    if ((!stored.row || !stored.unfit.empty()) && !parts_.library.notice().text.empty()) {
        report_.fail(parts_.library.notice().text);
    }
    return stored.row;
}

} // namespace drx9
