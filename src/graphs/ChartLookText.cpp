#include "graphs/ChartFile.h"
#include "util/Text.h"

#include <array>
#include <charconv>
#include <cmath>
#include <functional>

namespace drx9 {

namespace {
constexpr std::string_view kFirstLine = "DRX9 chart settings 1";
constexpr std::string_view kLastLine = "End of chart settings";
constexpr std::size_t kMostLines = 4000;
constexpr std::size_t kMostUnknown = 1900; ///< lines; written back, with headings, they are not too many
constexpr std::size_t kMostUnknownBytes = 200000; ///< with their headings; likewise
constexpr double kMostNumber = 1e12;

std::string numberText(double value) {
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    return {digits.data(), end};
}

/// The shortest text that gives the same float.
std::string numberText(float value) {
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    return {digits.data(), end};
}

bool readNumber(std::string_view text, double& value) {
    double read = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), read);
    if (error != std::errc() || end != text.data() + text.size() || !(std::fabs(read) <= kMostNumber)) {
        return false;
    }
    value = read;
    return true;
}

bool readWithin(std::string_view text, double least, double most, double& value) {
    double read = 0;
    if (!readNumber(text, read) || read < least || read > most) {
        return false;
    }
    value = read;
    return true;
}

bool readFlag(std::string_view text, bool& flag) {
    flag = text == "yes";
    return flag || text == "no";
}

bool readText(std::string_view text, std::string& value) {
    value = text;
    return text.size() <= kMostTextBytes && isUtf8(text) && text.find('\0') == std::string_view::npos;
}

bool readColor(std::string_view text, std::optional<std::uint32_t>& color) {
    color.reset();
    if (text == "program") {
        return true;
    }
    std::uint32_t rgb = 0;
    const auto [end, error] =
        std::from_chars(text.data() + (text.empty() ? 0 : 1), text.data() + text.size(), rgb, 16);
    color = rgb;
    return text.size() == 7 && text[0] == '#' && error == std::errc() && end == text.data() + text.size();
}

std::string colorText(const std::optional<std::uint32_t>& color) {
    if (!color) {
        return "program";
    }
    std::string text = "#";
    for (int shift = 20; shift >= 0; shift -= 4) {
        text += "0123456789ABCDEF"[(*color >> shift) & 0xf];
    }
    return text;
}

/// Text that keeps its line: line ends become blanks, and no more than is read back.
std::string lineText(std::string_view text) {
    std::string line(text.substr(0, kMostTextBytes));
    while (!isUtf8(line)) {
        line.pop_back();
    }
    for (char& c : line) {
        c = c == '\n' || c == '\r' || c == '\0' ? ' ' : c;
    }
    return line;
}

/// A key's value to and from text. Reading tells whether the chart can take it.
struct Key {
    std::string_view name;
    std::function<std::string()> write;
    std::function<bool(std::string_view)> read;
};
using Section = std::vector<Key>;

constexpr double kLeastSpacing = 1e-6;

Section axisKeys(AxisLook& axis) {
    const auto number = [](std::string_view name, double& value, double least) {
        return Key{
            name, [&value] { return numberText(value); },
            [&value, least](std::string_view text) { return readWithin(text, least, kMostNumber, value); }};
    };
    return {
        {"Title", [&axis] { return lineText(axis.title); },
         [&axis](std::string_view text) { return readText(text, axis.title); }},
        number("Minimum", axis.minimum, -kMostNumber),
        number("Maximum", axis.maximum, -kMostNumber),
        {"Grid", [&axis] { return axis.gridPattern == kGridOn ? "yes" : "no"; },
         [&axis](std::string_view text) {
             bool on = false;
             const bool read = readFlag(text, on);
             axis.gridPattern = on ? kGridOn : kGridOff;
             return read;
         }},
        number("GridSpacing", axis.gridSpacing, kLeastSpacing),
        number("LabelSpacing", axis.labelSpacing, kLeastSpacing),
        number("TickSpacing", axis.tickSpacing, kLeastSpacing / 10),
        {"Format", [&axis] { return lineText(axis.format); },
         [&axis](std::string_view text) { return readText(text, axis.format); }},
    };
}

Section chartKeys(ChartLook& look) {
    return {{"Legend", [&look] { return look.legend ? "yes" : "no"; },
             [&look](std::string_view text) { return readFlag(text, look.legend); }},
            {"FontSize", [&look] { return std::to_string(look.fontPixels); },
             [&look](std::string_view text) {
                 double pixels = 0;
                 const bool own = text == "0";
                 const bool read = own || readWithin(text, kLeastFont, kMostFont, pixels);
                 look.fontPixels = static_cast<int>(pixels);
                 return read;
             }}};
}

Section seriesKeys(SeriesLook& series) {
    return {{"Label", [&series] { return lineText(series.label); },
             [&series](std::string_view text) { return readText(text, series.label); }},
            {"Color", [&series] { return colorText(series.color); },
             [&series](std::string_view text) { return readColor(text, series.color); }},
            {"Width", [&series] { return numberText(series.width); },
             [&series](std::string_view text) {
                 double width = 0;
                 const bool read = readWithin(text, kLeastLine, kMostLine, width);
                 series.width = static_cast<float>(width);
                 return read;
             }},
            {"Shown", [&series] { return series.shown ? "yes" : "no"; },
             [&series](std::string_view text) { return readFlag(text, series.shown); }}};
}

