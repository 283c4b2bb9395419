#include "simulator/Instrument.h"

#include <algorithm>
#include <cmath>

#include "simulator/Random.h"
#include "simulator/Text.h"

namespace drx9::sim {

namespace {
constexpr double kRampSeconds = 1.5;
constexpr double kShutSeconds = 0.3;
constexpr double kFrequencyJitter = 0.8; // Hz, from end to end
constexpr double kRateJitter = 0.04;     // Å/s
constexpr std::uint64_t kJitterStream = 1000;
constexpr int kBisections = 40;

Reply refused(char letter) {
    return {letter, ""};
}

/// 8 to 11 Å/s, another for each film.
double rateLevel(int film) {
    double whole = 0;
    return 8 + 3 * std::modf(film * 0.618034, &whole);
}
} // namespace

const std::array<Instrument::Entry, 15> Instrument::kCommands{
    {{'@', false, &Instrument::version},
     {'J', false, &Instrument::type},
     {'P', true, &Instrument::readFrequency},
     {'L', true, &Instrument::readRate},
     {'N', true, &Instrument::readThickness},
     {'M', false, &Instrument::readAverageRate},
     {'O', false, &Instrument::readAverageThickness},
     {'D', true, &Instrument::selectFilm},
     {'A', true, &Instrument::filmMemory},
     {'B', true, &Instrument::generalRecord},
     {'C', true, &Instrument::limitsRecord},
     {'S', false, &Instrument::zero},
     {'T', false, &Instrument::restart},
     {'U', true, &Instrument::shutter},
     {'Z', false, &Instrument::defaultFilms}}};

Instrument::Instrument(const InstrumentOptions& options)
    : options_(options)
    , sensors_(options.sensors == 0 ? kMaxSensors : options.sensors)
    , films_(options.films, (1U << static_cast<unsigned>(sensors_)) - 1)
    , deposition_(options.seed) {}

Reply Instrument::execute(std::string_view command, double now) {
    advance(now);
    const char letter = command.empty() ? '\0' : command.front();
    const auto* entry = std::find_if(kCommands.begin(), kCommands.end(),
                                     [letter](const Entry& one) { return one.letter == letter; });
    if (entry == kCommands.end()) {
        return refused(status::kBadCommand);
    }
    const std::string_view arguments = command.substr(1);
    if (arguments.empty() == entry->takesArguments) {
        return refused(status::kBadData);
    }
    return (this->*entry->handler)(arguments);
}

// --- time, source and shutter
// ---------------------------------------------------------------------------------------

void Instrument::advance(double now) {
    if (options_.frozen || now <= now_) {
        return;
    }
    closeAtEnd(now_, now);
    now_ = now;
}

/// The instrument shuts the source when the average passes the film's final thickness, at the moment it does
/// so, however late somebody looks. A shutter opened beyond that thickness stays open.
void Instrument::closeAtEnd(double from, double to) {
    const double end = films_.film(currentFilm_).endThick;
    if (!open_ || end <= 0 || thicknessAt(from) >= end || thicknessAt(to) < end) {
        return;
    }
    for (int i = 0; i < kBisections; ++i) {
        const double middle = (from + to) / 2;
        (thicknessAt(middle) < end ? from : to) = middle;
    }
    open_ = false;
    applySource(to);
}

Source Instrument::source() const {
    const SimFilm& film = films_.film(currentFilm_);
    Source source;
    source.level = open_ ? rateLevel(currentFilm_) : 0;
    source.settleSeconds = open_ ? kRampSeconds : kShutSeconds;
    source.density = film.density;
    for (int sensor = 1; sensor <= kMaxSensors; ++sensor) {
        source.tooling[static_cast<std::size_t>(sensor - 1)] =
            film.tooling / 100 * system_.crystalTooling(sensor) / 100;
    }
    return source;
}

void Instrument::applySource(double now) {
    deposition_.change(now, source());
}

void Instrument::setShutter(bool open, double now) {
    advance(now);
    if (open != open_) {
        open_ = open;
        applySource(now_);
    }
}

bool Instrument::shutterOpen(double now) {
    advance(now);
    return open_;
}

double Instrument::timer(double now) {
    advance(now);
    return now_ - timerStart_;
}

void Instrument::failCrystal(int sensor, double when, CrystalFailure kind) {
    deposition_.fail(sensor, when, kind);
}

void Instrument::mendCrystal(int sensor, double now) {
    advance(now);
    deposition_.mend(sensor, now_);
}

// --- readings
// -------------------------------------------------------------------------------------------------------

double Instrument::jitter(double width) {
    if (options_.frozen) {
        return 0;
    }
    return (noise(options_.seed, kJitterStream, ++readings_) - 0.5) * width;
}

bool Instrument::averaged(int sensor, double now) const {
    const auto mask = static_cast<unsigned>(films_.film(currentFilm_).sensorAvg);
    return ((mask >> static_cast<unsigned>(sensor - 1)) & 1U) != 0 && deposition_.alive(sensor, now);
}

template<class Value>
double Instrument::average(Value value, double now) const {
    double sum = 0;
    int count = 0;
    for (int sensor = 1; sensor <= sensors_; ++sensor) {
        if (averaged(sensor, now)) {
            sum += (deposition_.*value)(sensor, now);
            ++count;
        }
    }
    return count > 0 ? sum / count : 0;
}

double Instrument::thicknessAt(double now) const {
    return average(&Deposition::thickness, now);
}

double Instrument::averageRate(double now) {
    advance(now);
    return sense() * average(&Deposition::rate, now_);
}

double Instrument::averageThickness(double now) {
    advance(now);
    return sense() * thicknessAt(now_);
}

int Instrument::sensorIn(std::string_view arguments) const {
    return integerIn(arguments, 1, sensors_).value_or(0);
}

std::string Instrument::rateText(double rate) {
    return fixedText(sense() * rate + jitter(kRateJitter), system_.highRateResolution() ? 2 : 1);
}

Reply Instrument::readFrequency(std::string_view arguments) {
    const int sensor = sensorIn(arguments);
    if (sensor == 0) {
        return refused(status::kBadData);
    }
    double frequency = deposition_.frequency(sensor, now_);
    if (frequency > 0) {
        frequency += jitter(kFrequencyJitter);
    }
    std::string& last = lastFrequency_[static_cast<std::size_t>(sensor - 1)];
    std::string text = fixedText(frequency, 1);
    if (text == last && frequency > 0 && !options_.frozen) {
        text = fixedText(frequency + 0.1, 1); // two readings of an oscillating crystal never agree
    }
    last = text;
    return {status::kOk, text};
}

Reply Instrument::readRate(std::string_view arguments) {
    const int sensor = sensorIn(arguments);
    if (sensor == 0) {
        return refused(status::kBadData);
    }
    if (!deposition_.alive(sensor, now_)) {
        return {status::kOk, fixedText(0, system_.highRateResolution() ? 2 : 1)};
    }
    return {status::kOk, rateText(deposition_.rate(sensor, now_))};
}

Reply Instrument::readThickness(std::string_view arguments) {
    const int sensor = sensorIn(arguments);
    if (sensor == 0) {
        return refused(status::kBadData);
    }
    return {status::kOk, fixedText(sense() * deposition_.thickness(sensor, now_), 4)};
}

Reply Instrument::readAverageRate(std::string_view /*none*/) {
    return {status::kOk, rateText(average(&Deposition::rate, now_))};
}

Reply Instrument::readAverageThickness(std::string_view /*none*/) {
    return {status::kOk, fixedText(sense() * thicknessAt(now_), 4)};
}

// --- commands
// -------------------------------------------------------------------------------------------------------

Reply Instrument::version(std::string_view /*none*/) {
    return {status::kOk, options_.versionText};
}

// NOLINTNEXTLINE(readability-make-member-function-const): handlers are of one type
Reply Instrument::type(std::string_view /*none*/) {
    return {status::kOk, "SENSORS " + std::to_string(options_.sensors)};
}

Reply Instrument::selectFilm(std::string_view arguments) {
    const auto film = integerIn(arguments, 1, films_.count());
    if (!film) {
        return refused(status::kBadData);
    }
    currentFilm_ = *film;
    applySource(now_);
    return {};
}

Reply Instrument::filmMemory(std::string_view arguments) {
    const int film = FilmMemory::numberOf(arguments.front());
    if (!films_.valid(film)) {
        return refused(status::kBadData);
    }
    const std::string_view fields = arguments.substr(1);
    if (fields == "?") {
        return {status::kOk, films_.record(film)};
    }
    if (open_) {
        return refused(status::kBadMode);
    }
    if (!films_.store(film, fields)) {
        return refused(status::kBadData);
    }
    applySource(now_);
    return {};
}

Reply Instrument::generalRecord(std::string_view arguments) {
    if (arguments == "?") {
        return {status::kOk, system_.general()};
    }
    if (!system_.setGeneral(arguments)) {
        return refused(status::kBadData);
    }
    applySource(now_);
    return {};
}

Reply Instrument::limitsRecord(std::string_view arguments) {
    if (arguments == "?") {
        return {status::kOk, system_.limits()};
    }
    return system_.setLimits(arguments) ? Reply{} : refused(status::kBadData);
}

Reply Instrument::zero(std::string_view /*none*/) {
    deposition_.zero(now_);
    return {};
}

Reply Instrument::restart(std::string_view /*none*/) {
    deposition_.zero(now_);
    timerStart_ = now_;
    return {};
}

Reply Instrument::shutter(std::string_view arguments) {
    if (arguments == "?") {
        return {status::kOk, open_ ? "1" : "0"};
    }
    const auto wanted = integerIn(arguments, 0, 1);
    if (!wanted) {
        return refused(status::kBadData);
    }
    setShutter(*wanted == 1, now_);
    return {};
}

Reply Instrument::defaultFilms(std::string_view /*none*/) {
    if (open_) {
        return refused(status::kBadMode);
    }
    films_.restoreDefaults();
    applySource(now_);
    return {};
}

} // namespace drx9::sim
