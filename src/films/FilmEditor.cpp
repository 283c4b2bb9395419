#include "films/FilmEditor.h"

#include "films/FilmQueries.h"
#include "films/FilmText.h"
#include "films/Texts.h"
#include "util/Numbers.h"
#include "util/Text.h"

#include <algorithm>
#include <cmath>

namespace drx9 {

namespace {
constexpr double kSecondsPerMinute = 60;
constexpr double kMostMinutes = 99;
constexpr const char* kNewFilm = "NewFilm";
constexpr const char* kUnitFilm = "UnitFilm";

/// Where a bound box finds its value.
struct Bound {
    Dat source;
    const char* field;
};
constexpr std::array<Bound, kFilmBoxes> kBound{{{Dat::DBSelected, "Tooling"},
                                                {Dat::Material, "Density"},
                                                {Dat::Material, "ZFactor"},
                                                {Dat::DBSelected, "EndThick"},
                                                {Dat::DBSelected, "ThickSet"},
                                                {Dat::DBSelected, "FilmName"}}};

std::string cannotHold(const std::string& what) {
    return filled(filmText::kCannotHold, {what});
}
} // namespace

// ---- What is shown ----

std::vector<FilmRow> FilmEditor::films() {
    const auto numbers = parts_.library.column(Dat::DBFilms, "FilmNum");
    const auto names = parts_.library.column(Dat::DBFilms, "FilmName");
    std::vector<FilmRow> rows;
    for (std::size_t i = 0; i < names.size(); ++i) {
        rows.push_back({shownText(numbers[i], parts_.locale), textOf(names[i])});
    }
    return rows;
}

std::vector<std::string> FilmEditor::materials() {
    std::vector<std::string> names;
    for (const jet::Value& name : parts_.library.column(Dat::MatAll, "Material")) {
        names.push_back(textOf(name));
    }
    return names;
}

void FilmEditor::ShowDBFilm(const std::string& name) {
    const Found film = parts_.library.select(Dat::DBSelected, queries::chosenFilm(name));
    if (film == Found::Failed && name.find('\'') != std::string::npos) {
        parts_.library.tell(filled(filmText::kQuote, {trimmed(name)}), Tone::Warn);
    }
    const std::string material = text(Dat::DBSelected, "Material");
    selectMaterial(material);
    if (film == Found::Yes && material.find('\'') != std::string::npos) {
        parts_.library.tell(filled(filmText::kQuote, {material}), Tone::Warn);
    }
}

void FilmEditor::selectMaterial(const std::string& name) {
    parts_.library.select(Dat::Material, queries::chosenMaterial(fitting(name)));
}

ShownFilm FilmEditor::shown() {
    ShownFilm now;
    now.film = parts_.library.found(Dat::DBSelected);
    now.material = parts_.library.found(Dat::Material);
    for (std::size_t i = 0; i < kFilmBoxes; ++i) {
        now.boxes[i] =
            trimmedRight(shownText(parts_.library.value(kBound[i].source, kBound[i].field), parts_.locale));
    }
    now.materialName = text(Dat::DBSelected, "Material");
    const std::int32_t mask = toInt32(number("SensorAvg"));
    for (std::size_t k = 0; k < kFilmSensors; ++k) {
        now.sensors[k] = ((mask >> k) & 1) != 0;
    }
    const double time = number("TimeSet");
    const double minutes = std::floor(time / kSecondsPerMinute);
    now.minutes = toInt16(std::clamp(minutes, 0.0, kMostMinutes));
    now.seconds = toInt16(std::clamp(std::floor(time - minutes * kSecondsPerMinute), 0.0, 59.0));
    if ((minutes > kMostMinutes || time < 0) && parts_.library.notice().text.empty()) {
        parts_.library.tell(filled(filmText::kLongTime, {generalNumber(time, parts_.locale)}), Tone::Warn);
    }
    return now;
}

std::string FilmEditor::text(Dat source, const char* field) {
    return textOf(parts_.library.value(source, field));
}

double FilmEditor::number(const char* field) {
    return numberOf(parts_.library.value(Dat::DBSelected, field)).value_or(0);
}

// ---- Edits ----

void FilmEditor::editBox(FilmBox box, const std::string& typed) {
    const Bound& bound = kBound[static_cast<std::size_t>(box)];
    const auto value = typedNumber(typed, parts_.locale);
    if (!value) {
        parts_.library.tell(filled(filmText::kNoNumber, {typed}), Tone::Warn);
        return;
    }
    parts_.library.edit(bound.source, {{bound.field, *value}});
}

bool FilmEditor::EditFilmName(const std::string& typed) {
    if (!parts_.library.found(Dat::DBSelected)) {
        return false;
    }
    const jet::Value filmNum = parts_.library.value(Dat::DBSelected, "FilmNum");
    const std::string name = firstCharacters(
        typed.empty() ? "FILM " + shownText(filmNum, NumberLocale{}) : typed, kFilmNameLength);
    if (firstCharacters(name, std::string_view(kNewFilm).size()) == kNewFilm || name == kUnitFilm) {
        refuse(filmText::kReservedName, filmText::kReservedNameTitle);
        return false;
    }
    if (name.find('!') != std::string::npos) {
        parts_.library.tell(cannotHold("!"), Tone::Warn);
        return false;
    }
    if (parts_.library.edit(Dat::DBSelected, {{"FilmName", name}})) {
        parts_.library.renameQuery(Dat::DBSelected, queries::chosenFilm(name));
    }
    parts_.library.refresh(Dat::DBFilms);
    return true;
}

/// The mask is changed by adding and subtracting, not by setting a bit.
void FilmEditor::clickSensor(std::size_t sensor, bool checked) {
    const double bit = std::ldexp(1.0, static_cast<int>(sensor));
    const double mask = number("SensorAvg");
    parts_.library.edit(Dat::DBSelected, {{"SensorAvg", checked ? mask + bit : mask - bit}});
}

void FilmEditor::setTime(int minutes, int seconds) {
    parts_.library.edit(Dat::DBSelected, {{"TimeSet", minutes * kSecondsPerMinute + seconds}});
}

/// No longer than the column takes.
std::string FilmEditor::fitting(const std::string& material) {
    const std::size_t size = parts_.library.columnSize("Material", "Material");
    return size == 0 ? material : firstCharacters(material, size);
}

void FilmEditor::changeMaterial(const std::string& typed) {
    selectMaterial(typed);
    if (!parts_.library.found(Dat::DBSelected)) {
        return;
    }
    if (parts_.library.found(Dat::Material)) {
        parts_.library.edit(Dat::DBSelected, {{"Material", parts_.library.value(Dat::Material, "Material")}});
    } else if (typed.find('\'') != std::string::npos) {
        parts_.library.tell(filled(filmText::kQuote, {typed}), Tone::Warn);
    } else if (!typed.empty()) {
        parts_.library.tell(filled(filmText::kNoMaterial, {typed, text(Dat::DBSelected, "Material")}),
                            Tone::Warn);
    }
}

// ---- New rows ----

void FilmEditor::refuse(const std::string& what, const std::string& title) {
    parts_.boxes.show(what, title, MessageIcon::Exclamation);
}

std::string FilmEditor::addMaterial() {
    const std::string answer = fitting(parts_.input.ask(filmText::kAskMaterial, filmText::kAskMaterialTitle));
    if (answer.empty()) {
        return {};
    }
    if (parts_.library.select(Dat::Material, queries::materialTaken(answer)) == Found::Yes) {
        refuse(filmText::kDuplicateMaterial, filmText::kDuplicateMaterialTitle);
        selectMaterial(text(Dat::DBSelected, "Material"));
        return {};
    }
    const std::string name = firstCharacters(answer, kMaterialNameLength);
    const bool added =
        parts_.library.add(Dat::MatAll, {{"Material", name}, {"Density", 1.0}, {"ZFactor", 1.0}});
    parts_.library.refresh(Dat::MatAll);
    if (!added) {
        selectMaterial(text(Dat::DBSelected, "Material"));
    }
    return added ? name : std::string();
}

bool FilmEditor::addFilm(const std::string& material) {
    const std::string answer = parts_.input.ask(filmText::kAskFilm, filmText::kAskFilmTitle);
    if (answer.empty()) {
        return false;
    }
    if (answer.find('!') != std::string::npos) {
        parts_.library.tell(cannotHold("!"), Tone::Warn);
        return false;
    }
    const std::string current = text(Dat::DBSelected, "FilmName");
    if (parts_.library.select(Dat::DBSelected, queries::filmTaken(answer)) == Found::Yes) {
        refuse(filmText::kDuplicateFilm, filmText::kDuplicateFilmTitle);
        ShowDBFilm(current);
        return false;
    }
    const std::string name = firstCharacters(answer, kFilmNameLength);
    const bool stored =
        parts_.library.add(Dat::DBFilms, {{"FilmName", name}, {"Material", fitting(material)}});
    parts_.library.refresh(Dat::DBFilms);
    if (!stored) {
        ShowDBFilm(current);
        return false;
    }
    tellAdded(answer, name);
    selectMaterial(text(Dat::DBSelected, "Material"));
    return true;
}

/// Makes the film that was added the selected one, and says where it is not found.
void FilmEditor::tellAdded(const std::string& answer, const std::string& name) {
    const bool twice = parts_.library.select(Dat::DBSelected, queries::filmNamed(name)) == Found::Yes &&
                       parts_.library.column(Dat::DBSelected, "FilmName").size() > 1;
    const Found found = parts_.library.select(Dat::DBSelected, queries::filmNamed(answer));
    if (found == Found::Failed) {
        parts_.library.tell(filled(filmText::kQuote, {name}), Tone::Warn);
    } else if (found == Found::No) {
        parts_.library.tell(filled(twice ? filmText::kSameNameAdded : filmText::kFilmAdded, {name}),
                            twice ? Tone::Warn : Tone::Plain);
    }
}

} // namespace drx9
