#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace drx9 {

/// The four strip charts, by the names of their graph classes; in the graphs' fixed order.
enum class GraphKind { cAvgGraph, cChanGraph, cAvgThkGraph, cChanThkGraph };

/// What tells the four kinds apart.
struct ChartDesign {
    GraphKind kind;
    const char* controlName;
    const char* fileName;    ///< of the configuration, with the leading separator
    const char* heading;     ///< "Average Rate Graph"
    const char* title;       ///< of the Y axis
    const char* unit;        ///< of the Y axis
    const char* seriesLabel; ///< a number follows where there are several series
    int series;
    int firstColumn; ///< of its series in the run's points
    float yMax;
    float ySpacing;
    int decimals;        ///< of a value that is read off
    bool pumpsAfterInit; ///< Init ends by letting pending events run
};

/// Columns of the run's points: average rate and thickness, six rates, six thicknesses.
inline constexpr std::size_t kRunColumns = 14;

const ChartDesign& chartDesign(GraphKind kind);

inline constexpr int kGridOn = 4;  ///< line pattern of a grid that shows
inline constexpr int kGridOff = 1; ///< line pattern without a line

struct AxisLook {
    double minimum = 0;
    double maximum = 1;
    double gridSpacing = 1;
    double labelSpacing = 1;
    double tickSpacing = 0.1;
    int gridPattern = kGridOn;
    int annotation = 2; ///< labels at whole multiples of their spacing
    std::string title;
    std::string format; ///< "%H:%M:%S" of elapsed seconds; "%g", "%.0f" to "%.6f" of values
};

struct SeriesLook {
    std::string label;
    std::optional<std::uint32_t> color; ///< 0xRRGGBB; none: the program's own, which follows the theme
    float width = 1.5F;
    bool shown = true;
};

/// All that a chart's configuration file holds.
struct ChartLook {
    AxisLook x;
    AxisLook y;
    bool legend = true;
    int fontPixels = 0; ///< of labels and legend; 0: the application's own size
    std::vector<SeriesLook> series;
    /// Lines of the file that this version does not know, each with the heading above it; they
    /// are written back.
    std::vector<std::pair<std::string, std::string>> unknown;
};

/// Bytes of a title, label or format.
inline constexpr std::size_t kMostTextBytes = 200;
/// What a field for one takes, in 16-bit characters: none needs more than four bytes.
inline constexpr int kMostTextCharacters = kMostTextBytes / 4;
inline constexpr float kLeastLine = 0.5F;
inline constexpr float kMostLine = 5;
inline constexpr int kLeastFont = 8;
inline constexpr int kMostFont = 32;

/// The look before any file was read.
ChartLook designLook(const ChartDesign& design);

} // namespace drx9
