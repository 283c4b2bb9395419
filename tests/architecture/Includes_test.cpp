// Reads the includes of src/ and holds them against the arrows that the folders allow: who may stand on whom.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <string>

namespace {
namespace fs = std::filesystem;

const fs::path kSource = fs::path(DRX9_SOURCE_DIR) / "src";

/// Folders that a folder's logic may include, itself left out.
const std::map<std::string, std::set<std::string>> kMayInclude = {
    {"util", {}},
    {"platform", {"util"}},
    {"controls", {"util", "platform"}},
    {"errors", {"util", "platform"}},
    {"jet", {"util", "platform"}},
    {"link", {"util", "platform", "errors"}},
    {"system", {"util", "platform", "errors", "link", "jet"}},
    {"films", {"util", "platform", "errors", "link", "jet", "system"}},
    {"graphs", {"util", "platform", "errors", "link", "jet"}},
    {"monitor", {"util", "platform", "errors", "link", "jet", "graphs", "system", "films"}},
};

bool isIn(const fs::path& path, const char* folder) {
    return path.parent_path().filename() == folder;
}

/// A window or a control: may see Qt.
bool isForm(const fs::path& path) {
    return path.filename().string().rfind("frm", 0) == 0 || isIn(path, "controls");
}

std::string subsystemOf(const fs::path& path) {
    const std::string first = path.begin()->string();
    return kMayInclude.count(first) != 0 ? first : "";
}

/// Why a file of src may not include a window or a control; empty when it may.
std::string windowFault(const fs::path& file, const fs::path& include) {
    const std::string target = subsystemOf(include);
    const bool main = file.filename().string().rfind("frmMain", 0) == 0;
    if (!isForm(file)) {
        return "logic includes a window";
    }
    if (include.filename().string().rfind("frmMain", 0) == 0 && !main) {
        return "a window includes the main window";
    }
    return isIn(include, "controls") || main || target == subsystemOf(file) || target == "util"
               ? ""
               : "a window of another subsystem";
}

/// Why an include is not allowed; empty when it is. Both paths are relative to src.
std::string fault(const fs::path& file, const std::string& include) {
    static const std::regex qtHeader("Q[A-Z].*|Qt.*|qcustomplot\\.h");
    const bool ports = isIn(file, "qt");
    if (std::regex_match(include, qtHeader)) {
        return isForm(file) || ports ? "" : "Qt outside forms, controls and platform/qt";
    }
    if (include.rfind("platform/qt/", 0) == 0 && !ports) {
        return "the ports' Qt implementations are known to main alone";
    }
    if (isForm(include)) {
        return windowFault(file, include);
    }
    const std::string target = subsystemOf(include);
    const std::string folder = subsystemOf(file);
    const bool allowed = target.empty() || target == folder || kMayInclude.at(folder).count(target) != 0;
    return allowed ? "" : folder + " may not stand on " + target;
}

TEST(Includes, FollowTheAllowedArrows) {
    const std::regex include("^\\s*#\\s*include\\s*[<\"]([^>\"]+)[>\"]");
    int files = 0;
    for (const auto& entry : fs::recursive_directory_iterator(kSource)) {
        const fs::path file = fs::relative(entry.path(), kSource);
        if (file.extension() != ".h" && file.extension() != ".cpp") {
            continue;
        }
        ++files;
        ASSERT_NE(subsystemOf(file), "") << "unknown folder of " << file;
        std::ifstream in(entry.path());
        std::smatch match;
        for (std::string line; std::getline(in, line);) {
            if (std::regex_search(line, match, include)) {
                EXPECT_EQ(fault(file, match[1]), "") << file << " includes " << match[1];
            }
        }
    }
    EXPECT_GT(files, 20);
}

// Whoever stands on a folder may stand on what that stands on, and nothing on itself: so there is no circle.
TEST(Includes, TheArrowsHaveNoCircleAndEachFolderIntroducesItself) {
    for (const auto& [folder, targets] : kMayInclude) {
        EXPECT_TRUE(fs::exists(kSource / folder / "README.md")) << folder;
        for (const std::string& target : targets) {
            for (const std::string& further : kMayInclude.at(target)) {
                EXPECT_EQ(targets.count(further), 1U) << folder << " to " << further;
                EXPECT_NE(further, folder);
            }
        }
    }
}

} // namespace
