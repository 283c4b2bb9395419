#pragma once

#include "graphs/ChartLook.h"
#include "graphs/RunPoints.h"
#include "platform/FilePort.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace drx9 {

class ChartModel;

/// The look as the text of a configuration file (docs/chart-files.md).
std::string chartLookText(const ChartLook& look);
/// Nothing where the text is not whole, not of this version, or holds a value that no chart can take. What it
/// leaves out stays as in `design`.
std::optional<ChartLook> parseChartLook(std::string_view text, const ChartLook& design);

/// A look without what an editor has changed of it: each entry that differs between `before` and `edited`,
/// and that nobody has changed in `now` since, as it was before.
ChartLook takenBack(const ChartLook& before, const ChartLook& edited, const ChartLook& now);

/// Points in the form of an export: a header line, then time and values with tabs between, an empty line at
/// a gap. Null where the text is anything else or its times do not rise.
std::unique_ptr<RunPoints> parseChartData(std::string_view text, int series);

/// The readings in view of the visible series in that form.
std::string chartExport(const ChartModel& model);

// The same from and to files. What is larger than any file of ours is refused unread.

FileStatus saveChartLook(FilePort& files, const std::string& path, const ChartLook& look);
std::optional<ChartLook> loadChartLook(const FilePort& files, const std::string& path,
                                       const ChartLook& design);
std::unique_ptr<RunPoints> loadChartData(const FilePort& files, const std::string& path, int series);

} // namespace drx9
