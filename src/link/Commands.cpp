#include "link/Commands.h"

#include "link/Texts.h"
#include "util/Numbers.h"
#include "util/ProgramName.h"
#include "util/Text.h"

#include <algorithm>

namespace drx9 {

namespace {
constexpr int kDeadAfterTimeouts = 2; // in a row within one reading
// After a reading the line is watched as long as one and a half of its exchanges took, for an answer too
// many, and a little more, as the system may be busy. A reading that leaves no room for that in its tick goes
// without.
constexpr double kWatchedExchanges = 1.5;
constexpr double kWatchedAtLeast = 0.002; // s
constexpr double kReadingRoom = 0.2;      // s

/// Whether Val() found a number, where it gives 0.
bool beginsWithNumber(const std::string& text) {
    const std::size_t first = text.find_first_not_of(" +-.");
    return first != std::string::npos && text[first] >= '0' && text[first] <= '9';
}
} // namespace

/// One acquisition under way: keeps count of what failed.
class Commands::Reading {
public:
    Reading(Link& link, const Clock& clock, Readings& values, const std::function<bool()>& abandon)
        : link_(link)
        , clock_(clock)
        , start_(clock.monotonic())
        , values_(values)
        , abandon_(abandon) {}

    bool all(int sensors) {
        for (int i = 0; i < sensors; ++i) {
            if (!sensor(i)) {
                return false;
            }
        }
        return take("M", values_.averageRate, valueIndex(Value::AverageRate)) &&
               take("O", values_.averageThickness, valueIndex(Value::AverageThickness));
    }

    /// Call after the last exchange.
    ReadOutcome end() {
        if (outcome_.end == ReadResult::Done) {
            link_.settle();
            link_.listen(watchTime());
        }
        const StepWatch& watch = link_.watch();
        if (outcome_.end == ReadResult::Done && watch.broken()) {
            const bool first = outcome_.failure.empty();
            outcome_.failure += watch.late() ? (first ? linkText::kLateAnswer : linkText::kAlsoLate)
                                             : (first ? linkText::kOutOfStep : linkText::kAlsoOutOfStep);
            outcome_.end = ReadResult::OutOfStep;
        }
        return outcome_;
    }

private:
    bool sensor(int sensor) {
        const auto s = static_cast<std::size_t>(sensor);
        double frequency = 0;
        if (!take("P" + std::to_string(sensor + 1), frequency, valueIndex(Value::Frequency, sensor))) {
            return false;
        }
        // An unchanged frequency saves two exchanges: nothing was deposited since.
        const bool moved = frequency != values_.frequency[s];
        values_.frequency[s] = frequency;
        return letter('L', moved, values_.rate[s], Value::Rate, sensor) &&
               letter('N', moved, values_.thickness[s], Value::Thickness, sensor);
    }

    bool letter(char letter, bool moved, double& value, Value kind, int sensor) {
        const std::size_t index = valueIndex(kind, sensor);
        return (!moved && !values_.failed[index]) || take(letter + std::to_string(sensor + 1), value, index);
    }

    /// Sends the command and takes its number into `value`, 0 when it failed. False when the reading must
    /// end.
    bool take(const std::string& command, double& value, std::size_t index) {
        if (sent_++ > 0 && abandon_ && abandon_()) {
            outcome_.end = ReadResult::Abandoned;
            return false;
        }
        const Exchange exchange = link_.Comm_Send(command);
        value = Val(exchange.reply);
        const bool empty = exchange.ok() && !beginsWithNumber(exchange.reply);
        values_.failed.set(index, !exchange.ok() || empty);
        if (values_.failed[index]) {
            outcome_.failure = command + ": " + commStatusText(empty ? comm::kNoData : exchange.status);
        }
        const bool timedOut = comm::isSilence(exchange.status);
        timeouts_ = timedOut ? timeouts_ + 1 : 0;
        timedOut_ = timedOut_ || timedOut;
        if (timeouts_ >= kDeadAfterTimeouts) {
            outcome_.end = ReadResult::LinkDead;
        }
        return outcome_.end == ReadResult::Done;
    }

    /// How long to listen after the last exchange, s.
    [[nodiscard]] double watchTime() const {
        const double taken = clock_.monotonic() - start_;
        const double wanted = taken / sent_ * kWatchedExchanges + kWatchedAtLeast;
        // An answer that never came may still do so, later than anybody waits for it.
        return timedOut_ ? wanted : std::min(wanted, kReadingRoom - taken);
    }

