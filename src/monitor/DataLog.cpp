#include "monitor/DataLog.h"

#include "util/DisplayFormats.h"
#include "util/Numbers.h"
#include "util/ProgramName.h"

#include <utility>

namespace drx9 {

namespace {

constexpr std::uint64_t kLargeFile = 1000000; ///< bytes from which deletion is offered
constexpr float kSecondsOfADay = 86400;
constexpr const char* kLineEnd = "\r\n";
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
    if (settings_.Type == kLogOverwrite) {
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
}

void DataLog::offerDeletion() {
    // The name may be changed while the box stands: the file that was asked about is the one that goes.
    const std::string path = fullPath();
    if (files_.size(path).value_or(0) < kLargeFile) {
        return;
    }
    pump_.processPending();
    const auto size = files_.size(path);
    if (!size) {
        return;
    }
    const std::string question = "Log file size is " + std::to_string(*size) + ". Delete?";
    asking_ = true;
    const bool yes = boxes_.askYesNo(question, kProgramName, MessageIcon::Question);
    asking_ = false;
    if (yes) {
        files_.remove(path);
    }
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
    if (!due() || !inSpan(elapsed)) {
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

/// Counts the interval on also where the line is then outside the span and not written.
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
    std::string out = fixedNumber(elapsed, 2, locale_);
    const auto add = [&out](const std::string& field) {
        out += '\t';
        out += field;
    };
    add(threeFigureText(readings.averageThickness, locale_));
    add(rateText(readings.averageRate, locale_));
    for (std::size_t s = 0; s < static_cast<std::size_t>(sensorCount); ++s) {
        add(threeFigureText(readings.thickness[s], locale_));
        add(rateText(toThousandths(readings.rate[s]), locale_)); // as the run's points hold it
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