std::vector<std::pair<std::string, Section>> sectionsOf(ChartLook& look) {
    std::vector<std::pair<std::string, Section>> sections{
        {"[Chart]", chartKeys(look)}, {"[X]", axisKeys(look.x)}, {"[Y]", axisKeys(look.y)}};
    for (std::size_t i = 0; i < look.series.size(); ++i) {
        sections.emplace_back("[Series " + std::to_string(i + 1) + "]", seriesKeys(look.series[i]));
    }
    return sections;
}

/// The next line without its end, of whatever system.
std::string_view takeLine(std::string_view& rest) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    std::string_view line = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    while (!line.empty() && line.back() == '\r') {
        line.remove_suffix(1);
    }
    return line;
}

/// Reads the lines between the first and the last one.
class LookReader {
public:
    explicit LookReader(ChartLook& look)
        : look_(look)
        , sections_(sectionsOf(look)) {}

    /// False where a value is none that a chart can take.
    bool read(std::string_view line) {
        if (!line.empty() && line.front() == '[') {
            heading_ = line;
            section_ = nullptr;
            for (const auto& [name, keys] : sections_) {
                section_ = name == line ? &keys : section_;
            }
            return true;
        }
        const std::size_t equals = line.find('=');
        const Key* key = equals == std::string_view::npos ? nullptr : find(line.substr(0, equals));
        if (key != nullptr) {
            return key->read(line.substr(equals + 1));
        }
        return line.empty() || keep(line);
    }

private:
    bool keep(std::string_view line) {
        look_.unknown.emplace_back(heading_, line);
        unknownBytes_ += heading_.size() + line.size() + 2;
        return look_.unknown.size() <= kMostUnknown && unknownBytes_ <= kMostUnknownBytes;
    }
    [[nodiscard]] const Key* find(std::string_view name) const {
        for (const Key& key : section_ != nullptr ? *section_ : none_) {
            if (key.name == name) {
                return &key;
            }
        }
        return nullptr;
    }

    ChartLook& look_;
    std::vector<std::pair<std::string, Section>> sections_;
    const Section none_;
    const Section* section_ = nullptr;
    std::string heading_;
    std::size_t unknownBytes_ = 0;
};

/// The unknown lines of a heading; those of headings that the look does not have keep their order.
void addUnknown(std::string& text, const ChartLook& look, const std::string& heading) {
    for (const auto& [under, line] : look.unknown) {
        if (under == heading) {
            text += line + "\n";
        }
    }
}

void addUnknownHeadings(std::string& text, const ChartLook& look,
                        const std::vector<std::pair<std::string, Section>>& known) {
    std::string heading;
    for (const auto& [under, line] : look.unknown) {
        bool listed = under.empty();
        for (const auto& [name, keys] : known) {
            listed = listed || name == under;
        }
        if (!listed) {
            text += (under == heading ? "" : under + "\n") + line + "\n";
            heading = under;
        }
    }
}
} // namespace

std::string chartLookText(const ChartLook& look) {
    ChartLook copy = look; // the keys below could write it
    const auto sections = sectionsOf(copy);
    std::string text = std::string(kFirstLine) + "\n";
    addUnknown(text, look, "");
    for (const auto& [heading, keys] : sections) {
        text += heading + "\n";
        for (const Key& key : keys) {
            text += std::string(key.name) + "=" + key.write() + "\n";
        }
        addUnknown(text, look, heading);
    }
    addUnknownHeadings(text, look, sections);
    return text + std::string(kLastLine) + "\n";
}

ChartLook takenBack(const ChartLook& before, const ChartLook& edited, const ChartLook& now) {
    ChartLook result = now;
    ChartLook was = before; // the keys could write it
    ChartLook set = edited;
    const auto results = sectionsOf(result);
    const auto olds = sectionsOf(was);
    const auto edits = sectionsOf(set);
    for (std::size_t section = 0; section < results.size(); ++section) {
        for (std::size_t key = 0; key < results[section].second.size(); ++key) {
            const std::string old = olds[section].second[key].write();
            const std::string edit = edits[section].second[key].write();
            const Key& entry = results[section].second[key];
            if (old != edit && entry.write() == edit) {
                entry.read(old);
            }
        }
    }
    return result;
}

std::optional<ChartLook> parseChartLook(std::string_view text, const ChartLook& design) {
    ChartLook look = design;
    LookReader reader(look);
    if (takeLine(text) != kFirstLine) {
        return {};
    }
    for (std::size_t lines = 0; lines < kMostLines && !text.empty(); ++lines) {
        const std::string_view line = takeLine(text);
        if (line == kLastLine) {
            return text.empty() ? std::optional(std::move(look)) : std::nullopt;
        }
        if (!reader.read(line)) {
            return {};
        }
    }
    return {};
}

} // namespace drx9
