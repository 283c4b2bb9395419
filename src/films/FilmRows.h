#pragma once

#include "films/FilmLibrary.h"
#include "link/Records.h"

#include <string>
#include <vector>

namespace drx9 {

/// Fills `entry` from the database film of that name (its first 8 characters), with the density and Z factor
/// of its material. Fields that are null leave the entry's as they are. Where there is no such film the
/// entry's name becomes "NotAFilm" and nothing else changes.
///
/// `manySensors`: the instrument has three sensors or more. Otherwise only the first two count, and the first
/// one alone where neither is in the film's mask.
void DBFilmToComm(FilmLibrary& library, int slot, const std::string& name, bool manySensors,
                  FilmRecord& entry);

/// A value of the film that DBFilmToComm found, or of its material, is null: the instrument's own goes out.
bool hasEmptyValues(FilmLibrary& library);
/// One of them is infinite or no number, which no packet can tell.
bool hasEndlessValues(FilmLibrary& library);

/// What of a film was not stored.
struct StoredFilm {
    bool row = false; ///< the film is in the library
    /// Fields that keep their values: their columns could not hold the film's, or no material was found.
    std::vector<std::string> unfit;
};

/// Stores a film as the instrument told it, over the database film of its number or as a new one. Its
/// material is the one with the same density and Z factor, or a new "UnitMat1", "UnitMat2" and so on.
StoredFilm CommToDBFilm(FilmLibrary& library, const FilmRecord& film);

} // namespace drx9
