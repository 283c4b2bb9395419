#include "monitor/DataLog.h"

#include "monitor/Texts.h"
#include "platform/AtomicReplace.h"
#include "util/DisplayFormats.h"
#include "util/Numbers.h"
#include "util/ProgramName.h"
#include "util/Text.h"

#include <memory>
#include <utility>

namespace drx9 {

namespace {

constexpr std::uint64_t kLargeFile = 1000000; ///< bytes from which deletion is offered
constexpr float kSecondsOfADay = 86400;
constexpr const char* kLineEnd = "\r\n";
constexpr std::size_t kLineRoom = 256; ///< characters; more than the readings of six sensors take
// Kept: the header names the columns of the first sensor only.
constexpr const char* kHeader = "Time\tAvgThk\tAvgRate\tThk1\tRate1\tFreq1\tThk2...";

} // namespace

DataLog::DataLog(FilePort& files, const Clock& clock, const NumberLocale& locale, const Paths& paths,
                 MessageBoxes& boxes, EventPump& pump, const DataLogSettings& settings)
    : files_(files)
    , clock_(clock)
    , locale_(locale)
    , paths_(paths)
    , boxes_(boxes)
    , pump_(pump)
    , settings_(settings) {}

void DataLog::InitDataLog() {
    beginRun();
    if (settings_.Type == LogMode::Overwrite) {
        files_.remove(fullPath());
    }
    offerDeletion();
    lastLogTime_ = now();
}

void DataLog::beginRun() {
    open_ = true;
    ++run_;
    written_ = 0;
    lost_ = 0;
    lastLineTime_.reset();
    lastError_.clear();
    cutError_.clear();
}

void DataLog::offerDeletion() {
    boxes_.dropQuestion(); // about an earlier run
    // The name may be changed while the box is open: the file that was asked about is the one that is cut.
    const std::string path = fullPath();
    if (files_.size(path).value_or(0) < kLargeFile) {
        return;
    }
    pump_.processPending();
    const auto size = files_.size(path);
    if (!size) {
        return;
    }
    boxes_.askYesNoLater(filled(monitorText::kDeleteLog, {std::to_string(*size)}), kProgramName,
                         MessageIcon::Question,
                         [this, path, asked = files_.identity(path), bytes = *size](bool yes) {
                             if (yes && asked && isSameFile(path, *asked)) {
                                 takeOut(path, bytes);
                             }
                         });
}

/// The file may have grown since, but no other may have taken its name.
bool DataLog::isSameFile(const std::string& path, const FileIdentity& asked) const {
    const auto now = files_.identity(path);
    return now && now->device == asked.device && now->node == asked.node && now->size >= asked.size;
}

/// The file ends as if it had been deleted before the run's texts were written.
void DataLog::takeOut(const std::string& path, std::uint64_t bytes) {
    std::string rest;
    FileStatus status = readFrom(path, bytes, rest);
    if (status.ok()) {
        status = rest.empty() ? files_.remove(path) : replaceFile(files_, path, rest);
    }
    cutError_ = status.reason();
}

FileStatus DataLog::readFrom(const std::string& path, std::uint64_t from, std::string& rest) const {
    FileStatus status;
    const std::unique_ptr<InputFile> file = files_.open(path, status);
    if (!status.ok()) {
        return status;
    }
    rest.assign(static_cast<std::size_t>(files_.size(path).value_or(from) - from), '\0');
    return file->read(from, rest);
}

void DataLog::startBlock(std::string_view filmName) {
    // Each text carries a line end of its own before the one that appending adds: an empty line follows.
    append(stamp("Start:   Date: ", filmName) + kLineEnd);
    append(std::string(kHeader) + kLineEnd);
}

void DataLog::endBlock(std::string_view filmName) {
    append(kLineEnd + stamp("End:     Date: ", filmName) + kLineEnd);
    open_ = false;
}

void DataLog::UpdateDataLog(const Readings& readings, double elapsed, int sensorCount) {
    if (!open_) { // logging was switched on in the middle of a run
        beginRun();
    }
    if (!inSpan(elapsed) || !due()) {
        return;
    }
    if (append(line(readings, elapsed, sensorCount))) {
        ++written_;
        lastLineTime_ = clock_.local();
    }
}

float DataLog::now() const {
    return static_cast<float>(secondsSinceMidnight(clock_.local()));
}

bool DataLog::due() {
    const float clock = now();
    if (clock < lastLogTime_) { // midnight has passed
        lastLogTime_ -= kSecondsOfADay;
    }
    const float waited = clock - lastLogTime_;
    if (waited < static_cast<float>(settings_.Interval)) {
        return false;
    }
    lastLogTime_ = clock;
    return true;
}

bool DataLog::inSpan(double elapsed) const {
    return elapsed >= settings_.Start && elapsed <= settings_.End && settings_.Start != settings_.End;
}

std::string DataLog::line(const Readings& readings, double elapsed, int sensorCount) const {
    std::string out;
    out.reserve(kLineRoom);
    out += fixedNumber(elapsed, 2, locale_);
    const auto add = [&out](const std::string& field) {
        out += '\t';
        out += field;
    };
    add(threeFigureText(readings.averageThickness, locale_));
    add(rateText(readings.averageRate, locale_));
    for (std::size_t s = 0; s < static_cast<std::size_t>(sensorCount); ++s) {
        add(threeFigureText(readings.thickness[s], locale_));
        add(rateText(readings.rate[s], locale_));
        add(frequencyText(readings.frequency[s], locale_));
    }
    return out;
}

std::string DataLog::stamp(std::string_view start, std::string_view filmName) const {
    const LocalTime time = clock_.local();
    std::string out(start);
    out += shortDateText(time, locale_) + "   Time: " + timeOfDayText(time) + "   Film: ";
    return out.append(filmName);
}

bool DataLog::append(std::string text) {
    const FileStatus status = files_.append(fullPath(), std::move(text) + kLineEnd);
    lastError_ = status.reason();
    lost_ += status.ok() ? 0 : 1;
    return status.ok();
}

} // namespace drx9