    Link& link_;
    const Clock& clock_;
    const double start_;
    Readings& values_;
    const std::function<bool()>& abandon_;
    int sent_ = 0;
    int timeouts_ = 0; ///< in a row
    bool timedOut_ = false;
    ReadOutcome outcome_;
};

Commands::Commands(Link& link, MessageBoxes& boxes, const Clock& clock)
    : link_(link)
    , boxes_(boxes)
    , clock_(clock) {}

Commands::ReadOutcome Commands::Comm_GetData(Readings& readings, int sensors,
                                             const std::function<bool()>& abandon) {
    if (link_.CommStatus() != comm::kOk) {
        boxes_.showNonBlocking(linkText::kGetDataError, kProgramName, MessageIcon::None);
        return {ReadResult::Busy};
    }
    link_.watch().begin();
    Readings values = readings;
    Reading reading(link_, clock_, values, abandon);
    reading.all(sensors);
    values.elapsed = clock_.monotonic() - values.startTime;
    ReadOutcome outcome = reading.end();
    if (outcome.end == ReadResult::Done) {
        readings = values;
    }
    return outcome;
}

std::uint16_t Commands::Comm_ZeroThickness() {
    return link_.Comm_Send("S").status;
}

std::uint16_t Commands::Comm_ZeroTime() {
    return link_.Comm_Send("T").status;
}

std::uint16_t Commands::Comm_FilmDefaults() {
    return link_.Comm_Send("Z").status;
}

Commands::UnitAnswer Commands::Comm_GetUnit() {
    const Exchange exchange = link_.Comm_Send("U?");
    UnitAnswer answer{exchange.status, std::nullopt};
    if (!exchange.reply.empty()) {
        answer.unit = toInt16(Val(exchange.reply));
    }
    return answer;
}

std::uint16_t Commands::Comm_SetUnit(std::int16_t value) {
    return link_.Comm_Send("U" + std::to_string(value)).status;
}

std::uint16_t Commands::Comm_SelectFilm(int film) {
    return link_.Comm_Send("D" + std::to_string(film)).status;
}

Commands::FilmAnswer Commands::Comm_GetFilm(int number, Messages messages) {
    if (link_.CommStatus() != comm::kOk) {
        const std::uint16_t status = link_.CommStatus();
        tell(messages, linkText::kGetFilmBusy);
        return {status, std::nullopt, linkText::kGetFilmBusy};
    }
    const Exchange exchange = link_.Comm_Send(filmCommand(number) + "?");
    // Not trimmed at its left: a name may begin with a blank.
    const std::string reply = exchange.data.substr(0, exchange.data.find_last_not_of(' ') + 1);
    FilmRecord film;
    if (parseFilmReply(reply, number, film)) {
        return {exchange.status, film};
    }
    const std::string failure = filled(linkText::kGetFilmError, {utf8FromAnsi(reply)});
    tell(messages, failure);
    return {exchange.status, std::nullopt, failure};
}

void Commands::tell(Messages messages, const std::string& text) {
    if (messages == Messages::Blocking) {
        boxes_.show(text, kProgramName, MessageIcon::None);
    } else if (messages == Messages::NonBlocking) {
        boxes_.showNonBlocking(text, kProgramName, MessageIcon::None);
    }
}

std::uint16_t Commands::Comm_SetFilm(int number, const FilmRecord& film) {
    return link_.Comm_Send(filmCommand(number) + filmPayload(film)).status;
}

Commands::SystemAnswer Commands::Comm_GetSystem(SystemParameters& parameters) {
    link_.watch().begin();
    const Exchange first = link_.Comm_Send("B?");
    const Exchange second = link_.Comm_Send("C?");
    if (link_.watch().surplus()) {
        return {false, second.status}; // one record may be the other's, or a film's
    }
    const bool firstTaken = parseSystemB(first.reply, parameters);
    return {parseSystemC(second.reply, parameters) && firstTaken, second.status};
}

Commands::SystemSent Commands::Comm_SetSystem(const SystemParameters& parameters) {
    // Both are built first: the record may change under a wait.
    const std::string second = systemPayloadC(parameters);
    const std::uint16_t status = link_.Comm_Send(systemPayloadB(parameters)).status;
    if (status != comm::kOk) {
        return {status, false};
    }
    return {link_.Comm_Send(second).status, true};
}

} // namespace drx9
