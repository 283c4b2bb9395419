#include "link/Commands.h"

#include "util/Numbers.h"
#include "util/Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>
#include <string_view>
#include <system_error>
#include <vector>

namespace drx9 {

namespace {
constexpr std::size_t kNameLength = 8;
constexpr std::size_t kShortestFilmReply = 9;
constexpr int kFilmCharacter = 48; // film 1 is "1", film 10 ":"

std::vector<std::string_view> words(std::string_view text) {
    std::vector<std::string_view> found;
    while (true) {
        const std::size_t start = text.find_first_not_of(' ');
        if (start == std::string_view::npos) {
            return found;
        }
        const std::size_t end = std::min(text.find(' ', start), text.size());
        found.push_back(text.substr(start, end - start));
        text.remove_prefix(end);
    }
}

std::string wireName(const std::string& name) {
    std::string wire = upperAnsi(name);
    wire.resize(kNameLength, ' ');
    std::replace(wire.begin(), wire.end(), ' ', '_');
    return wire;
}

/// The number that the word begins with; nothing where there is none, or where a "," follows it, so that
/// "2,5" is never read as 2.
std::optional<double> leadingNumber(std::string_view word) {
    if (!word.empty() && word.front() == '+') {
        word.remove_prefix(1);
    }
    double value = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
    const bool comma = end != word.data() + word.size() && *end == ',';
    if (error != std::errc() || comma || !std::isfinite(value)) {
        return std::nullopt;
    }
    return value;
}

template<class Parameters>
auto fieldsB(Parameters& p) {
    return std::array{&p.Timebase,   &p.Simulate,   &p.FreqDisplay, &p.RateResolution,
                      &p.RateFilter, &p.Tooling[0], &p.Tooling[1],  &p.Tooling[2],
                      &p.Tooling[3], &p.Tooling[4], &p.Tooling[5]};
}

template<class Parameters>
auto fieldsC(Parameters& p) {
    return std::array{&p.FreqMin, &p.FreqMax, &p.RateMin, &p.RateMax, &p.ThickMin, &p.ThickMax, &p.EtchMode};
}

template<class Fields>
std::string payload(char letter, const Fields& fields) {
    std::string text(1, letter);
    for (const double* field : fields) {
        text +=
            Str(*field) + " "; // two blanks between values and one at the end: the instrument's accepted form
    }
    return text;
}

template<class Fields>
bool parseFields(const std::string& reply, const Fields& fields) {
    const std::vector<std::string_view> found = words(reply);
    std::vector<double> values;
    for (const std::string_view word : found) {
        const std::optional<double> value = leadingNumber(word);
        if (!value) {
            return false;
        }
        values.push_back(*value);
    }
    if (values.size() != fields.size()) {
        return false;
    }
    for (std::size_t i = 0; i < fields.size(); ++i) {
        *fields[i] = values[i];
    }
    return true;
}
} // namespace

std::string filmCommand(int number) {
    return {'A', static_cast<char>(static_cast<unsigned char>(number + kFilmCharacter))};
}

std::string filmPayload(const FilmRecord& film) {
    const NumberLocale wire; // "." whatever the operator's locale
    const auto fixed = [&wire](double value, int decimals) {
        return fixedNumber(value, decimals, wire) + " ";
    };
    return wireName(film.FilmName) + " " + fixed(film.Density, 3) + fixed(film.Tooling, 0) +
           fixed(film.ZFactor, 3) + fixed(film.EndThick, 3) + fixed(film.ThickSet, 3) + Str(film.TimeSet) +
           " " + Str(film.SensorAvg);
}

bool parseFilmReply(const std::string& reply, int number, FilmRecord& film) {
    if (reply.size() < kShortestFilmReply) {
        return false;
    }
    const std::vector<std::string_view> found = words(std::string_view(reply).substr(kNameLength));
    const auto value = [&found](std::size_t i) { return i < found.size() ? Val(found[i]) : 0.0; };
    film.FilmNum = static_cast<std::int16_t>(number);
    film.FilmName = reply.substr(0, kNameLength);
    film.Density = value(0);
    film.Tooling = value(1);
    film.ZFactor = value(2);
    film.EndThick = value(3);
    film.ThickSet = value(4);
    film.TimeSet = value(5);
    film.SensorAvg = value(6);
    return true;
}

std::string systemPayloadB(const SystemParameters& parameters) {
    return payload('B', fieldsB(parameters));
}

std::string systemPayloadC(const SystemParameters& parameters) {
    return payload('C', fieldsC(parameters));
}

bool parseSystemB(const std::string& reply, SystemParameters& parameters) {
    return parseFields(reply, fieldsB(parameters));
}

bool parseSystemC(const std::string& reply, SystemParameters& parameters) {
    return parseFields(reply, fieldsC(parameters));
}

} // namespace drx9
