#pragma once

#include "monitor/Monitor.h"

#include <bitset>
#include <string>

namespace drx9 {

/// A text of the status bar with its short form for narrow windows.
struct StatusText {
    enum class Tone { Plain, Warn, Alarm };
    std::string text;
    std::string brief;
    Tone tone = Tone::Plain;
};

/// The gravest thing that the operator must know. None has empty texts.
struct Notice {
    enum class Subject { None, Connecting, NoReply, Log, Paused, Crystal };
    Subject subject = Subject::None;
    std::string text;
    std::string brief;
};

/// All that notices and status bar speak of, at one moment.
struct StatusFacts {
    std::int16_t runMode = kStarting;
    bool controlsVisible = false; ///< on line at the last refresh of the window
    bool started = false;
    bool hasReading = false;
    bool stale = false;
    double readingAge = 0;   ///< s since the last good reading
    double replyAge = 0;     ///< s since the last good reply of any kind
    std::string pauseReason; ///< empty when no window holds the polling
    LinkSettings link;
    std::string lastExchange = "OK";
    std::string instrumentNotice;
    LocalTime lastReading;
    LocalTime runStart;
    std::int16_t shutter = 0;
    Monitor::Requests requests;
    bool systemKnown = false;
    bool simulate = false;
    bool etch = false;
    std::bitset<kMaxSensors> crystals; ///< crystals that look failed
    DataLogSettings log;
    std::string logPath;
    std::string logError;
    bool logging = false; ///< a run is being logged
    int logLines = 0;
    int logLost = 0;
    double elapsed = 0; ///< s of the run
};

/// `now` is monotonic.
StatusFacts statusFacts(Monitor& monitor, double now);

/// "14 s", from 100 s on "2 min", from 100 min on "2 h".
std::string ageText(double seconds);
/// "14 s old" from 2 s without a reading on, else empty.
std::string readingAgeMark(const StatusFacts& facts);
/// "No readings since 14:09:04" from 2 s without a reading on, else empty.
std::string silenceNote(const StatusFacts& facts);
Notice gravestNotice(const StatusFacts& facts);

// The fields of the status bar, named after their controls. An empty text hides the field.

StatusText staLink(const StatusFacts& facts);
StatusText staReply(const StatusFacts& facts);
StatusText staRun(const StatusFacts& facts);
StatusText staShutter(const StatusFacts& facts);
StatusText staMode(const StatusFacts& facts);
StatusText staLog(const StatusFacts& facts);

} // namespace drx9
