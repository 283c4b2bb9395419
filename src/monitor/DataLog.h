#pragma once

#include "link/Records.h"
#include "monitor/Settings.h"
#include "platform/Clock.h"
#include "platform/EventPump.h"
#include "platform/FilePort.h"
#include "platform/MessageBoxes.h"
#include "util/NumberLocale.h"
#include "util/Paths.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace drx9 {

/// The data log: a text file with one block a run, made of a start line, a header, tab-separated lines and an
/// end line. Nothing is kept open between two lines. A text that cannot be appended is lost and counted,
/// never queued; the run goes on.
///
/// A large file is offered for deletion at the start of a run. The question holds nothing up: the run's texts
/// go behind what the file holds, and on Yes what was before them is taken out in one atomic replace.
///
/// The settings are read at each call, so that a change takes effect at once. Film names are bytes as the
/// instrument sent them and go into the file unchanged; everything else in the file is ASCII (the date as far
/// as the locale is).
class DataLog {
public:
    DataLog(FilePort& files, const Clock& clock, const NumberLocale& locale, const Paths& paths,
            MessageBoxes& boxes, EventPump& pump, const DataLogSettings& settings);

    // Writing. Call the first three only when the log mode is not None.

    /// Prepares the log at the start of a run and begins to count again: deletes the file in mode Overwrite,
    /// offers a large one for deletion. Pumps events once before it asks.
    void InitDataLog();
    void startBlock(std::string_view filmName);
    void endBlock(std::string_view filmName);
    /// The run is over, whether it was logged to its end or not.
    void runEnded() { open_ = false; }
    /// Writes a line if the reading lies in the logged span and one is due; the interval counts inside the
    /// span only. `elapsed` is the reading's run time in s, rounded to 0.001; `sensorCount` 0..6.
    void UpdateDataLog(const Readings& readings, double elapsed, int sensorCount);

    // State, for the log window and the status bar. Counts are of the run in hand, or of the last one.

    /// From the preparation of a run's log (or its first line, where logging was switched on in the middle of
    /// the run) to its end block, as long as the log mode is not None.
    [[nodiscard]] bool isWriting() const { return open_ && settings_.Type != LogMode::None; }
    /// Logged runs since the program's start.
    [[nodiscard]] int runNumber() const { return run_; }
    [[nodiscard]] int linesWritten() const { return written_; } ///< readings, not the block's own lines
    [[nodiscard]] int linesLost() const { return lost_; } ///< texts of any kind that could not be appended
    [[nodiscard]] const std::optional<LocalTime>& lastLineTime() const { return lastLineTime_; }
    /// Why the old part of a large file could not be taken out after a Yes; empty when it could.
    [[nodiscard]] const std::string& cutError() const { return cutError_; }
    /// Why the last append failed, for people; empty as soon as one has succeeded again.
    [[nodiscard]] const std::string& lastError() const { return lastError_; }
    /// Where the log goes at present.
    [[nodiscard]] std::string fullPath() const { return paths_.resolve(settings_.File); }

private:
    void beginRun();
    void offerDeletion();
    [[nodiscard]] bool isSameFile(const std::string& path, const FileIdentity& asked) const;
    void takeOut(const std::string& path, std::uint64_t bytes);
    FileStatus readFrom(const std::string& path, std::uint64_t from, std::string& rest) const;
    [[nodiscard]] float now() const;
    [[nodiscard]] bool due();
    [[nodiscard]] bool inSpan(double elapsed) const;
    [[nodiscard]] std::string line(const Readings& readings, double elapsed, int sensorCount) const;
    [[nodiscard]] std::string stamp(std::string_view start, std::string_view filmName) const;
    bool append(std::string text);

    FilePort& files_;
    const Clock& clock_;
    const NumberLocale& locale_;
    const Paths& paths_;
    MessageBoxes& boxes_;
    EventPump& pump_;
    const DataLogSettings& settings_;
    /// s after midnight of the last line that was due; negative once midnight has passed.
    float lastLogTime_ = 0;
    bool open_ = false;
    int run_ = 0;
    int written_ = 0;
    int lost_ = 0;
    std::optional<LocalTime> lastLineTime_;
    std::string lastError_;
    std::string cutError_;
};

} // namespace drx9
