#include "films/FilmTransfer.h"

#include "films/FilmMismatches.h"
#include "films/FilmRows.h"
#include "films/FilmText.h"
#include "films/Texts.h"
#include "link/Crc.h"
#include "util/Numbers.h"
#include "util/ProgramName.h"
#include "util/Text.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace drx9 {

namespace {
constexpr int kAll = 1;                  ///< the button's index for all films
constexpr double kListenAtLeast = 0.002; // s, for the system's sake

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
        transfer_.timeouts_ = 0;
        transfer_.longest_ = 0;
        transfer_.lasting_ = {};
        transfer_.parts_.link.watch().begin();
        transfer_.parts_.library.forgetNotice();
    }
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;
    ~Run() { transfer_.running_ = false; }

private:
    FilmTransfer& transfer_;
    ActionQueue::Scope scope_;
};

/// The progress window, as long as this lives.
class FilmTransfer::Shown {
public:
    Shown(Progress& progress, const char* text)
        : progress_(progress) {
        progress_.ProgressShow(text, ProgressOwner::FilmWindow);
    }
    Shown(const Shown&) = delete;
    Shown& operator=(const Shown&) = delete;
    ~Shown() { progress_.ProgressHide(); }

private:
    Progress& progress_;
};

bool FilmTransfer::stopped() const {
    return timeouts_ >= kDeadAfterTimeouts || (parts_.ends && parts_.ends());
}

void FilmTransfer::beginExchange() {
    parts_.link.setCommStatus(comm::kOk);
    reachedInstrument_ = true;
    began_ = parts_.clock.monotonic();
}

bool FilmTransfer::endExchange(std::uint16_t status) {
    timeouts_ = comm::isSilence(status) ? timeouts_ + 1 : 0;
    if (status == comm::kOk) {
        longest_ = std::max(longest_, parts_.clock.monotonic() - began_);
    }
    return status == comm::kOk;
}

Commands::FilmAnswer FilmTransfer::readFilm(int number) {
    beginExchange();
    Commands::FilmAnswer answer = parts_.commands.Comm_GetFilm(number);
    endExchange(answer.status);
    return answer;
}

/// An answer that is one too many moves all behind it by one, and then the last one is still to come: within
/// the time of one exchange. Where the last exchange timed out nothing is.
bool FilmTransfer::inStep() {
    if (timeouts_ == 0) {
        parts_.link.listen(longest_ + kListenAtLeast);
    }
    const bool sound = !parts_.link.watch().surplus();
    longest_ = 0;
    parts_.link.watch().begin();
    return sound;
}

// ---- Upload ----

