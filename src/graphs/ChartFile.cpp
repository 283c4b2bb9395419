#include "graphs/ChartFile.h"

#include "platform/AtomicReplace.h"

namespace drx9 {

namespace {
constexpr std::uint64_t kMostLookBytes = 256 * 1024;
constexpr std::uint64_t kMostDataBytes = 16 * 1024 * 1024;

/// Whole file of at most so many bytes.
std::optional<std::string> readWithin(const FilePort& files, const std::string& path, std::uint64_t most) {
    const std::optional<std::uint64_t> size = files.size(path);
    if (!size || *size == 0 || *size > most) {
        return {};
    }
    FileStatus status;
    const std::unique_ptr<InputFile> file = files.open(path, status);
    std::string bytes(static_cast<std::size_t>(*size), '\0');
    if (!file || !file->read(0, bytes).ok()) {
        return {};
    }
    return bytes;
}
} // namespace

FileStatus saveChartLook(FilePort& files, const std::string& path, const ChartLook& look) {
    return replaceFile(files, path, chartLookText(look));
}

std::optional<ChartLook> loadChartLook(const FilePort& files, const std::string& path,
                                       const ChartLook& design) {
    const std::optional<std::string> text = readWithin(files, path, kMostLookBytes);
    return text ? parseChartLook(*text, design) : std::nullopt;
}

std::unique_ptr<RunPoints> loadChartData(const FilePort& files, const std::string& path, int series) {
    const std::optional<std::string> text = readWithin(files, path, kMostDataBytes);
    return text ? parseChartData(*text, series) : nullptr;
}

} // namespace drx9
