// Reads the includes of src/ and holds them against the arrows that the folders allow: who may stand on whom.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace {
namespace fs = std::filesystem;

const fs::path kSource = fs::path(DRX9_SOURCE_DIR) / "src";

/// Folders that a folder's logic may include, itself left out.
const std::map<std::string, std::set<std::string>> kMayInclude = {
    {"util", {"platform"}},
    {"platform", {"util"}},
    {"errors", {"util", "platform"}},
    {"jet", {"util", "platform"}},
    {"link", {"util", "platform", "errors"}},
    {"system", {"util", "platform", "errors", "link", "jet"}},
    {"films", {"util", "platform", "errors", "link", "jet", "system"}},
    {"graphs", {"util", "platform", "errors", "link", "jet"}},
    {"monitor", {"util", "platform", "errors", "link", "jet", "graphs", "system", "films"}},
};

struct File {
    std::string folder; ///< first folder below src
    fs::path path;      ///< relative to src
    std::vector<std::string> includes;
    bool form = false; ///< frm* or a control: may see Qt
    bool qt = false;   ///< platform/qt
};

bool isForm(const fs::path& relative) {
    return relative.filename().string().rfind("frm", 0) == 0 ||
           relative.parent_path().filename() == "controls";
}

File readFile(const fs::path& path) {
    File file;
    file.path = fs::relative(path, kSource);
    file.folder = file.path.begin()->string();
    file.form = isForm(file.path);
    file.qt = file.path.parent_path() == fs::path("platform") / "qt";
    std::ifstream in(path);
    const std::regex include("^\\s*#\\s*include\\s*[<\"]([^>\"]+)[>\"]");
    std::smatch match;
    for (std::string line; std::getline(in, line);) {
        if (std::regex_search(line, match, include)) {
            file.includes.push_back(match[1]);
        }
    }
    return file;
}

std::vector<File> allFiles() {
    std::vector<File> files;
    for (const auto& entry : fs::recursive_directory_iterator(kSource)) {
        const std::string extension = entry.path().extension().string();
        if (extension == ".h" || extension == ".cpp") {
            files.push_back(readFile(entry.path()));
        }
    }
    return files;
}

bool isQtHeader(const std::string& include) {
    return (include.size() > 1 && include[0] == 'Q' &&
            std::isupper(static_cast<unsigned char>(include[1]))) ||
           include == "qcustomplot.h" || include.rfind("Qt", 0) == 0;
}

std::string folderOfInclude(const std::string& include) {
    const auto slash = include.find('/');
    const std::string first = slash == std::string::npos ? "" : include.substr(0, slash);
    return kMayInclude.count(first) != 0 ? first : "";
}

bool includesForm(const std::string& include) {
    return isForm(fs::path(include));
}

/// Why an include is not allowed; empty when it is.
std::string fault(const File& file, const std::string& include) {
    if (isQtHeader(include)) {
        return file.form || file.qt ? "" : "Qt outside forms, controls and platform/qt";
    }
    const std::string target = folderOfInclude(include);
    if (include.rfind("platform/qt/", 0) == 0 && !file.qt) {
        return "the ports' Qt implementations are known to main alone";
    }
    if (includesForm(include)) {
        const bool controls = fs::path(include).parent_path().filename() == "controls";
        const bool topForm = file.path.filename().string().rfind("frmMain", 0) == 0;
        if (!file.form) {
            return "logic includes a window";
        }
        return include.find("frmMain") != std::string::npos && !topForm
                   ? "a window includes the main window"
                   : (controls || topForm || target == file.folder || target == "util"
                          ? ""
                          : "a window of another subsystem");
    }
    if (target.empty() || target == file.folder || kMayInclude.at(file.folder).count(target) != 0) {
        return "";
    }
    // The ports' Qt implementations and windows may use the ground and what their port or logic speaks of.
    return file.qt && target == "link" ? "" : file.folder + " may not stand on " + target;
}

TEST(Includes, FollowTheAllowedArrows) {
    const std::vector<File> files = allFiles();
    ASSERT_GT(files.size(), 20U);
    for (const File& file : files) {
        ASSERT_EQ(kMayInclude.count(file.folder), 1U) << "unknown folder " << file.folder;
        for (const std::string& include : file.includes) {
            EXPECT_EQ(fault(file, include), "") << file.path << " includes " << include;
        }
    }
}

bool reaches(const std::map<std::string, std::set<std::string>>& arrows, const std::string& from,
             const std::string& to, std::set<std::string>& seen) {
    const auto next = arrows.find(from);
    if (next == arrows.end() || !seen.insert(from).second) {
        return false;
    }
    return std::any_of(next->second.begin(), next->second.end(), [&](const std::string& folder) {
        return folder == to || reaches(arrows, folder, to, seen);
    });
}

TEST(Includes, HaveNoCirclesAmongSubsystems) {
    std::map<std::string, std::set<std::string>> arrows;
    for (const File& file : allFiles()) {
        for (const std::string& include : file.includes) {
            const std::string target = folderOfInclude(include);
            if (!target.empty() && target != file.folder && !file.form) {
                arrows[file.folder].insert(target);
            }
        }
    }
    for (const auto& [folder, targets] : arrows) {
        std::set<std::string> seen;
        if (folder != "util" && folder != "platform") { // one ground: ports and text know each other
            EXPECT_FALSE(reaches(arrows, folder, folder, seen)) << folder << " stands on itself";
        }
    }
}

TEST(Includes, EachFolderIntroducesItself) {
    for (const auto& [folder, targets] : kMayInclude) {
        if (fs::exists(kSource / folder)) {
            EXPECT_TRUE(fs::exists(kSource / folder / "README.md")) << folder;
        }
    }
}

} // namespace
