#pragma once

#include "link/LinkSettings.h"
#include "link/Records.h"
#include "monitor/RequestDesk.h"
#include "monitor/RunState.h"
#include "monitor/Settings.h"
#include "util/LocalTime.h"
#include "util/Tone.h"

#include <bitset>
#include <cstdint>
#include <string>

namespace drx9 {

/// A text of the status bar with its short form for narrow windows.
struct StatusText {
    std::string text;
    std::string brief;
    Tone tone = Tone::Plain;
};

/// The gravest thing that the operator must know. None has empty texts.
struct Notice {
    enum class Subject { None, Connecting, NoReply, OutOfStep, Log, Request, Slow, Paused, Crystal };
    Subject subject = Subject::None;
    std::string text;
    std::string brief;
};

/// All that notices and status bar speak of, at one moment.
struct StatusFacts {
    RunState runMode = RunState::Starting;
    bool onLine = false; ///< on line at the last refresh of the window
    bool started = false;
    bool hasReading = false;
    bool stale = false;
    double readingAge = 0;   ///< s since the last good reading
    double replyAge = 0;     ///< s since the last good reply of any kind
    int strays = 0;          ///< readings in a row that were left out, their answers being out of step
    std::string pauseReason; ///< empty when no window holds the polling
    LinkSettings link;
    bool linkOpen = true; ///< as far as is known; nothing is read while a window holds the polling
    std::string lastExchange = "OK";
    std::string message;      ///< stays until the next run; empty when none
    std::string messageBrief; ///< its short form
    LocalTime lastReading;
    LocalTime runStart;
    std::int16_t shutter = 0;
    Requests requests;         ///< that wait
    std::string requestFailed; ///< "Zero: no reply"; empty when the last request was accepted
    std::string requestNotice; ///< the same as a sentence for the plate, for a while
    bool systemKnown = false;
    bool simulate = false;
    bool etch = false;
    std::bitset<kMaxSensors> crystals; ///< crystals that look failed
    DataLogSettings log;
    std::string logPath;
    std::string logError;
    std::string logCutError; ///< why the old part of a large log could not be deleted
    bool logging = false;    ///< a run is being logged
    int logLines = 0;
    int logLost = 0;
    double elapsed = 0; ///< s of the run
};

/// "14 s", from 100 s on "2 min", from 100 min on "2 h".
std::string ageText(double seconds);
/// "14 s old" from 2 s without a reading on, else empty.
std::string readingAgeMark(const StatusFacts& facts);
/// "No readings since 14:09:04" from 2 s without a reading on, else empty.
std::string silenceNote(const StatusFacts& facts);
Notice gravestNotice(const StatusFacts& facts);
/// What the shutter button would do; `state` as RequestDesk::shutterState() gives it.
std::string shutterCaption(std::int16_t state);

// The fields of the status bar, named after their controls. An empty text hides the field.

StatusText staLink(const StatusFacts& facts);
StatusText staReply(const StatusFacts& facts);
StatusText staRun(const StatusFacts& facts);
StatusText staRequest(const StatusFacts& facts);
StatusText staShutter(const StatusFacts& facts);
StatusText staMode(const StatusFacts& facts);
StatusText staLog(const StatusFacts& facts);

} // namespace drx9
