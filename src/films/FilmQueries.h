#pragma once

#include <string>

/// The queries of the film library, their different spellings kept. Values are put into them as they are: a
/// text that holds a quote breaks its query, which then finds nothing.
namespace drx9::queries {

std::string chosenMaterial(const std::string& material); ///< the one chosen in the combo
std::string chosenFilm(const std::string& name);         ///< the one chosen in the list
std::string materialTaken(const std::string& material);  ///< is there one of this name?
std::string filmTaken(const std::string& name);          ///< is there one of this name?
std::string filmNamed(const std::string& name);
std::string materialNamed(const std::string& material);
std::string materialOf(double density, double zFactor);
std::string filmNumbered(int number);

} // namespace drx9::queries
