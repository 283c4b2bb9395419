#include "monitor/StatusTexts.h"

#include "monitor/Texts.h"
#include "util/DisplayFormats.h"
#include "util/Text.h"

#include <algorithm>
#include <cmath>

namespace drx9 {

using namespace monitorText;

namespace {
constexpr double kSpeakOfSilence = 1.5; ///< s without any answer from which on it is said in words
constexpr double kSpeakOfAge = 2;       ///< s without a reading from which on its age is shown
constexpr int kSpeakOfStrays = 2;       ///< readings out of step in a row
constexpr std::size_t kBriefReply = 40; ///< characters of a reason that leave the log's field its room

struct LinkNames {
    std::string text;
    std::string brief;
};

LinkNames linkNames(const LinkSettings& link) {
    switch (link.CommType) {
    case LinkType::Usb:
        return {linkName(link), "USB"};
    case LinkType::Ethernet:
        return {"Ethernet " + linkName(link), "Ethernet"};
    default:
        return {linkName(link), "COM" + std::to_string(link.Port)};
    }
}

bool offLine(const StatusFacts& facts) {
    return facts.started && !facts.onLine;
}

/// Readings are missing that nothing of ours holds back.
bool missing(const StatusFacts& facts) {
    return facts.onLine && facts.pauseReason.empty() && facts.stale;
}

bool noReply(const StatusFacts& facts) {
    return missing(facts) && facts.replyAge >= kSpeakOfSilence;
}

bool outOfStep(const StatusFacts& facts) {
    return facts.onLine && facts.pauseReason.empty() && facts.strays >= kSpeakOfStrays;
}

bool slow(const StatusFacts& facts) {
    return missing(facts) && facts.readingAge >= kSpeakOfAge;
}

std::string lines(int count) {
    return count == 1 ? kOneLine : filled(kLines, {std::to_string(count)});
}

void addPart(std::string& list, const std::string& part) {
    list += (list.empty() ? "" : ", ") + part;
}

/// Requests that cannot be carried out at once, for the operator who waits for them.
std::string waitingRequests(const StatusFacts& facts) {
    std::string list;
    if (!facts.stale && facts.pauseReason.empty() && facts.onLine) {
        return list;
    }
    if (facts.requests.film) {
        addPart(list, kWaitingFilm);
    }
    if (facts.requests.zero) {
        addPart(list, kWaitingZero);
    }
    if (facts.requests.shutter) {
        addPart(list, kWaitingShutter);
    }
    if (facts.requests.startStop) {
        addPart(list, facts.runMode == RunState::Running ? kWaitingStop : kWaitingStart);
    }
    return list.empty() ? list : filled(kWaiting, {list});
}

/// Where in its span the log is.
std::string spanText(const StatusFacts& facts) {
    const DataLogSettings& log = facts.log;
    if (log.Start == log.End) {
        return kSpanEmpty;
    }
    if (facts.logging && facts.elapsed > log.End) {
        return kSpanEnded;
    }
    const bool before = facts.logging ? facts.elapsed < log.Start : log.Start > 0;
    const std::string from = clockText(log.Start);
    const std::string until = clockText(log.End);
    if (log.End < kClockLimit) {
        return before ? filled(kSpanFromUntil, {from, until}) : filled(kSpanUntil, {until});
    }
    return before ? filled(kSpanFrom, {from}) : std::string();
}

std::string crystalList(const std::bitset<kMaxSensors>& crystals) {
    std::string list;
    for (std::size_t i = 0; i < crystals.size(); ++i) {
        if (crystals[i]) {
            addPart(list, std::to_string(i + 1));
        }
    }
    return list;
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
    return old ? filled(kOld, {ageText(facts.readingAge)}) : "";
}

std::string silenceNote(const StatusFacts& facts) {
    return readingAgeMark(facts).empty() ? "" : filled(kNoReadingsSince, {timeOfDayText(facts.lastReading)});
}

std::string shutterCaption(std::int16_t state) {
    return state > 0 ? "Close Shutter" : "Open Shutter";
}

Notice gravestNotice(const StatusFacts& facts) {
    using enum Notice::Subject;
    if (facts.runMode == RunState::Starting && !facts.started) {
        const LinkNames name = linkNames(facts.link);
        return {Connecting, filled(kConnecting, {name.text}), filled(kConnecting, {name.brief})};
    }
    if (noReply(facts)) {
        const std::string age = ageText(facts.replyAge);
        return {NoReply, filled(kNoReply, {age}), filled(kNoReplyBrief, {age})};
    }
    if (outOfStep(facts)) {
        const std::string since = filled(kOutOfStepSince, {timeOfDayText(facts.lastReading)});
        return {OutOfStep, facts.hasReading ? since : kOutOfStep, kOutOfStepBrief};
    }
    if (!facts.logError.empty() && facts.log.Type != LogMode::None) {
        return {Log, filled(kLogNotWritten, {facts.logError}), kLogNotWrittenBrief};
    }
    if (!facts.requestNotice.empty()) {
        return {Request, facts.requestNotice, facts.requestFailed};
    }
    if (slow(facts)) {
        return {Slow, filled(kSlow, {ageText(facts.readingAge)}), kSlowBrief};
    }
    if (!facts.pauseReason.empty() && facts.onLine) {
        return {Paused, filled(kPaused, {facts.pauseReason}), kPausedBrief};
    }
    if (facts.crystals.any() && facts.onLine) {
        const std::string which = crystalList(facts.crystals);
        const bool one = facts.crystals.count() == 1;
        return {Crystal, filled(one ? kCheckCrystal : kCheckCrystals, {which}),
                filled(one ? kCheckCrystalBrief : kCheckCrystalsBrief, {which})};
    }
    return {};
}

StatusText staLink(const StatusFacts& facts) {
    const LinkNames name = linkNames(facts.link);
    const auto with = [&name](const std::string& state, Tone tone) {
        return StatusText{name.text + ", " + state, name.brief + ", " + state, tone};
    };
    if (!facts.started) {
        return with(kLinkConnecting, Tone::Plain);
    }
    if (offLine(facts) || (!facts.pauseReason.empty() && !facts.linkOpen)) {
        return with(kLinkOffLine, Tone::Alarm);
    }
    if (noReply(facts)) {
        return with(filled(kLinkNoReply, {ageText(facts.replyAge)}), Tone::Warn);
    }
    return with(kLinkOnLine, Tone::Plain);
}

StatusText staReply(const StatusFacts& facts) {
    if (!facts.started || facts.lastExchange.empty()) {
        return {};
    }
    const std::size_t sentence = std::min(facts.lastExchange.find(": "), facts.lastExchange.find(". "));
    const bool isReason = facts.lastExchange.size() > kBriefReply;
    return {filled(kLastExchange, {facts.lastExchange}),
            isReason ? facts.lastExchange.substr(0, std::min(sentence, kBriefReply)) : facts.lastExchange};
}

StatusText staRun(const StatusFacts& facts) {
    if (!facts.started) {
        return {};
    }
    StatusText run = facts.runMode == RunState::Running
                         ? StatusText{filled(kRunningSince, {timeOfDayText(facts.runStart)}), kRunningBrief}
                         : StatusText{kNoRun, kNoRun};
    const std::string waiting = waitingRequests(facts);
    if (!waiting.empty()) {
        run.text += ", " + waiting;
        run.brief += ", " + waiting;
        run.tone = Tone::Warn;
    }
    return run;
}

StatusText staRequest(const StatusFacts& facts) {
    return {facts.requestFailed, facts.requestFailed, Tone::Warn};
}

StatusText staShutter(const StatusFacts& facts) {
    if (!facts.hasReading || !facts.onLine) {
        return {};
    }
    const char* text = facts.stale         ? facts.shutter > 0 ? kShutterWasOpen : kShutterWasClosed
                       : facts.shutter > 0 ? kShutterOpen
                                           : kShutterClosed;
    if (facts.shutter == RequestDesk::kShutterUnknown) {
        text = kShutterUnknown;
    }
    return {text, text};
}

StatusText staMode(const StatusFacts& facts) {
    if (!facts.message.empty()) {
        return {facts.message, facts.messageBrief, Tone::Warn};
    }
    if (facts.onLine && facts.started && !facts.systemKnown && facts.hasReading) {
        return {kNoParameters, kNoParametersBrief, Tone::Warn};
    }
    std::string list;
    if (facts.systemKnown && facts.simulate) {
        addPart(list, kSimulate);
    }
    if (facts.systemKnown && facts.etch) {
        addPart(list, kEtch);
    }
    return {list, list, list.empty() ? Tone::Plain : Tone::Warn};
}

StatusText staLog(const StatusFacts& facts) {
    const std::string name = bareName(facts.log.File);
    if (facts.log.Type == LogMode::None) {
        return {filled(kLogOff, {facts.logPath}), kLogOffBrief};
    }
    if (facts.logLost > 0) {
        return {filled(kLogLost, {facts.logPath, lines(facts.logLost)}),
                filled(kLogLostBrief, {lines(facts.logLost)}), Tone::Alarm};
    }
    if (!facts.logCutError.empty()) {
        return {filled(kLogNotCut, {facts.logPath, facts.logCutError}), kLogNotCutBrief, Tone::Warn};
    }
    const char* const mode = facts.log.Type == LogMode::Overwrite ? kLogOverwrites : kLogAppends;
    StatusText log{filled(mode, {facts.logPath}), filled(mode, {name})};
    const std::string span = spanText(facts);
    if (!span.empty()) {
        log.text += ", " + span;
        log.brief +=
            facts.logging && span == filled(kSpanUntil, {clockText(facts.log.End)}) ? "" : ", " + span;
    }
    if (facts.logging) {
        log.text += ", " + lines(facts.logLines);
        log.brief += ", " + lines(facts.logLines);
    }
    return log;
}

} // namespace drx9