void FilmTransfer::upload() {
    if (running_) {
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
        const Shown shown(parts_.progress, filmText::kReading);
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

/// The number of the film that could not be read; 0 when all were, or the program closes.
int FilmTransfer::readFilms(TransferReport& report) {
    report.expect(parts_.link.FilmCount());
    std::vector<FilmRecord> read;
    double stored = parts_.clock.monotonic();
    int failed = 0;
    for (int i = 1; i <= parts_.link.FilmCount() && failed == 0 && !stopped(); ++i) {
        parts_.progress.setProgress(percent(i, parts_.link.FilmCount()));
        const Commands::FilmAnswer answer = readFilm(i);
        if (answer.film) {
            read.push_back(*answer.film);
        } else {
            failed = i;
            report.fail(
                filled(filmText::kFilmFailed,
                       {std::to_string(i),
                        answer.status == comm::kOk ? filmText::kNoFilm : commStatusText(answer.status)}));
        }
        if (parts_.clock.monotonic() - stored + longest_ >= kStoreWithin) {
            failed = storeRead(read, report) || failed != 0 ? failed : i;
            stored = parts_.clock.monotonic();
        }
    }
    const int last = read.empty() ? 0 : read.back().FilmNum;
    return storeRead(read, report) || failed != 0 ? failed : last;
}

/// Stores what was read, in one commit. False, and nothing is stored, when it may be other films'.
bool FilmTransfer::storeRead(std::vector<FilmRecord>& read, TransferReport& report) {
    const std::vector<FilmRecord> films = std::exchange(read, {});
    if (films.empty()) {
        return true;
    }
    if (!inStep()) {
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
    if (CommToDBFilm(parts_.library, film)) {
        return true;
    }
    report.name(filmText::kNotStored, std::to_string(film.FilmNum));
    if (!parts_.library.notice().text.empty()) {
        report.fail(parts_.library.notice().text);
    }
    return false;
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
    if (timeouts_ >= kDeadAfterTimeouts) {
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
    beginExchange();
    const Commands::UnitAnswer shutter = parts_.commands.Comm_GetUnit();
    const bool answered = endExchange(shutter.status);
    const bool sound = inStep();
    if (!shutter.unit || !sound) {
        const std::string reason = !answered       ? commStatusText(shutter.status)
                                   : !shutter.unit ? commStatusText(comm::kNoData)
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
    return std::min<int>(parts_.list.rowCount(), parts_.link.FilmCount());
}

bool FilmTransfer::takes(int film, int index) const {
    return index == kAll || parts_.list.isSelected(film - 1);
}

void FilmTransfer::writeFilms(int index, TransferReport& report) {
    const Shown shown(parts_.progress, filmText::kWriting);
    const int count = rows();
    int expected = 0;
    for (int i = 1; i <= count; ++i) {
        expected += takes(i, index) ? 1 : 0;
    }
    report.expect(expected);
    for (int i = 1; i <= count && !stopped(); ++i) {
        parts_.list.setCurrentRow(i - 1);
        if (takes(i, index)) {
            parts_.progress.setProgress(percent(i, count));
            writeRow(i, report);
        }
    }
    if (!stopped() && expected > 0 && !inStep()) {
        report.fail(filmText::kSentOutOfStep);
    }
}

void FilmTransfer::writeRow(int film, TransferReport& report) {
    auto& held = parts_.films[static_cast<std::size_t>(film)];
    FilmRecord record = held;
    const std::string name = parts_.list.filmName();
    DBFilmToComm(parts_.library, film, name, parts_.list.manySensors(), record);
    const std::string named =
        trimmed(name).empty() ? filled(filmText::kRow, {std::to_string(film)}) : trimmed(name);
    if (record.FilmName == kNotAFilm) {
        report.name(filmText::kNotLookedUp, named);
        return;
    }
    if (lacksValues(film)) {
        report.name(filmText::kNotKnown, named);
        return;
    }
    record.FilmName = wireFilmName(record.FilmName);
    if (filmPayload(record).size() + filmCommand(film).size() > kLongestCommand) {
        report.name(filmText::kTooLong, named);
        return;
    }
    if (parts_.library.column(Dat::DBSelected, "FilmName").size() > 1) {
        report.name(filmText::kSameName, named);
    }
    if (characterCount(trimmedRight(name)) > kFilmNameLength) {
        report.name(filmText::kNamesCut, named);
    }
    if (!parts_.library.found(Dat::Material)) {
        report.name(filmText::kMaterialMissing, named);
    }
    beginExchange();
    const std::uint16_t status = parts_.commands.Comm_SetFilm(film, record);
    if (endExchange(status)) {
        keep(film, record);
        report.done(1);
    } else {
        report.name(filled(filmText::kNotAccepted, {commStatusText(status)}), std::to_string(film));
    }
}

void FilmTransfer::keep(int number, const FilmRecord& film) {
    parts_.films[static_cast<std::size_t>(number)] = film;
    stale_.reset(static_cast<std::size_t>(number));
}

bool FilmTransfer::lacksValues(int film) const {
    static constexpr std::array<const char*, 5> kFields = {"Tooling", "EndThick", "ThickSet", "TimeSet",
                                                           "SensorAvg"};
    return stale_.test(static_cast<std::size_t>(film)) &&
           std::any_of(kFields.begin(), kFields.end(), [this](const char* field) {
               return jet::isNull(parts_.library.value(Dat::DBSelected, field));
           });
}

// ---- Verification ----

void FilmTransfer::VerifyFilms(int index, TransferReport& report) {
    const Shown shown(parts_.progress, filmText::kVerifying);
    const int count = rows();
    bool goesOn = true;
    for (int i = 1; i <= count && goesOn && !stopped(); ++i) {
        parts_.list.setCurrentRow(i - 1);
        if (takes(i, index)) {
            parts_.list.ShowDBFilm();
            parts_.progress.setProgress(percent(i, count));
            goesOn = verifyRow(i, report);
        }
    }
}

/// False when the operator cancelled. What differs is asked about only when the answer is surely this
/// film's.
bool FilmTransfer::verifyRow(int film, TransferReport& report) {
    const Commands::FilmAnswer readBack = readFilm(film);
    const auto mismatches = readBack.film ? filmMismatches(parts_.library, *readBack.film,
                                                           parts_.list.manySensors(), parts_.locale)
                                          : std::vector<FilmMismatch>();
    if (!readBack.film || (!mismatches.empty() && !inStep())) {
        report.name(filmText::kNotReadBack, std::to_string(film));
        return true;
    }
    parts_.films[0] = *readBack.film;
    return std::all_of(mismatches.begin(), mismatches.end(), [&](const FilmMismatch& mismatch) {
        return parts_.boxes.askOkCancel(mismatch.text(film), kProgramName, MessageIcon::Information);
    });
}

// ---- Defaults ----

void FilmTransfer::resetToDefaults() {
    if (running_) {
        return;
    }
    const Run run(*this);
    parts_.list.setHourglass(true);
    beginExchange();
    parts_.memory.filmUnconfirmed();
    const std::uint16_t status = parts_.commands.Comm_FilmDefaults();
    endExchange(status);
    stale_.set(); // whatever was answered
    const bool sound = inStep();
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

} // namespace drx9
