#include "films/FilmQueries.h"

#include "util/Numbers.h"

namespace drx9::queries {

namespace {
/// A number as a query holds it, "." whatever the operator's locale.
std::string plain(double value) {
    return generalNumber(value, NumberLocale{});
}
} // namespace

std::string chosenMaterial(const std::string& material) {
    return "SELECT * From Material WHERE Material ='" + material + "'";
}

std::string chosenFilm(const std::string& name) {
    return "SELECT * FROM Film WHERE FilmName ='" + name + "'";
}

std::string materialTaken(const std::string& material) {
    return "SELECT * FROM Material Where Material='" + material + "'";
}

std::string filmTaken(const std::string& name) {
    return "SELECT * FROM Film Where FilmName='" + name + "'";
}

std::string filmNamed(const std::string& name) {
    return "SELECT * FROM Film WHERE FilmName='" + name + "'";
}

std::string materialNamed(const std::string& material) {
    return "SELECT * FROM Material WHERE Material='" + material + "'";
}

std::string materialOf(double density, double zFactor) {
    return "SELECT * FROM Material WHERE Density=" + plain(density) + "AND ZFactor=" + plain(zFactor);
}

std::string filmNumbered(int number) {
    return "SELECT * FROM Film WHERE FilmNum=" + std::to_string(number);
}

} // namespace drx9::queries
