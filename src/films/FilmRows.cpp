#include "films/FilmRows.h"

#include "films/FilmQueries.h"
#include "films/FilmText.h"
#include "util/Numbers.h"
#include "util/Text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace drx9 {

namespace {
constexpr std::int32_t kTwoSensors = 3; ///< mask of the first two
constexpr std::int32_t kFirstSensor = 1;

/// The numbers that a film is sent with.
constexpr std::array<std::pair<Dat, const char*>, 7> kValues = {{{Dat::DBSelected, "Tooling"},
                                                                 {Dat::DBSelected, "EndThick"},
                                                                 {Dat::DBSelected, "ThickSet"},
                                                                 {Dat::DBSelected, "TimeSet"},
                                                                 {Dat::DBSelected, "SensorAvg"},
                                                                 {Dat::Material, "Density"},
                                                                 {Dat::Material, "ZFactor"}}};

void take(const jet::Value& value, double& number) {
    number = numberOf(value).value_or(number);
}

/// The material's name; null where it cannot be looked up, or there is none and none could be made. Sets
/// `unfit`.
jet::Value materialFor(FilmLibrary& library, const FilmRecord& film, std::vector<std::string>& unfit) {
    const Found there = library.select(Dat::Material, queries::materialOf(film.Density, film.ZFactor));
    if (there == Found::Yes) {
        return library.value(Dat::Material, "Material");
    }
    Found taken = there == Found::No ? Found::Yes : Found::Failed;
    std::string name;
    for (int n = 1; taken == Found::Yes; ++n) {
        name = "UnitMat" + std::to_string(n);
        taken = library.select(Dat::Material, queries::materialNamed(name));
    }
    const bool added =
        taken == Found::No &&
        library.add(Dat::Material, {{"Material", name}, {"Density", film.Density}, {"ZFactor", film.ZFactor}},
                    FilmLibrary::Unfit::KeepsField);
    unfit = added ? library.unfit() : std::vector<std::string>{"Material"};
    return added ? jet::Value(name) : jet::Value();
}
} // namespace

void DBFilmToComm(FilmLibrary& library, int slot, const std::string& name, bool manySensors,
                  FilmRecord& entry) {
    const std::string query = queries::filmNamed(firstCharacters(name, kFilmNameLength));
    if (library.select(Dat::DBSelected, query) != Found::Yes) {
        entry.FilmName = kNotAFilm;
        return;
    }
    const auto field = [&](const char* fieldName) { return library.value(Dat::DBSelected, fieldName); };
    entry.FilmNum = static_cast<std::int16_t>(slot);
    entry.FilmName = ansiFromUtf8(fixedText(textOf(field("FilmName")), kFilmNameLength));
    take(field("Tooling"), entry.Tooling);
    take(field("EndThick"), entry.EndThick);
    take(field("ThickSet"), entry.ThickSet);
    take(field("TimeSet"), entry.TimeSet);
    take(field("SensorAvg"), entry.SensorAvg);
    if (!manySensors) {
        const std::int32_t mask = toInt32(entry.SensorAvg) & kTwoSensors;
        entry.SensorAvg = mask == 0 ? kFirstSensor : mask;
    }
    entry.Material = textOf(field("Material"));
    if (library.select(Dat::Material, queries::materialNamed(entry.Material)) == Found::Failed) {
        entry.FilmName = kNotAFilm;
        return;
    }
    take(library.value(Dat::Material, "Density"), entry.Density);
    take(library.value(Dat::Material, "ZFactor"), entry.ZFactor);
}

bool hasEmptyValues(FilmLibrary& library) {
    return std::any_of(kValues.begin(), kValues.end(), [&](const auto& value) {
        return jet::isNull(library.value(value.first, value.second));
    });
}

bool hasEndlessValues(FilmLibrary& library) {
    return std::any_of(kValues.begin(), kValues.end(), [&](const auto& value) {
        const auto number = numberOf(library.value(value.first, value.second));
        return number && !std::isfinite(*number);
    });
}

StoredFilm CommToDBFilm(FilmLibrary& library, const FilmRecord& film) {
    constexpr auto kPolicy = FilmLibrary::Unfit::KeepsField;
    StoredFilm outcome;
    const jet::Value material = materialFor(library, film, outcome.unfit);
    const std::string name = utf8FromAnsi(film.FilmName);
    FilmLibrary::Values values{{"FilmName", name},
                               {"Tooling", film.Tooling},
                               {"EndThick", film.EndThick},
                               {"ThickSet", film.ThickSet},
                               {"TimeSet", film.TimeSet},
                               {"SensorAvg", film.SensorAvg},
                               {"FilmNum", std::int64_t{film.FilmNum}}};
    if (!jet::isNull(material)) {
        values.emplace_back("Material", material);
    }
    const Found there = library.select(Dat::DBSelected, queries::filmNumbered(film.FilmNum));
    // A row added where the number cannot be looked up would come again with each upload.
    outcome.row = there == Found::Yes  ? library.edit(Dat::DBSelected, values, kPolicy)
                  : there == Found::No ? library.add(Dat::DBSelected, values, kPolicy)
                                       : false;
    outcome.unfit.insert(outcome.unfit.end(), library.unfit().begin(), library.unfit().end());
    library.select(Dat::DBSelected, queries::filmNamed(name));
    return outcome;
}

} // namespace drx9
