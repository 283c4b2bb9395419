#include "films/FilmTransfer.h"

#include "films/FilmMismatches.h"
#include "films/FilmRows.h"
#include "films/FilmText.h"
#include "films/ShownProgress.h"
#include "films/Texts.h"
#include "link/Crc.h"
#include "util/Numbers.h"
#include "util/ProgramName.h"
#include "util/Text.h"

#include <algorithm>
#include <utility>

namespace drx9 {

namespace {
constexpr int kAll = 1; ///< the button's index for all films

std::int16_t percent(int part, int whole) {
    return toInt16(part * 100.0 / whole);
}
} // namespace

/// A transfer on the stack: no tick, no queued action, no other transfer.
class FilmTransfer::Run {
public:
    explicit Run(FilmTransfer& transfer)
        : transfer_(transfer)
        , scope_(transfer.parts_.actions) {
        transfer_.running_ = true;
        transfer_.lasting_ = {};
        transfer_.parts_.instrument.begin();
        transfer_.parts_.library.forgetNotice();
    }
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;
    ~Run() { transfer_.running_ = false; }

private:
    FilmTransfer& transfer_;
    ActionQueue::Scope scope_;
};

bool FilmTransfer::stopped() const {
    return parts_.instrument.silent() || ended();
}

bool FilmTransfer::ended() const {
    return parts_.ends && parts_.ends();
}

/// In doubt they are read once more: the line is quiet now.
bool FilmTransfer::areTheirOwn(const Read& read) {
    const FilmInstrument::Step step = parts_.instrument.look();
    if (step != FilmInstrument::Step::Doubtful) {
        return step == FilmInstrument::Step::Sound;
    }
    const bool same = std::all_of(read.begin(), read.end(), [this](const FilmRecord& film) {
        return !stopped() && parts_.instrument.readFilm(film.FilmNum, Messages::Silent).film == film;
    });
    return same && parts_.instrument.look() != FilmInstrument::Step::Broken;
}

bool FilmTransfer::isKnown(int number) const {
    return parts_.films[static_cast<std::size_t>(number)].FilmNum == number;
}

void FilmTransfer::keep(int number, const FilmRecord& film) {
    parts_.films[static_cast<std::size_t>(number)] = film;
}

void FilmTransfer::forget(int number) {
    parts_.films[static_cast<std::size_t>(number)].FilmNum = 0;
}

// ---- Upload ----

void FilmTransfer::upload() {
    if (running_ || (parts_.library.uploadOverwrites() && !askUnsaved()) || ended()) {
        return;
    }
    const Run run(*this);
    if (!parts_.library.openUploadCopy()) {
        return;
    }
    const LibraryNotice opened = parts_.library.notice();
    parts_.library.forgetNotice();
    parts_.list.refreshLists();
    TransferReport report("read");
    {
        const ShownProgress shown(parts_.progress, filmText::kReading);
        const int failed = readFilms(report);
        if (failed != 0) {
            parts_.boxes.show(filled(filmText::kUploadError, {std::to_string(failed)}),
                              filmText::kUploadErrorTitle, MessageIcon::Critical);
        }
    }
    parts_.list.refreshLists();
    parts_.list.ShowDBFilm();
    const LibraryNotice read = report.notice();
    parts_.library.tell(opened.text + (opened.text.empty() ? "" : ". ") + read.text + filmText::kNotSavedYet,
                        std::max({opened.tone, read.tone, NoticeTone::Warn}));
}

/// The number of the film that could not be read; 0 when all were, or the program closes. What was read is
/// stored before a box tells why.
int FilmTransfer::readFilms(TransferReport& report) {
    FilmInstrument& instrument = parts_.instrument;
    report.expect(instrument.FilmCount());
    Read read;
    double stored = parts_.clock.monotonic();
    int failed = 0;
    std::string failure;
    for (int i = 1; i <= instrument.FilmCount() && failed == 0 && !stopped(); ++i) {
        parts_.progress.setProgress(percent(i, instrument.FilmCount()));
        const Commands::FilmAnswer answer = instrument.readFilm(i, Messages::Silent);
        if (answer.film) {
            read.push_back(*answer.film);
        } else {
            failed = i;
            failure = answer.failure;
            report.fail(
                filled(filmText::kFilmFailed,
                       {std::to_string(i),
                        answer.status == comm::kOk ? filmText::kNoFilm : commStatusText(answer.status)}));
        }
        if (parts_.clock.monotonic() - stored + instrument.lookTime() >= kStoreWithin) {
            failed = storeRead(read, report) || failed != 0 ? failed : i;
            stored = parts_.clock.monotonic();
        }
    }
    const int last = read.empty() ? 0 : read.back().FilmNum;
    failed = storeRead(read, report) || failed != 0 ? failed : last;
    if (!failure.empty()) {
        parts_.boxes.show(failure, kProgramName, MessageIcon::None);
    }
    return failed;
}

/// Stores what was read, in one commit. False, and nothing is stored, when it may be other films'.
bool FilmTransfer::storeRead(Read& read, TransferReport& report) {
    const Read films = std::exchange(read, {});
    if (films.empty()) {
        return true;
    }
    if (!areTheirOwn(films)) {
        report.fail(filmText::kOutOfStep);
        return false;
    }
    parts_.library.gatherCommits();
    int stored = 0;
    for (const FilmRecord& film : films) {
        keep(film.FilmNum, film);
        stored += storeFilm(film, report) ? 1 : 0;
    }
    if (parts_.library.commitGathered()) {
        report.done(stored);
    } else {
        report.fail(parts_.library.notice().text);
    }
    return true;
}

bool FilmTransfer::storeFilm(const FilmRecord& film, TransferReport& report) {
    const StoredFilm stored = CommToDBFilm(parts_.library, film);
    const std::string number = std::to_string(film.FilmNum);
    if (!stored.row) {
        report.name(filmText::kNotStored, number);
    } else {
        for (const std::string& field : stored.unfit) {
            report.name(filmText::kNotStored, filled(filmText::kFieldOf, {field, number}));
        }
    }
    if ((!stored.row || !stored.unfit.empty()) && !parts_.library.notice().text.empty()) {
        report.fail(parts_.library.notice().text);
    }
    return stored.row;
}

// ---- Download ----

void FilmTransfer::download(int index) {
    if (running_) {
        return;
    }
    const Run run(*this);
    parts_.list.setHourglass(true);
    if (!shutterClosed()) {
        return;
    }
    TransferReport report("sent");
    writeFilms(index, report);
    if (!stopped()) {
        VerifyFilms(index, report);
    }
    if (parts_.instrument.silent()) {
        report.fail(filmText::kNoAnswer);
    }
    parts_.list.selectFirstRow();
    parts_.list.setHourglass(false);
    const LibraryNotice sent = report.notice();
    parts_.library.tell(sent.text, sent.tone);
    lasting_ = sent.tone == NoticeTone::Plain ? LibraryNotice{} : sent;
}

/// Where it is open the hourglass is left behind (kept).
bool FilmTransfer::shutterClosed() {
    const Commands::UnitAnswer shutter = parts_.instrument.unit();
    const bool sound = parts_.instrument.look() != FilmInstrument::Step::Broken;
    if (!shutter.unit || !sound) {
        const std::string reason = shutter.status != comm::kOk ? commStatusText(shutter.status)
                                   : !shutter.unit             ? commStatusText(comm::kNoData)
                                                               : filmText::kShutterOutOfStep;
        parts_.library.tell(filled(filmText::kShutterUnknown, {reason}), NoticeTone::Alarm);
        parts_.list.setHourglass(false);
        return false;
    }
    if (*shutter.unit > 0) {
        parts_.boxes.show(filmText::kShutterOpen, filmText::kShutterOpenTitle, MessageIcon::Exclamation);
        return false;
    }
    return true;
}

int FilmTransfer::rows() const {
    return std::min(parts_.list.rowCount(), parts_.instrument.FilmCount());
}

bool FilmTransfer::takes(int film, int index) const {
    return index == kAll || parts_.list.isSelected(film - 1);
}

void FilmTransfer::writeFilms(int index, TransferReport& report) {
    const ShownProgress shown(parts_.progress, filmText::kWriting);
    const int count = rows();
    int expected = 0;
    for (int i = 1; i <= (index == kAll ? count : parts_.list.rowCount()); ++i) {
        expected += takes(i, index) ? 1 : 0;
    }
    report.expect(expected);
    std::vector<int> written;
    for (int i = 1; i <= count && !stopped(); ++i) {
        parts_.list.setCurrentRow(i - 1);
        if (takes(i, index)) {
            parts_.progress.setProgress(percent(i, count));
            writeRow(i, written, report);
        }
    }
    nameRest(index, report);
    if (stopped() || written.empty()) {
        return;
    }
    if (parts_.instrument.look() != FilmInstrument::Step::Sound) {
        report.fail(filmText::kSentOutOfStep);
        std::for_each(written.begin(), written.end(), [this](int film) { forget(film); });
    }
}

/// The selected films that the instrument has no place for. That all films may be more is known.
void FilmTransfer::nameRest(int index, TransferReport& report) {
    const std::string heading = filled(filmText::kNoPlace, {std::to_string(parts_.instrument.FilmCount())});
    for (int i = rows() + 1; i <= parts_.list.rowCount() && index != kAll; ++i) {
        if (takes(i, index)) {
            parts_.list.setCurrentRow(i - 1);
            report.name(heading, rowName(i));
        }
    }
}

/// What the current row is called in a report.
std::string FilmTransfer::rowName(int film) const {
    const std::string name = trimmed(parts_.list.filmName());
    return name.empty() ? filled(filmText::kRow, {std::to_string(film)}) : name;
}

void FilmTransfer::writeRow(int film, std::vector<int>& written, TransferReport& report) {
    FilmRecord record = parts_.films[static_cast<std::size_t>(film)];
    const std::string name = parts_.list.filmName();
    DBFilmToComm(parts_.library, film, name, parts_.list.manySensors(), record);
    const std::string named = rowName(film);
    if (record.FilmName == kNotAFilm) {
        report.name(filmText::kNotLookedUp, named);
        return;
    }
    if (!isKnown(film) && hasEmptyValues(parts_.library)) {
        report.name(filmText::kNotKnown, named);
        return;
    }
    record.FilmName = wireFilmName(record.FilmName);
    if (filmPayload(record).size() + filmCommand(film).size() > kLongestCommand) {
        report.name(filmText::kTooLong, named);
        return;
    }
    noteFaults(name, named, report);
    const std::uint16_t status = parts_.instrument.writeFilm(film, record);
    written.push_back(film);
    if (status == comm::kOk) {
        keep(film, record);
        report.done(1);
        return;
    }
    if (comm::isUnanswered(status)) {
        forget(film);
    }
    report.name(filled(filmText::kNotAccepted, {commStatusText(status)}), std::to_string(film));
}

/// What is worth a look at a film that is sent all the same.
void FilmTransfer::noteFaults(const std::string& name, const std::string& named, TransferReport& report) {
    if (parts_.library.column(Dat::DBSelected, "FilmName").size() > 1) {
        report.name(filmText::kSameName, named);
    }
    if (characterCount(trimmedRight(name)) > kFilmNameLength) {
        report.name(filmText::kNamesCut, named);
    }
    if (!parts_.library.found(Dat::Material)) {
        report.name(filmText::kMaterialMissing, named);
    }
}

// ---- Verification ----

void FilmTransfer::VerifyFilms(int index, TransferReport& report) {
    const ShownProgress shown(parts_.progress, filmText::kVerifying);
    const int count = rows();
    Read read;
    bool goesOn = true;
    Messages messages = Messages::Blocking;
    for (int i = 1; i <= count && goesOn && !stopped(); ++i) {
        parts_.list.setCurrentRow(i - 1);
        if (takes(i, index)) {
            parts_.list.ShowDBFilm();
            parts_.progress.setProgress(percent(i, count));
            goesOn = verifyRow(i, messages, read, report);
        }
    }
    keepReadBack(read, report);
}

/// False when the operator cancelled. What differs is asked about only when the answer is surely this
/// film's. The first film that cannot be read has a box, the others only their names in the report.
bool FilmTransfer::verifyRow(int film, Messages& messages, Read& read, TransferReport& report) {
    const Commands::FilmAnswer readBack = parts_.instrument.readFilm(film, messages);
    if (!readBack.film) {
        messages = Messages::Silent;
        report.name(filmText::kNotReadBack, std::to_string(film));
        return true;
    }
    parts_.films[0] = *readBack.film;
    read.push_back(*readBack.film);
    const auto mismatches =
        filmMismatches(parts_.library, *readBack.film, parts_.list.manySensors(), parts_.locale);
    if (mismatches.empty() || !keepReadBack(read, report)) {
        return true;
    }
    return std::all_of(mismatches.begin(), mismatches.end(), [&](const FilmMismatch& mismatch) {
        return parts_.boxes.askOkCancel(mismatch.text(film), kProgramName, MessageIcon::Information);
    });
}

/// What was read back is what the instrument holds, if it is surely each film's own; true then.
bool FilmTransfer::keepReadBack(Read& read, TransferReport& report) {
    const Read films = std::exchange(read, {});
    const bool own = films.empty() || areTheirOwn(films);
    for (const FilmRecord& film : films) {
        if (own) {
            keep(film.FilmNum, film);
        } else {
            report.name(filmText::kNotReadBack, std::to_string(film.FilmNum));
        }
    }
    return own;
}

// ---- Defaults ----

void FilmTransfer::resetToDefaults() {
    if (running_) {
        return;
    }
    const Run run(*this);
    parts_.list.setHourglass(true);
    parts_.memory.filmUnconfirmed();
    const std::uint16_t status = parts_.instrument.resetFilms();
    for (std::size_t i = 1; i < parts_.films.size(); ++i) {
        forget(static_cast<int>(i)); // whatever was answered
    }
    const bool sound = parts_.instrument.look() != FilmInstrument::Step::Broken;
    parts_.list.setHourglass(false);
    if (status == comm::kOk && sound) {
        parts_.library.tell(filmText::kReset, NoticeTone::Plain);
    } else if (comm::isSilence(status) || status == comm::kOk) {
        parts_.library.tell(
            filled(filmText::kResetUnknown, {sound ? commStatusText(status) : filmText::kShutterOutOfStep}),
            NoticeTone::Alarm);
    } else {
        parts_.library.tell(filled(filmText::kNotReset, {commStatusText(status)}), NoticeTone::Alarm);
    }
}

// ---- An upload that is not saved ----

bool FilmTransfer::askUnsaved() {
    return !parts_.library.unsavedUpload() ||
           !parts_.boxes.askYesNo(filmText::kAskUnsaved, kProgramName, MessageIcon::Question) ||
           parts_.library.saveUploadAs();
}

} // namespace drx9
