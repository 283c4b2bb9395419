#include "link/Commands.h"

#include "util/Numbers.h"
#include "util/ProgramName.h"
#include "util/Text.h"

#include <algorithm>

namespace drx9 {

namespace {
constexpr int kDeadAfterTimeouts = 2; // in a row within one reading
// After a reading the line is watched as long as one and a half of its exchanges took, for an answer too
// many, and a little more for the system's sake. A reading that leaves no room for that in its tick goes
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
    Reading(Link& link, const Clock& clock, Readings& values, std::string& failure,
            const std::function<bool()>& abandon)
        : link_(link)
        , clock_(clock)
        , start_(clock.monotonic())
        , values_(values)
        , failure_(failure)
        , abandon_(abandon) {}

    /// Sends the command and takes its number into `value`, 0 when it failed. False when the reading
    /// must end.
    bool take(const std::string& command, double& value, std::size_t index) {
        if (sent_++ > 0 && abandon_ && abandon_()) {
            end_ = ReadResult::Abandoned;
            return false;
        }
        const std::string reply = link_.Comm_Send(command);
        value = Val(reply);
        const std::uint16_t outcome = link_.outcome();
        const bool empty = outcome == comm::kOk && !beginsWithNumber(reply);
        values_.failed.set(index, outcome != comm::kOk || empty);
        if (values_.failed[index]) {
            failure_ = command + ": " + commStatusText(empty ? comm::kNoData : outcome);
        }
        const bool timedOut = outcome == comm::kTimeout || outcome == comm::kLost;
        timeouts_ = timedOut ? timeouts_ + 1 : 0;
        if (timeouts_ >= kDeadAfterTimeouts) {
            end_ = ReadResult::LinkDead;
        }
        return end_ == ReadResult::Done;
    }

    bool sensor(int sensor) {
        const auto s = static_cast<std::size_t>(sensor);
        const std::string number = std::to_string(sensor + 1);
        double frequency = 0;
        if (!take("P" + number, frequency, valueIndex(Value::Frequency, sensor))) {
            return false;
        }
        if (frequency == values_.frequency[s]) {
            return true; // saves two exchanges: nothing was deposited since
        }
        values_.frequency[s] = frequency;
        return take("L" + number, values_.rate[s], valueIndex(Value::Rate, sensor)) &&
               take("N" + number, values_.thickness[s], valueIndex(Value::Thickness, sensor));
    }

    bool all() {
        for (int i = 0; i < link_.sensorCount(); ++i) {
            if (!sensor(i)) {
                return false;
            }
        }
        return take("M", values_.averageRate, valueIndex(Value::AverageRate)) &&
               take("O", values_.averageThickness, valueIndex(Value::AverageThickness));
    }

    /// Call after the last exchange.
    ReadResult end() {
        if (end_ == ReadResult::Done && link_.settle()) {
            failure_ += failure_.empty() ? "Late answer" : ", answered late";
            end_ = ReadResult::OutOfStep;
        } else if (end_ == ReadResult::Done && link_.hearsSurplus(watchTime())) {
            failure_ += failure_.empty() ? "Answers out of step" : ", answers out of step";
            end_ = ReadResult::OutOfStep;
        }
        return end_;
    }

private:
    /// How long to listen after the last exchange, s.
    [[nodiscard]] double watchTime() const {
        const double taken = clock_.monotonic() - start_;
        return std::min(taken / sent_ * kWatchedExchanges + kWatchedAtLeast, kReadingRoom - taken);
    }

    Link& link_;
    const Clock& clock_;
    const double start_;
    Readings& values_;
    std::string& failure_;
    const std::function<bool()>& abandon_;
    int sent_ = 0;
    int timeouts_ = 0;
    ReadResult end_ = ReadResult::Done;
};

Commands::Commands(Link& link, MessageBoxes& boxes, const Clock& clock)
    : link_(link)
    , boxes_(boxes)
    , clock_(clock) {}

Commands::ReadResult Commands::Comm_GetData(Readings& readings, const std::function<bool()>& abandon) {
    readFailure_.clear();
    if (link_.CommStatus() != comm::kOk) {
        boxes_.show("Get Data Error", kProgramName, MessageIcon::None);
        return ReadResult::Busy;
    }
    link_.settle(); // what another command timed out for is not taken for the first value
    link_.watch();
    Readings values = readings;
    std::string failure;
    Reading reading(link_, clock_, values, failure, abandon);
    reading.all();
    values.elapsed = clock_.monotonic() - values.startTime;
    const ReadResult result = reading.end();
    readFailure_ = failure;
    if (result == ReadResult::Done) {
        readings = values;
    }
    return result;
}

std::uint16_t Commands::statusOnly(const std::string& command) {
    link_.Comm_Send(command);
    return link_.outcome();
}

std::uint16_t Commands::Comm_ZeroThickness() {
    return statusOnly("S");
}

std::uint16_t Commands::Comm_ZeroTime() {
    return statusOnly("T");
}

std::uint16_t Commands::Comm_FilmDefaults() {
    return statusOnly("Z");
}

std::int16_t Commands::Comm_GetUnit() {
    const std::string reply = link_.Comm_Send("U?");
    return link_.outcome() == comm::kOk ? toInt16(Val(reply)) : static_cast<std::int16_t>(link_.outcome());
}

void Commands::Comm_SetUnit(std::int16_t value) {
    link_.Comm_Send("U" + std::to_string(value));
}

void Commands::Comm_SelectFilm(int film) {
    link_.Comm_Send("D" + std::to_string(film));
}

bool Commands::Comm_GetFilm(int number, FilmRecord& film, Messages messages) {
    if (link_.CommStatus() != comm::kOk) {
        tell(messages, "Get Film Error: Busy");
        return true;
    }
    const std::string reply = link_.Comm_Send(filmCommand(number) + "?");
    if (parseFilmReply(reply, number, film)) {
        return false;
    }
    tell(messages, "Get Film Error: " + utf8FromAnsi(reply));
    return true;
}

void Commands::tell(Messages messages, const std::string& text) {
    if (messages == Messages::Blocking) {
        boxes_.show(text, kProgramName, MessageIcon::None);
    } else {
        boxes_.showNonBlocking(text, kProgramName, MessageIcon::None);
    }
}

void Commands::Comm_SetFilm(int number, const FilmRecord& film) {
    link_.Comm_Send(filmCommand(number) + filmPayload(film));
}

bool Commands::Comm_GetSystem(SystemParameters& parameters) {
    link_.settle(); // a film's fields, or the other record's, would be taken for settings
    const bool first = parseSystemB(link_.Comm_Send("B?"), parameters);
    link_.settle();
    const bool second = parseSystemC(link_.Comm_Send("C?"), parameters);
    return first && second;
}

std::uint16_t Commands::Comm_SetSystem(const SystemParameters& parameters) {
    // Both are built first: the record may change under a wait.
    const std::string second = systemPayloadC(parameters);
    const std::uint16_t status = statusOnly(systemPayloadB(parameters));
    return status == comm::kOk ? statusOnly(second) : status;
}

} // namespace drx9
