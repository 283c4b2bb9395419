#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "simulator/Deposition.h"
#include "simulator/FilmMemory.h"
#include "simulator/SystemRecord.h"

namespace drx9::sim {

/// Status letters of replies.
namespace status {
constexpr char kOk = 'A';
constexpr char kNotReady = 'B';
constexpr char kBadCommand = 'C';
constexpr char kBadData = 'D';
constexpr char kBadMode = 'E';
} // namespace status

struct Reply {
    char status = status::kOk;
    std::string data; ///< at most 219 bytes
};

struct InstrumentOptions {
    int sensors = kMaxSensors; ///< 0: the instrument does not tell; it then measures all six
    int films = 99;
    std::string versionText = "DRX-9 Ver 4.12";
    std::uint64_t seed = 1;
    bool frozen = false; ///< time stands still and nothing jitters, so every reading repeats
};

/// What the instrument is and does, command text in, reply out; no framing, no links, no faults of the line.
/// Times are simulated seconds; one that lies before an earlier one counts as that earlier one.
class Instrument {
public:
    explicit Instrument(const InstrumentOptions& options);

    Reply execute(std::string_view command, double now);

    void failCrystal(int sensor, double when, CrystalFailure kind);
    void mendCrystal(int sensor, double now);
    void setShutter(bool open, double now);

    bool shutterOpen(double now);
    int currentFilm() const { return currentFilm_; }
    int sensors() const { return sensors_; }
    /// Seconds since the timer was last restarted.
    double timer(double now);
    double averageRate(double now);
    double averageThickness(double now);

private:
    using Handler = Reply (Instrument::*)(std::string_view arguments);
    struct Entry {
        char letter;
        bool takesArguments;
        Handler handler;
    };
    static const std::array<Entry, 15> kCommands;

    Reply version(std::string_view);
    Reply type(std::string_view);
    Reply readFrequency(std::string_view arguments);
    Reply readRate(std::string_view arguments);
    Reply readThickness(std::string_view arguments);
    Reply readAverageRate(std::string_view);
    Reply readAverageThickness(std::string_view);
    Reply selectFilm(std::string_view arguments);
    Reply filmMemory(std::string_view arguments);
    Reply generalRecord(std::string_view arguments);
    Reply limitsRecord(std::string_view arguments);
    Reply zero(std::string_view);
    Reply restart(std::string_view);
    Reply shutter(std::string_view arguments);
    Reply defaultFilms(std::string_view);

    void advance(double now);
    void closeAtEnd(double from, double to);
    void applySource(double now);
    Source source() const;
    int sensorIn(std::string_view arguments) const;
    bool averaged(int sensor, double now) const;
    template<class Value>
    double average(Value value, double now) const;
    double thicknessAt(double now) const;
    double sense() const { return system_.etchMode() ? -1 : 1; }
    double jitter(double width);
    std::string rateText(double rate);

    InstrumentOptions options_;
    int sensors_;
    FilmMemory films_;
    SystemRecord system_;
    Deposition deposition_;
    int currentFilm_ = 1;
    bool open_ = false;
    double now_ = 0;
    double timerStart_ = 0;
    std::uint64_t readings_ = 0;
    std::array<std::string, kMaxSensors> lastFrequency_;
};

} // namespace drx9::sim
