#include "films/FilmMismatches.h"

#include "films/FilmText.h"
#include "util/Numbers.h"
#include "util/Text.h"

#include <optional>

namespace drx9 {

namespace {
constexpr std::int32_t kWholeMask = 127;
constexpr std::int32_t kTwoSensorMask = 3;

/// A number of the film, and where the database has it.
struct Compared {
    double FilmRecord::*is;
    Dat source;
    const char* field;
    const char* first;
    const char* second;
};
constexpr Compared kCompared[] = {{&FilmRecord::Density, Dat::Material, "Density", "Film Density for film #",
                                   "The Film Density should be "},
                                  {&FilmRecord::Tooling, Dat::DBSelected, "Tooling",
                                   "Film Tooling for film #", "The Film Tooling should be "},
                                  {&FilmRecord::ZFactor, Dat::Material, "ZFactor", "Film ZFactor for film #",
                                   "The Film ZFactor should be "},
                                  {&FilmRecord::EndThick, Dat::DBSelected, "EndThick",
                                   "Final Thickness for film #", "The Final Thickness should be "},
                                  {&FilmRecord::ThickSet, Dat::DBSelected, "ThickSet",
                                   "Thickness Setpoint for film #", "The Thickness Setpoint should be "},
                                  {&FilmRecord::TimeSet, Dat::DBSelected, "TimeSet",
                                   "Time Setpoint for film #", "The Time Setpoint should be "},
                                  {&FilmRecord::SensorAvg, Dat::DBSelected, "SensorAvg",
                                   "Sensor Average for film #", "The Sensor Average should be "}};

/// What the instrument should hold; nothing for a null.
std::optional<double> wanted(FilmLibrary& library, const Compared& compared, bool manySensors) {
    auto value = numberOf(library.value(compared.source, compared.field));
    if (value && compared.is == &FilmRecord::SensorAvg) {
        value = toInt32(*value) & (manySensors ? kWholeMask : kTwoSensorMask);
    }
    return value;
}
} // namespace

std::string FilmMismatch::text(int film) const {
    return is + std::to_string(film) + " = " + instrument + ".\n" + shouldBe + database;
}

std::vector<FilmMismatch> filmMismatches(FilmLibrary& library, const FilmRecord& instrument, bool manySensors,
                                         const NumberLocale& locale) {
    std::vector<FilmMismatch> found;
    const jet::Value stored = library.value(Dat::DBSelected, "FilmName");
    const std::string name = trimmed(upperAnsi(ansiFromUtf8(textOf(stored))));
    if (!jet::isNull(stored) && trimmed(instrument.FilmName) != name) {
        found.push_back({"Film Name for film #", utf8FromAnsi(trimmed(instrument.FilmName)),
                         "The Film Name should be ", utf8FromAnsi(name)});
    }
    for (const Compared& compared : kCompared) {
        const double is = instrument.*compared.is;
        const auto value = wanted(library, compared, manySensors);
        if (value && is != *value) {
            found.push_back(
                {compared.first, generalNumber(is, locale), compared.second, generalNumber(*value, locale)});
        }
    }
    return found;
}

} // namespace drx9
