#include "util/Paths.h"

#include <cstddef>
#include <string_view>

namespace drx9 {

namespace {

#ifdef _WIN32
constexpr const char* kSeparators = "/\\";
constexpr char kSeparator = '\\';
#else
constexpr const char* kSeparators = "/";
constexpr char kSeparator = '/';
#endif

bool isSeparator(char c) {
    return std::string_view(kSeparators).find(c) != std::string_view::npos;
}

/// Length of the drive in front of a path ("C:"), 0 where there is none.
std::size_t driveLength([[maybe_unused]] const std::string& path) {
#ifdef _WIN32
    return path.size() >= 2 && path[1] == ':' ? 2 : 0;
#else
    return 0;
#endif
}

} // namespace

std::string Paths::resolve(const std::string& name) const {
    return isAbsolutePath(name) ? name : joinPath(dataFolder, name);
}

std::string bareName(const std::string& path) {
    // Names come from files written on either system, so both separators count on both.
    const auto last = path.find_last_of("/\\");
    return last == std::string::npos ? path : path.substr(last + 1);
}

std::string folderOf(const std::string& path) {
    const auto last = path.find_last_of(kSeparators);
    if (last == std::string::npos) {
        return ".";
    }
    const bool isRoot = last == driveLength(path);
    return path.substr(0, isRoot ? last + 1 : last);
}

bool isAbsolutePath(const std::string& path) {
    const std::size_t drive = driveLength(path);
    return path.size() > drive && isSeparator(path[drive]);
}

std::string joinPath(const std::string& folder, const std::string& name) {
    if (folder.empty() || name.empty()) {
        return folder + name;
    }
    return isSeparator(folder.back()) ? folder + name : folder + kSeparator + name;
}

} // namespace drx9
