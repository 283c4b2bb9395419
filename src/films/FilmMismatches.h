#pragma once

#include "films/FilmLibrary.h"
#include "link/Records.h"
#include "util/NumberLocale.h"

#include <string>
#include <vector>

namespace drx9 {

/// One field in which a film read back differs from the library's. UTF-8 texts.
struct FilmMismatch {
    const char* differs; ///< takes the film's number and the two values
    std::string instrument;
    std::string database;

    /// The question about it.
    [[nodiscard]] std::string text(int film) const;
};

/// The fields, of eight, in which the instrument's film differs from the current film and material of the
/// library, in the order in which they are asked about. Numbers are compared as they are; a null is no value
/// to differ from. `manySensors` as in DBFilmToComm.
std::vector<FilmMismatch> filmMismatches(FilmLibrary& library, const FilmRecord& instrument, bool manySensors,
                                         const NumberLocale& locale);

} // namespace drx9
