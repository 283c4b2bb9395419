#include "simulator/FilmMemory.h"

#include <array>

#include "simulator/Text.h"

namespace drx9::sim {

namespace {
constexpr std::size_t kNameLength = 8;
constexpr std::size_t kFieldCount = 7;
constexpr double kLargestMask = 255;

struct Material {
    std::string_view name;
    double density;
    double zFactor;
    double endThick;
};

constexpr std::array<Material, 9> kMaterials{{{"ALUMINUM", 2.70, 1.08, 5.0},
                                              {"GOLD", 19.30, 0.381, 1.0},
                                              {"SILVER", 10.50, 0.529, 2.5},
                                              {"COPPER", 8.93, 0.437, 3.0},
                                              {"CHROMIUM", 7.20, 0.305, 0.5},
                                              {"NICKEL", 8.91, 0.331, 2.0},
                                              {"TITANIUM", 4.50, 0.628, 1.5},
                                              {"SIO2", 2.20, 1.07, 4.0},
                                              {"MGF2", 3.18, 0.637, 1.2}}};

std::string padded(std::string name) {
    name.resize(kNameLength, ' ');
    return name;
}

SimFilm defaultFilm(std::size_t index, unsigned sensorMask) {
    SimFilm film;
    film.sensorAvg = sensorMask;
    if (index < kMaterials.size()) {
        const Material& material = kMaterials[index];
        film.name = padded(std::string(material.name));
        film.density = material.density;
        film.zFactor = material.zFactor;
        film.endThick = material.endThick;
        film.thickSet = material.endThick / 2;
        film.timeSet = 60;
    } else {
        film.name = padded("FILM" + std::to_string(index + 1));
        film.density = 1;
    }
    return film;
}

/// Padding reads back as blanks; a "_" inside the name stays.
std::string keptName(std::string_view written) {
    std::string name(written);
    for (std::size_t at = name.size(); at > 0 && (name[at - 1] == '_' || name[at - 1] == ' '); --at) {
        name[at - 1] = ' ';
    }
    return name;
}

std::string recordOf(const SimFilm& kept) {
    return kept.name + ' ' + fixedText(kept.density, 3) + ' ' + fixedText(kept.tooling, 0) + ' ' +
           fixedText(kept.zFactor, 3) + ' ' + fixedText(kept.endThick, 3) + ' ' +
           fixedText(kept.thickSet, 3) + ' ' + plainText(kept.timeSet) + ' ' + fixedText(kept.sensorAvg, 0);
}
} // namespace

FilmMemory::FilmMemory(int count, unsigned sensorMask)
    : sensorMask_(sensorMask)
    , films_(static_cast<std::size_t>(count)) {
    restoreDefaults();
}

void FilmMemory::restoreDefaults() {
    for (std::size_t index = 0; index < films_.size(); ++index) {
        films_[index] = defaultFilm(index, sensorMask_);
    }
}

std::string FilmMemory::record(int number) const {
    return recordOf(film(number));
}

bool FilmMemory::store(int number, std::string_view fields) {
    if (fields.size() <= kNameLength || fields[kNameLength] != ' ') {
        return false;
    }
    const auto numbers = numbersIn(fields.substr(kNameLength), kFieldCount);
    if (!numbers) {
        return false;
    }
    const std::vector<double>& n = *numbers;
    const SimFilm taken{keptName(fields.substr(0, kNameLength)), n[0], n[1], n[2], n[3], n[4], n[5], n[6]};
    if (n[0] < 0 || n[1] < 0 || n[6] < 0 || n[6] > kLargestMask || recordOf(taken).size() > kMaxReplyData) {
        return false;
    }
    films_[static_cast<std::size_t>(number - 1)] = taken;
    return true;
}

} // namespace drx9::sim
