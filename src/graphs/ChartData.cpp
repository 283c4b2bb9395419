// Points as text: what an export writes and a data file holds.
#include "graphs/ChartFile.h"
#include "graphs/ChartModel.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace drx9 {

namespace {
constexpr std::size_t kMostRows = 400000; ///< more than a day at four a second
constexpr double kMostTime = 1e9;         ///< s

std::string_view takeUntil(std::string_view& rest, char end) {
    const std::size_t at = std::min(rest.find(end), rest.size());
    const std::string_view taken = rest.substr(0, at);
    rest.remove_prefix(std::min(at + 1, rest.size()));
    return taken;
}

std::string_view takeLine(std::string_view& rest) {
    std::string_view line = takeUntil(rest, '\n');
    if (!line.empty() && line.back() == '\r') {
        line.remove_suffix(1);
    }
    return line;
}

bool readNumber(std::string_view text, double& value) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() && std::isfinite(value);
}

/// One line of time and values; a series without a value there has an empty field.
bool readRow(std::string_view line, int series, bool gap, RunPoints& points) {
    double time = 0;
    if (!readNumber(takeUntil(line, '\t'), time)) {
        return false;
    }
    if (points.rows() == kMostRows || !(std::fabs(time) <= kMostTime) ||
        (points.rows() > 0 && time <= points.time(points.rows() - 1))) {
        return false;
    }
    const std::size_t row = points.rowAt(time);
    if (gap) {
        points.markGap(row);
    }
    for (int column = 0; !line.empty(); ++column) {
        const std::string_view field = takeUntil(line, '\t');
        double value = 0;
        if (column == series || (!field.empty() && !readNumber(field, value))) {
            return false;
        }
        if (!field.empty()) {
            points.set(static_cast<std::size_t>(column), row, value);
        }
    }
    return true;
}

std::string fieldText(std::string_view text) {
    std::string field(text);
    std::replace_if(
        field.begin(), field.end(), [](char c) { return c == '\t' || c == '\n' || c == '\r'; }, ' ');
    return field;
}

void addTime(std::string& text, double seconds) {
    std::array<char, 48> digits{};
    const auto end =
        std::to_chars(digits.data(), digits.data() + digits.size(), seconds, std::chars_format::fixed, 3).ptr;
    text.append(digits.data(), end);
}

void addValue(std::string& text, float value) {
    std::array<char, 64> digits{};
    const auto end =
        std::to_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::fixed);
    text.append(digits.data(), end.ptr);
}

/// Which series an export takes, and their rows.
struct ExportedSeries {
    std::size_t column;
    ChartModel::Rows rows;
};

std::vector<ExportedSeries> visibleSeries(const ChartModel& model) {
    std::vector<ExportedSeries> visible;
    for (int series = 0; series < model.seriesCount(); ++series) {
        if (model.seriesVisible(series)) {
            visible.push_back({model.column(series), model.drawnRows(series)});
        }
    }
    return visible;
}

/// False where none of the series has a value in the row.
bool addRow(std::string& text, const RunPoints& points, std::size_t row,
            const std::vector<ExportedSeries>& visible) {
    const std::size_t before = text.size();
    bool any = false;
    addTime(text, points.time(row));
    for (const ExportedSeries& series : visible) {
        text += '\t';
        const float value = points.value(series.column, row);
        if (row >= series.rows.from && row < series.rows.to && !std::isnan(value)) {
            addValue(text, value);
            any = true;
        }
    }
    text += '\n';
    if (!any) {
        text.resize(before);
    }
    return any;
}
} // namespace

std::unique_ptr<RunPoints> parseChartData(std::string_view text, int series) {
    auto points = std::make_unique<RunPoints>(static_cast<std::size_t>(series));
    const std::string_view header = takeLine(text);
    double number = 0;
    if (header.find('\t') == std::string_view::npos ||
        readNumber(header.substr(0, header.find('\t')), number)) {
        return nullptr;
    }
    bool gap = false;
    while (!text.empty()) {
        const std::string_view line = takeLine(text);
        if (!line.empty() && !readRow(line, series, gap, *points)) {
            return nullptr;
        }
        gap = line.empty();
    }
    return points;
}

std::string chartExport(const ChartModel& model) {
    const RunPoints& points = model.points();
    const std::vector<ExportedSeries> visible = visibleSeries(model);
    std::string text = "Elapsed Time (s)";
    for (int series = 0; series < model.seriesCount(); ++series) {
        if (model.seriesVisible(series)) {
            text += "\t" + fieldText(model.look().series[static_cast<std::size_t>(series)].label);
        }
    }
    text += '\n';
    const ValueSpan view = model.xView();
    bool gap = false;
    bool any = false;
    for (std::size_t row = points.firstAt(view.from); row < points.rows() && points.time(row) <= view.to;
         ++row) {
        gap = gap || points.gapBefore(row);
        if (gap && any) {
            text += '\n';
        }
        const bool added = addRow(text, points, row, visible);
        if (!added && gap && any) {
            text.pop_back();
        }
        gap = gap && !added;
        any = any || added;
    }
    return text;
}

} // namespace drx9
