#include "films/FilmTransfer.h"

#include "films/FilmRows.h"
#include "films/FilmText.h"
#include "util/Numbers.h"
#include "util/ProgramName.h"
#include "util/Text.h"

#include <algorithm>
#include <optional>

namespace drx9 {

namespace {
constexpr int kAll = 1; ///< the button's index for all films
constexpr std::int32_t kWholeMask = 127;
constexpr std::int32_t kTwoSensorMask = 3;
constexpr const char* kNoAnswer = "The DRX-9 does not answer";
constexpr const char* kNotSavedYet = ". Not saved under another name yet";

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

/// One check of a verification that failed.
struct FilmTransfer::Mismatch {
    const char* is;
    std::string instrument;
    const char* shouldBe;
    std::string database;
};

bool FilmTransfer::stopped() const {
    return timeouts_ >= kDeadAfterTimeouts || (parts_.ends && parts_.ends());
}

void FilmTransfer::beginExchange() {
    parts_.link.setCommStatus(comm::kOk);
    reachedInstrument_ = true;
}

bool FilmTransfer::endExchange() {
    const std::uint16_t outcome = parts_.link.outcome();
    timeouts_ = outcome == comm::kTimeout || outcome == comm::kLost ? timeouts_ + 1 : 0;
    return outcome == comm::kOk;
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
    parts_.list.refreshLists();
    TransferReport report("read");
    {
        const Shown shown(parts_.progress, "Reading DRX-9 Films");
        const int failed = readFilms(report);
        if (failed != 0) {
            parts_.boxes.show("Error reading Film number " + std::to_string(failed), "Upload Error!",
                              MessageIcon::Critical);
        }
    }
    parts_.list.refreshLists();
    parts_.list.ShowDBFilm();
    const LibraryNotice read = report.notice();
    parts_.library.tell(opened.text + (opened.text.empty() ? "" : ". ") + read.text + kNotSavedYet,
                        std::max({opened.tone, read.tone, NoticeTone::Warn}));
}

/// The number of the film that could not be read; 0 when all were, or the program closes.
int FilmTransfer::readFilms(TransferReport& report) {
    report.expect(parts_.link.FilmCount());
    parts_.library.gatherCommits();
    lastCommit_ = parts_.clock.monotonic();
    int failed = 0;
    for (int i = 1; i <= parts_.link.FilmCount() && failed == 0 && !stopped(); ++i) {
        parts_.progress.setProgress(percent(i, parts_.link.FilmCount()));
        beginExchange();
        FilmRecord film;
        if (parts_.commands.Comm_GetFilm(i, film)) {
            failed = i;
            report.fail("Film " + std::to_string(i) + ": " +
                        (endExchange() ? std::string("no film") : commStatusText(parts_.link.outcome())));
        } else {
            parts_.films[static_cast<std::size_t>(i)] = film;
            storeRead(i, report);
        }
        commitDue(report);
    }
    if (!parts_.library.commitGathered()) {
        report.fail(parts_.library.notice().text);
    }
    return failed;
}

void FilmTransfer::storeRead(int film, TransferReport& report) {
    if (CommToDBFilm(parts_.library, parts_.films[static_cast<std::size_t>(film)])) {
        report.done();
        return;
    }
    report.name("Not stored", std::to_string(film));
    if (!parts_.library.notice().text.empty()) {
        report.fail(parts_.library.notice().text);
    }
}

void FilmTransfer::commitDue(TransferReport& report) {
    if (parts_.clock.monotonic() - lastCommit_ < kCommitAfter) {
        return;
    }
    if (!parts_.library.commitGathered()) {
        report.fail(parts_.library.notice().text);
    }
    parts_.library.gatherCommits();
    lastCommit_ = parts_.clock.monotonic();
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
        report.fail(kNoAnswer);
    }
    parts_.list.selectFirstRow();
    parts_.list.setHourglass(false);
    const LibraryNotice sent = report.notice();
    parts_.library.tell(sent.text, sent.tone);
}

/// Where it is open the hourglass is left behind (kept).
bool FilmTransfer::shutterClosed() {
    beginExchange();
    const std::optional<std::int16_t> shutter = parts_.commands.queryUnit();
    if (!endExchange() || !shutter) {
        parts_.library.tell("Nothing sent: whether the shutter is closed is not known (" +
                                commStatusText(shutter || parts_.link.outcome() != comm::kOk
                                                   ? parts_.link.outcome()
                                                   : comm::kNoData) +
                                ")",
                            NoticeTone::Alarm);
        parts_.list.setHourglass(false);
        return false;
    }
    if (*shutter > 0) {
        parts_.boxes.show("Please close shutter before downloading films.", "Shutter is opened!",
                          MessageIcon::Exclamation);
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
    const Shown shown(parts_.progress, "Writing DRX-9 Films");
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
}

void FilmTransfer::writeRow(int film, TransferReport& report) {
    auto& held = parts_.films[static_cast<std::size_t>(film)];
    FilmRecord record = held;
    const std::string name = parts_.list.filmName();
    DBFilmToComm(parts_.library, film, name, parts_.list.manySensors(), record);
    if (record.FilmName == kNotAFilm) {
        report.name("Not sent, cannot be looked up", trimmed(name));
        return;
    }
    if (characterCount(trimmedRight(name)) > kFilmNameLength) {
        report.name("Names cut to 8 characters", trimmed(name));
    }
    if (!parts_.library.found(Dat::Material)) {
        report.name("Material not in the library, density and Z factor left as they are", trimmed(name));
    }
    record.FilmName = wireFilmName(record.FilmName);
    beginExchange();
    parts_.commands.Comm_SetFilm(film, record);
    if (endExchange()) {
        parts_.films[static_cast<std::size_t>(film)] = record;
        report.done();
    } else {
        report.name("Not accepted (" + commStatusText(parts_.link.outcome()) + ")", std::to_string(film));
    }
}

// ---- Verification ----

void FilmTransfer::VerifyFilms(int index, TransferReport& report) {
    const Shown shown(parts_.progress, "Verifying DRX-9 Films");
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

/// False when the operator cancelled.
bool FilmTransfer::verifyRow(int film, TransferReport& report) {
    beginExchange();
    FilmRecord readBack;
    const bool failed = parts_.commands.Comm_GetFilm(film, readBack);
    endExchange();
    if (failed) {
        report.name("Not read back", std::to_string(film));
        return true;
    }
    parts_.films[0] = readBack;
    return compare(film);
}

bool FilmTransfer::compare(int film) {
    const FilmRecord& instrument = parts_.films[0];
    std::vector<Mismatch> mismatches;
    const jet::Value stored = parts_.library.value(Dat::DBSelected, "FilmName");
    const std::string name = trimmed(upperAnsi(ansiFromUtf8(textOf(stored))));
    if (!jet::isNull(stored) && trimmed(instrument.FilmName) != name) {
        mismatches.push_back({"Film Name for film #", utf8FromAnsi(trimmed(instrument.FilmName)),
                              "The Film Name should be ", utf8FromAnsi(name)});
    }
    // A null is no value to differ from.
    const auto check = [&](double is, std::optional<double> wanted, const char* first, const char* second) {
        if (wanted && is != *wanted) {
            mismatches.push_back(
                {first, generalNumber(is, parts_.locale), second, generalNumber(*wanted, parts_.locale)});
        }
    };
    const auto field = [&](Dat source, const char* fieldName) {
        return jet::asNumber(parts_.library.value(source, fieldName));
    };
    check(instrument.Density, field(Dat::Material, "Density"), "Film Density for film #",
          "The Film Density should be ");
    check(instrument.Tooling, field(Dat::DBSelected, "Tooling"), "Film Tooling for film #",
          "The Film Tooling should be ");
    check(instrument.ZFactor, field(Dat::Material, "ZFactor"), "Film ZFactor for film #",
          "The Film ZFactor should be ");
    check(instrument.EndThick, field(Dat::DBSelected, "EndThick"), "Final Thickness for film #",
          "The Final Thickness should be ");
    check(instrument.ThickSet, field(Dat::DBSelected, "ThickSet"), "Thickness Setpoint for film #",
          "The Thickness Setpoint should be ");
    check(instrument.TimeSet, field(Dat::DBSelected, "TimeSet"), "Time Setpoint for film #",
          "The Time Setpoint should be ");
    auto mask = field(Dat::DBSelected, "SensorAvg");
    if (mask) {
        mask = toInt32(*mask) & (parts_.list.manySensors() ? kWholeMask : kTwoSensorMask);
    }
    check(instrument.SensorAvg, mask, "Sensor Average for film #", "The Sensor Average should be ");
    return std::all_of(mismatches.begin(), mismatches.end(),
                       [&](const Mismatch& mismatch) { return FilmMismatch(film, mismatch); });
}

bool FilmTransfer::FilmMismatch(int film, const Mismatch& mismatch) {
    return parts_.boxes.askOkCancel(mismatch.is + std::to_string(film) + " = " + mismatch.instrument + ".\n" +
                                        mismatch.shouldBe + mismatch.database,
                                    kProgramName, MessageIcon::Information);
}

// ---- Defaults ----

void FilmTransfer::resetToDefaults() {
    if (running_) {
        return;
    }
    const Run run(*this);
    parts_.list.setHourglass(true);
    reachedInstrument_ = true;
    parts_.memory.filmUnconfirmed();
    const std::uint16_t status = parts_.commands.Comm_FilmDefaults();
    parts_.list.setHourglass(false);
    if (status == comm::kOk) {
        parts_.library.tell("The DRX-9 was reset to its default values", NoticeTone::Plain);
    } else {
        parts_.library.tell("Defaults not accepted: " + commStatusText(status), NoticeTone::Alarm);
    }
}

} // namespace drx9
