#include "films/FilmMismatches.h"

#include "films/FilmText.h"
#include "films/Texts.h"
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
    const char* text;
};
constexpr Compared kCompared[] = {
    {&FilmRecord::Density, Dat::Material, "Density", filmText::kDensityIs},
    {&FilmRecord::Tooling, Dat::DBSelected, "Tooling", filmText::kToolingIs},
    {&FilmRecord::ZFactor, Dat::Material, "ZFactor", filmText::kZFactorIs},
    {&FilmRecord::EndThick, Dat::DBSelected, "EndThick", filmText::kFinalIs},
    {&FilmRecord::ThickSet, Dat::DBSelected, "ThickSet", filmText::kThicknessIs},
    {&FilmRecord::TimeSet, Dat::DBSelected, "TimeSet", filmText::kTimeIs},
    {&FilmRecord::SensorAvg, Dat::DBSelected, "SensorAvg", filmText::kSensorsIs}};

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
    return filled(differs, {std::to_string(film), instrument, database});
}

std::vector<FilmMismatch> filmMismatches(FilmLibrary& library, const FilmRecord& instrument, bool manySensors,
                                         const NumberLocale& locale) {
    std::vector<FilmMismatch> found;
    const jet::Value stored = library.value(Dat::DBSelected, "FilmName");
    const std::string name = trimmed(upperAnsi(ansiFromUtf8(textOf(stored))));
    if (!jet::isNull(stored) && trimmed(instrument.FilmName) != name) {
        found.push_back({filmText::kNameIs, utf8FromAnsi(trimmed(instrument.FilmName)), utf8FromAnsi(name)});
    }
    for (const Compared& compared : kCompared) {
        const double is = instrument.*compared.is;
        const auto value = wanted(library, compared, manySensors);
        if (value && is != *value) {
            found.push_back({compared.text, generalNumber(is, locale), generalNumber(*value, locale)});
        }
    }
    return found;
}

} // namespace drx9
