#include "monitor/StatusTexts.h"

#include "util/DisplayFormats.h"

#include <algorithm>
#include <cmath>

namespace drx9 {

namespace {
constexpr double kSpeakOfSilence = 1.5; ///< s without any answer from which on it is said in words
constexpr double kSpeakOfAge = 2;       ///< s without a reading from which on its age is shown
constexpr int kSpeakOfStrays = 2;       ///< readings out of step in a row
constexpr double kLongestClock = 362400;
constexpr std::size_t kBriefReply = 40; ///< characters of a reason that leave the log's field its room

struct LinkName {
    std::string text;
    std::string brief;
};

LinkName linkName(const LinkSettings& link) {
    switch (link.CommType) {
    case LinkType::Usb:
        return {"USB " + link.USBSerNum, "USB"};
    case LinkType::Ethernet:
        return {"Ethernet " + link.EAddress + ":" + link.EPort, "Ethernet"};
    default: {
        const std::string port = "COM" + std::to_string(link.Port);
        return {port + " at " + std::to_string(link.Baud), port};
    }
    }
}

bool offLine(const StatusFacts& facts) {
    return facts.started && !facts.controlsVisible;
}

/// Readings are missing that nothing of ours holds back.
bool missing(const StatusFacts& facts) {
    return facts.controlsVisible && facts.pauseReason.empty() && facts.stale;
}

bool noReply(const StatusFacts& facts) {
    return missing(facts) && facts.replyAge >= kSpeakOfSilence;
}

bool outOfStep(const StatusFacts& facts) {
    return facts.controlsVisible && facts.pauseReason.empty() && facts.strays >= kSpeakOfStrays;
}

bool slow(const StatusFacts& facts) {
    return missing(facts) && facts.readingAge >= kSpeakOfAge;
}

std::string lines(int count) {
    return std::to_string(count) + (count == 1 ? " line" : " lines");
}

void addPart(std::string& list, const std::string& part) {
    list += (list.empty() ? "" : ", ") + part;
}

/// Requests that cannot be carried out at once, for the operator who waits for them.
std::string waitingRequests(const StatusFacts& facts) {
    std::string list;
    if (!facts.stale && facts.pauseReason.empty() && facts.controlsVisible) {
        return list;
    }
    if (facts.requests.film) {
        addPart(list, "film");
    }
    if (facts.requests.zero) {
        addPart(list, "zero");
    }
    if (facts.requests.shutter) {
        addPart(list, "shutter");
    }
    if (facts.requests.startStop) {
        addPart(list, facts.runMode == RunState::Running ? "stop" : "start");
    }
    return list.empty() ? list : "waiting: " + list;
}

/// Where in its span the log is.
std::string spanText(const StatusFacts& facts) {
    const DataLogSettings& log = facts.log;
    if (log.Start == log.End) {
        return "empty span";
    }
    if (facts.logging && facts.elapsed > log.End) {
        return "span ended";
    }
    const bool before = facts.logging ? facts.elapsed < log.Start : log.Start > 0;
    std::string text = before ? "from " + clockText(log.Start) : "";
    if (log.End < kLongestClock) {
        text += (text.empty() ? "until " : " until ") + clockText(log.End);
    }
    return text;
}

std::string crystalList(const std::bitset<kMaxSensors>& crystals) {
    std::string list;
    for (std::size_t i = 0; i < crystals.size(); ++i) {
        if (crystals[i]) {
            addPart(list, std::to_string(i + 1));
        }
    }
    return (crystals.count() == 1 ? "crystal " : "crystals ") + list;
}
} // namespace

std::string ageText(double seconds) {
    const auto rounded = [](double value) { return std::to_string(std::lround(value)); };
    if (seconds < 100) {
        return std::to_string(static_cast<long>(seconds)) + " s";
    }
    return seconds < 6000 ? rounded(seconds / 60) + " min" : rounded(seconds / 3600) + " h";
}

std::string readingAgeMark(const StatusFacts& facts) {
    const bool old = facts.hasReading && facts.stale && facts.readingAge >= kSpeakOfAge;
    return old ? ageText(facts.readingAge) + " old" : "";
}

std::string silenceNote(const StatusFacts& facts) {
    return readingAgeMark(facts).empty() ? "" : "No readings since " + timeOfDayText(facts.lastReading);
}

Notice gravestNotice(const StatusFacts& facts) {
    using enum Notice::Subject;
    if (facts.runMode == RunState::Starting && !facts.started) {
        const LinkName name = linkName(facts.link);
        return {Connecting, "Connecting, " + name.text, "Connecting, " + name.brief};
    }
    if (noReply(facts)) {
        const std::string text = "No reply for " + ageText(facts.replyAge);
        return {NoReply, text + ". Trying again.", text};
    }
    if (outOfStep(facts)) {
        const std::string since = facts.hasReading ? " since " + timeOfDayText(facts.lastReading) : "";
        return {OutOfStep, "Answers out of step: no readings" + since, "Answers out of step"};
    }
    if (!facts.logError.empty() && facts.log.Type != LogMode::None) {
        return {Log, "Log not written: " + facts.logError, "Log not written"};
    }
    if (!facts.requestNotice.empty()) {
        return {Request, facts.requestNotice, facts.requestFailed};
    }
    if (slow(facts)) {
        return {Slow, "Slow answers: a reading takes " + ageText(facts.readingAge), "Slow answers"};
    }
    if (!facts.pauseReason.empty() && facts.controlsVisible) {
        return {Paused, "Readings paused: " + facts.pauseReason, "Readings paused"};
    }
    if (facts.crystals.any() && facts.controlsVisible) {
        const std::string which = crystalList(facts.crystals);
        return {Crystal, "Check " + which + ": frequency outside the limits", "Check " + which};
    }
    return {};
}

StatusText staLink(const StatusFacts& facts) {
    const LinkName name = linkName(facts.link);
    const auto with = [&name](const std::string& state, StatusText::Tone tone) {
        return StatusText{name.text + ", " + state, name.brief + ", " + state, tone};
    };
    if (!facts.started) {
        return with("connecting", StatusText::Tone::Plain);
    }
    if (offLine(facts)) {
        return with("off line", StatusText::Tone::Alarm);
    }
    if (noReply(facts)) {
        return with("no reply for " + ageText(facts.replyAge), StatusText::Tone::Warn);
    }
    return with("on line", StatusText::Tone::Plain);
}

StatusText staReply(const StatusFacts& facts) {
    if (!facts.started || facts.lastExchange.empty()) {
        return {};
    }
    const std::size_t sentence = std::min(facts.lastExchange.find(": "), facts.lastExchange.find(". "));
    const bool isReason = facts.lastExchange.size() > kBriefReply;
    return {"Last exchange: " + facts.lastExchange,
            isReason ? facts.lastExchange.substr(0, std::min(sentence, kBriefReply)) : facts.lastExchange};
}

StatusText staRun(const StatusFacts& facts) {
    if (!facts.started) {
        return {};
    }
    StatusText run = facts.runMode == RunState::Running
                         ? StatusText{"Running since " + timeOfDayText(facts.runStart), "Running"}
                         : StatusText{"Idle", "Idle"};
    const std::string waiting = waitingRequests(facts);
    if (!waiting.empty()) {
        run.text += ", " + waiting;
        run.brief += ", " + waiting;
        run.tone = StatusText::Tone::Warn;
    }
    return run;
}

StatusText staRequest(const StatusFacts& facts) {
    return {facts.requestFailed, facts.requestFailed, StatusText::Tone::Warn};
}

StatusText staShutter(const StatusFacts& facts) {
    if (!facts.hasReading || !facts.controlsVisible) {
        return {};
    }
    const char* state = facts.shutter > 0 ? "open" : "closed";
    std::string text = std::string("Shutter ") + (facts.stale ? "was " : "") + state;
    if (facts.shutter == RequestDesk::kShutterUnknown) {
        text = "Shutter unknown";
    }
    return {text, text};
}

StatusText staMode(const StatusFacts& facts) {
    if (!facts.message.empty()) {
        return {facts.message, facts.messageBrief, StatusText::Tone::Warn};
    }
    if (facts.controlsVisible && facts.started && !facts.systemKnown && facts.hasReading) {
        return {"System parameters not read", "No parameters", StatusText::Tone::Warn};
    }
    std::string list;
    if (facts.systemKnown && facts.simulate) {
        addPart(list, "Simulate");
    }
    if (facts.systemKnown && facts.etch) {
        addPart(list, "Etch");
    }
    return {list, list, list.empty() ? StatusText::Tone::Plain : StatusText::Tone::Warn};
}

StatusText staLog(const StatusFacts& facts) {
    const std::string name = bareName(facts.log.File);
    if (facts.log.Type == LogMode::None) {
        return {"Log: " + facts.logPath + ", off", "Log off"};
    }
    if (facts.logLost > 0) {
        return {"Log: " + facts.logPath + ", " + lines(facts.logLost) + " not written",
                "Log not written, " + lines(facts.logLost) + " lost", StatusText::Tone::Alarm};
    }
    if (!facts.logCutError.empty()) {
        return {"Log: " + facts.logPath + ", old part not deleted: " + facts.logCutError,
                "Log: old part not deleted", StatusText::Tone::Warn};
    }
    const std::string mode = facts.log.Type == LogMode::Overwrite ? " (Overwrite)" : " (Append)";
    StatusText log{"Log: " + facts.logPath + mode, "Log: " + name + mode};
    const std::string span = spanText(facts);
    if (!span.empty()) {
        log.text += ", " + span;
        log.brief += facts.logging && span.rfind("until", 0) == 0 ? "" : ", " + span;
    }
    if (facts.logging) {
        log.text += ", " + lines(facts.logLines);
        log.brief += ", " + lines(facts.logLines);
    }
    return log;
}

} // namespace drx9
