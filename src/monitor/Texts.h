#pragma once

/// What the main window, its plate, its status bar and the data log tell the operator, apart from captions.
/// "{}" stands for what `filled` puts in. Each has an entry in the manual.
namespace drx9::monitorText {

// The plate; the second text of a pair is the short form.
inline constexpr const char* kConnecting = "Connecting, {}";
inline constexpr const char* kNoReply = "No reply for {}. Trying again.";
inline constexpr const char* kNoReplyBrief = "No reply for {}";
inline constexpr const char* kOutOfStep = "Answers out of step: no readings";
inline constexpr const char* kOutOfStepSince = "Answers out of step: no readings since {}";
inline constexpr const char* kOutOfStepBrief = "Answers out of step";
inline constexpr const char* kLogNotWritten = "Log not written: {}";
inline constexpr const char* kLogNotWrittenBrief = "Log not written";
inline constexpr const char* kSlow = "Slow answers: a reading takes {}";
inline constexpr const char* kSlowBrief = "Slow answers";
inline constexpr const char* kPaused = "Readings paused: {}";
inline constexpr const char* kPausedBrief = "Readings paused";
inline constexpr const char* kCheckCrystal = "Check crystal {}: frequency outside the limits";
inline constexpr const char* kCheckCrystals = "Check crystals {}: frequency outside the limits";
inline constexpr const char* kCheckCrystalBrief = "Check crystal {}";
inline constexpr const char* kCheckCrystalsBrief = "Check crystals {}";

// What came of a request. The first stand for the request's name.
inline constexpr const char* kFilm = "Film";
inline constexpr const char* kZero = "Zero";
inline constexpr const char* kShutter = "Shutter";
inline constexpr const char* kStart = "Start";
inline constexpr const char* kRequestNoReply = "{}: no reply";
inline constexpr const char* kRequestOutOfStep = "{}: answers out of step";
inline constexpr const char* kRequestNotSent = "{}: not sent";
inline constexpr const char* kPressAgain = " Press again if needed.";

// Beside the readouts, in the charts, and of the film.
inline constexpr const char* kOld = "{} old";
inline constexpr const char* kFinal = "final";
inline constexpr const char* kCrystalLimits = "Frequency {} Hz, limits {} to {} MHz";
inline constexpr const char* kNoReadingsSince = "No readings since {}";
inline constexpr const char* kFilmNotConfirmed =
    "The instrument has not confirmed this film. Choose it again to be sure.";
inline constexpr const char* kListEndsBefore =
    "The film list could not be read as far as this film, which is in use.";

inline constexpr const char* kOffLine = "DRX-9 Off Line";
inline constexpr const char* kChooseLink = "Choose the link under Edit, Communcations."; // kept

// The status bar.
inline constexpr const char* kLinkConnecting = "connecting";
inline constexpr const char* kLinkOffLine = "off line";
inline constexpr const char* kLinkNoReply = "no reply for {}";
inline constexpr const char* kLinkOnLine = "on line";
inline constexpr const char* kLastExchange = "Last exchange: {}";
inline constexpr const char* kOk = "OK";
inline constexpr const char* kRefreshOutOfStep = "Films and parameters not read: answers out of step";
inline constexpr const char* kRecordNotRead = "B?: not read";
inline constexpr const char* kOtherInstrument = "Another instrument answers now: {}";
inline constexpr const char* kOtherInstrumentBrief = "Another instrument";
inline constexpr const char* kNoRun = "Idle";
inline constexpr const char* kRunningBrief = "Running";
inline constexpr const char* kRunningSince = "Running since {}";
inline constexpr const char* kWaiting = "waiting: {}"; ///< then a list of the next five
inline constexpr const char* kWaitingFilm = "film";
inline constexpr const char* kWaitingZero = "zero";
inline constexpr const char* kWaitingShutter = "shutter";
inline constexpr const char* kWaitingStart = "start";
inline constexpr const char* kWaitingStop = "stop";
inline constexpr const char* kShutterOpen = "Shutter open";
inline constexpr const char* kShutterClosed = "Shutter closed";
inline constexpr const char* kShutterWasOpen = "Shutter was open";
inline constexpr const char* kShutterWasClosed = "Shutter was closed";
inline constexpr const char* kShutterUnknown = "Shutter unknown";
inline constexpr const char* kNoParameters = "System parameters not read";
inline constexpr const char* kNoParametersBrief = "No parameters";
inline constexpr const char* kSimulate = "Simulate";
inline constexpr const char* kEtch = "Etch";

// The log's field of the status bar, and the data log window.
inline constexpr const char* kLogOff = "Log: {}, off";
inline constexpr const char* kLogOffBrief = "Log off";
inline constexpr const char* kLogLost = "Log: {}, {} not written";
inline constexpr const char* kLogLostBrief = "Log not written, {} lost";
inline constexpr const char* kLogNotCut = "Log: {}, old part not deleted: {}";
inline constexpr const char* kLogNotCutBrief = "Log: old part not deleted";
inline constexpr const char* kLogOverwrites = "Log: {} (Overwrite)";
inline constexpr const char* kLogAppends = "Log: {} (Append)";
inline constexpr const char* kOneLine = "1 line";
inline constexpr const char* kLines = "{} lines";
inline constexpr const char* kSpanEmpty = "empty span";
inline constexpr const char* kSpanEnded = "span ended";
inline constexpr const char* kSpanFrom = "from {}";
inline constexpr const char* kSpanUntil = "until {}";
inline constexpr const char* kSpanFromUntil = "from {} until {}";
inline constexpr const char* kNoLineYet = "No line written yet";
inline constexpr const char* kLastLine = "Run {}: {}, last {}";
inline constexpr const char* kNotWritten = "Not written: {}";

// Boxes.
inline constexpr const char* kSettingsNotSaved = "Settings not saved: {}";
inline constexpr const char* kDeleteLog = "Log file size is {}. Delete?";
inline constexpr const char* kReading = "Reading DRX-9 Films";

// To the desktop, which shows it where it lists what keeps the machine awake.
inline constexpr const char* kKeepAwake = "A deposition run is in progress";

} // namespace drx9::monitorText
