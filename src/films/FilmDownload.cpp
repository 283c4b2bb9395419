#include "films/FilmDownload.h"

#include "films/FilmMismatches.h"
#include "films/FilmRows.h"
#include "films/FilmText.h"
#include "films/Texts.h"
#include "link/Crc.h"
#include "platform/ShownProgress.h"
#include "util/ProgramName.h"
#include "util/Text.h"

#include <algorithm>

namespace drx9 {

namespace {
constexpr int kAll = 1; ///< the button's index for all films
} // namespace

LibraryNotice FilmDownload::run() {
    writeFilms();
    if (!parts_.stopped()) {
        VerifyFilms();
    }
    if (parts_.instrument.silent()) {
        report_.fail(filmText::kNoAnswer);
    }
    return report_.notice();
}

bool FilmDownload::shutterClosed() {
    const Commands::UnitAnswer shutter = parts_.instrument.unit();
    const bool sound = parts_.instrument.look() != FilmInstrument::Step::Broken;
    if (!shutter.unit || !sound) {
        const std::string reason = shutter.status != comm::kOk ? commStatusText(shutter.status)
                                   : !shutter.unit             ? commStatusText(comm::kNoData)
                                                               : filmText::kShutterOutOfStep;
        parts_.library.tell(filled(filmText::kShutterUnknown, {reason}), Tone::Alarm);
        parts_.list.setHourglass(false);
        return false;
    }
    if (*shutter.unit > 0) {
        parts_.boxes.show(filmText::kShutterOpen, filmText::kShutterOpenTitle, MessageIcon::Exclamation);
        return false;
    }
    return true;
}

// ---- The rows ----

int FilmDownload::rows() const {
    return std::min(parts_.list.rowCount(), parts_.instrument.FilmCount());
}

bool FilmDownload::takes(int film) const {
    return index_ == kAll || parts_.list.isSelected(film - 1);
}

/// What the current row is called in a report.
std::string FilmDownload::rowName(int film) const {
    const std::string name = trimmed(parts_.list.filmName());
    return name.empty() ? filled(filmText::kRow, {std::to_string(film)}) : name;
}

// ---- Writing ----

void FilmDownload::writeFilms() {
    const ShownProgress shown(parts_.progress, filmText::kWriting, ProgressOwner::FilmWindow);
    const int count = rows();
    int expected = 0;
    for (int i = 1; i <= (index_ == kAll ? count : parts_.list.rowCount()); ++i) {
        expected += takes(i) ? 1 : 0;
    }
    report_.expect(expected);
    for (int i = 1; i <= count && !parts_.stopped(); ++i) {
        parts_.list.setCurrentRow(i - 1);
        if (takes(i)) {
            shown.reach(i, count);
            writeRow(i);
        }
    }
    nameRest();
    lookAtWritten();
}

/// Accepted may be another film than it seems: what the instrument holds is then known when it is read back.
void FilmDownload::lookAtWritten() {
    if (written_.empty() || parts_.ended()) {
        return;
    }
    bool sure = !parts_.instrument.unanswered();
    if (!parts_.instrument.silent() && parts_.instrument.look() != FilmInstrument::Step::Sound) {
        report_.fail(filmText::kSentOutOfStep);
        sure = false;
    }
    for (const int film : written_) {
        if (!sure) {
            parts_.forget(film);
        }
    }
}

/// The selected films that the instrument has no place for. That all films may be more is known.
void FilmDownload::nameRest() {
    const std::string heading = filled(filmText::kNoPlace, {std::to_string(parts_.instrument.FilmCount())});
    for (int i = rows() + 1; i <= parts_.list.rowCount() && index_ != kAll; ++i) {
        if (takes(i)) {
            parts_.list.setCurrentRow(i - 1);
            report_.name(heading, rowName(i));
        }
    }
}

void FilmDownload::writeRow(int film) {
    FilmRecord record = parts_.film(film);
    const std::string name = parts_.list.filmName();
    DBFilmToComm(parts_.library, film, name, parts_.list.manySensors(), record);
    const std::string named = rowName(film);
    if (record.FilmName == kNotAFilm) {
        // A film that is found has a material that is not, or the name that stands for none.
        const bool found = parts_.library.found(Dat::DBSelected) && named != kNotAFilm;
        report_.name(found ? filmText::kMaterialNotLookedUp : filmText::kNotLookedUp, named);
        return;
    }
    if (!parts_.isKnown(film) && hasEmptyValues(parts_.library)) {
        report_.name(filmText::kNotKnown, named);
        return;
    }
    record.FilmName = wireFilmName(record.FilmName);
    if (hasEndlessValues(parts_.library) ||
        filmPayload(record).size() + filmCommand(film).size() > kLongestCommand) {
        report_.name(filmText::kTooLong, named);
        return;
    }
    noteFaults(name, named);
    const std::uint16_t status = parts_.instrument.writeFilm(film, record);
    written_.push_back(film);
    if (status == comm::kOk) {
        parts_.film(film) = record;
        report_.done(1);
        return;
    }
    if (comm::isUnanswered(status)) {
        parts_.forget(film);
    }
    report_.name(filled(comm::isUnanswered(status) ? filmText::kNotAnswered : filmText::kNotAccepted,
                        {commStatusText(status)}),
                 std::to_string(film));
}

/// What is worth a look at a film that is sent all the same.
void FilmDownload::noteFaults(const std::string& name, const std::string& named) {
    if (parts_.library.column(Dat::DBSelected, "FilmName").size() > 1) {
        report_.name(filmText::kSameName, named);
    }
    if (characterCount(trimmedRight(name)) > kFilmNameLength) {
        report_.name(filmText::kNamesCut, named);
    }
    if (!parts_.library.found(Dat::Material)) {
        report_.name(filmText::kMaterialMissing, named);
    }
}

// ---- Verification ----

void FilmDownload::VerifyFilms() {
    const ShownProgress shown(parts_.progress, filmText::kVerifying, ProgressOwner::FilmWindow);
    const int count = rows();
    bool goesOn = true;
    for (int i = 1; i <= count && goesOn && !parts_.stopped(); ++i) {
        parts_.list.setCurrentRow(i - 1);
        if (takes(i)) {
            parts_.list.ShowDBFilm();
            shown.reach(i, count);
            goesOn = verifyRow(i);
        }
    }
    keepReadBack();
}

/// False when the operator cancelled. What differs is asked about only when the answer is surely this
/// film's. A film that cannot be read has a box; right behind another such film it is only named in the
/// report.
bool FilmDownload::verifyRow(int film) {
    const Commands::FilmAnswer readBack = reads_.read(film, messages_);
    messages_ = readBack.film ? Messages::Blocking : Messages::Silent;
    if (!readBack.film) {
        report_.name(filmText::kNotReadBack, std::to_string(film));
        return true;
    }
    const bool wasSent = std::find(written_.begin(), written_.end(), film) != written_.end();
    if (wasSent && !parts_.library.found(Dat::DBSelected)) {
        report_.name(filmText::kNotCompared, rowName(film));
    }
    parts_.films[0] = *readBack.film;
    const auto mismatches =
        filmMismatches(parts_.library, *readBack.film, parts_.list.manySensors(), parts_.locale);
    if (mismatches.empty() || !keepReadBack()) {
        return true;
    }
    return std::all_of(mismatches.begin(), mismatches.end(), [&](const FilmMismatch& mismatch) {
        return parts_.boxes.askOkCancel(mismatch.text(film), kProgramName, MessageIcon::Information);
    });
}

/// What was read back is what the instrument holds, where it is surely each film's own; true when all are.
bool FilmDownload::keepReadBack() {
    const FilmReads::Taken taken = reads_.take();
    for (const FilmRecord& film : taken.own) {
        parts_.film(film.FilmNum) = film;
    }
    for (const int number : taken.lost) {
        report_.name(filmText::kNotReadBack, std::to_string(number));
    }
    return taken.lost.empty();
}

} // namespace drx9
