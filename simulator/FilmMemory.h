#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace drx9::sim {

/// One slot of the instrument's film memory, with the digits that the instrument keeps.
struct SimFilm {
    std::string name; ///< exactly 8 characters
    double density = 0;
    double tooling = 100; ///< per cent
    double zFactor = 1;
    double endThick = 0;  ///< kÅ; 0 = no end
    double thickSet = 0;  ///< kÅ
    double timeSet = 0;   ///< s
    double sensorAvg = 0; ///< mask of averaged sensors, bit 0 = sensor 1
};

/// The instrument's films, numbered from 1. Numbers outside 1..count() may only be passed to valid().
class FilmMemory {
public:
    /// `sensorMask` is the mask of the sensors that the instrument has; default films average all of them.
    FilmMemory(int count, unsigned sensorMask);

    int count() const { return static_cast<int>(films_.size()); }
    bool valid(int number) const { return number >= 1 && number <= count(); }
    const SimFilm& film(int number) const { return films_[static_cast<std::size_t>(number - 1)]; }

    /// The film number that the character of a film command stands for (code minus 48), whether valid or not.
    static int numberOf(char character) { return static_cast<unsigned char>(character) - 48; }

    /// Answer to the film query: 8 characters of name, a blank, seven numbers.
    std::string record(int number) const;

    /// Takes a film as written: name of 8 characters (padding "_"), a blank, seven numbers separated by any
    /// number of blanks; density, tooling and mask are not negative. Returns false and changes nothing when
    /// the text is anything else.
    bool store(int number, std::string_view fields);

    void restoreDefaults();

private:
    unsigned sensorMask_;
    std::vector<SimFilm> films_;
};

} // namespace drx9::sim
