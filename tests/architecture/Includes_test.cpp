// Holds the includes of src, app and simulator against the arrows that CMake's libraries state: who may use
// whom.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>

namespace {
namespace fs = std::filesystem;

const fs::path kRoot = DRX9_SOURCE_DIR;

struct Unit {
    bool qt = false;
    std::set<std::string> dependsOn; ///< also what these use
};
using Units = std::map<std::string, Unit>;

/// CMake names each library after those that it uses, so one pass takes all that they use along.
Units readUnits() {
    Units units;
    std::ifstream file(DRX9_ARROWS);
    for (std::string line; std::getline(file, line);) {
        const std::size_t colon = line.find(':');
        std::istringstream head(line.substr(0, colon));
        std::istringstream targets(line.substr(colon + 1));
        std::string name;
        std::string qt;
        head >> name >> qt;
        Unit unit{qt == "QT", {}};
        for (std::string target; targets >> target;) {
            EXPECT_EQ(units.count(target), 1U) << name << " depends on " << target << ", which comes later";
            unit.dependsOn.insert(target);
            unit.dependsOn.merge(std::set(units[target].dependsOn));
        }
        units[name] = unit;
    }
    return units;
}

bool startsWith(const std::string& text, const char* start) {
    return text.rfind(start, 0) == 0;
}

bool isForm(const fs::path& file) {
    return startsWith(file.filename().string(), "frm");
}

bool isMainWindow(const fs::path& file) {
    return startsWith(file.filename().string(), "frmMain");
}

/// The unit of a file; its path is as in an #include: relative to src, or to the root for the other two
/// folders.
std::string unitOf(const fs::path& file) {
    const std::string folder = file.begin()->string();
    const std::string last = file.parent_path().filename().string();
    if (folder == "platform" && last == "qt") {
        return "platform_qt";
    }
    if (folder == "app" && last == "mdbtool") {
        return last;
    }
    const bool window = isForm(file) || (last == "controls" && folder != last);
    return window ? folder + "_windows" : folder;
}

/// Why a file may not include that; empty when it may.
std::string fault(const Units& units, const fs::path& file, const fs::path& include) {
    static const std::regex qtHeader("Q[A-Z].*|Qt.*|qcustomplot\\.h");
    const std::string from = unitOf(file);
    const Unit& unit = units.at(from);
    if (std::regex_match(include.string(), qtHeader)) {
        return unit.qt ? "" : "Qt where there are no windows";
    }
    const std::string to = unitOf(include);
    if (units.count(to) == 0 || to == from) {
        const bool inward = isMainWindow(include) && !isMainWindow(file);
        return inward ? "a window includes the main window" : "";
    }
    if (unit.dependsOn.count(to) == 0) {
        return from + " may not depend on " + to;
    }
    const bool opens = isForm(include) && from != "app";
    return opens ? "only the program makes other folders' windows" : "";
}

TEST(Includes, FollowTheArrowsThatCMakeStates) {
    const Units units = readUnits();
    const std::regex include("^\\s*#\\s*include\\s*[<\"]([^>\"]+)[>\"]");
    int files = 0;
    for (const char* folder : {"src", "app", "simulator"}) {
        const fs::path base = folder == std::string("src") ? kRoot / "src" : kRoot;
        for (const auto& entry : fs::recursive_directory_iterator(kRoot / folder)) {
            const fs::path file = fs::relative(entry.path(), base);
            if (file.extension() != ".h" && file.extension() != ".cpp") {
                continue;
            }
            ++files;
            ASSERT_EQ(units.count(unitOf(file)), 1U) << file << " belongs to no library";
            std::ifstream in(entry.path());
            std::smatch match;
            for (std::string line; std::getline(in, line);) {
                if (std::regex_search(line, match, include)) {
                    EXPECT_EQ(fault(units, file, fs::path(match[1].str())), "")
                        << file << " includes " << match[1];
                }
            }
        }
    }
    EXPECT_GT(files, 100);
}

TEST(Includes, EachFolderIntroducesItself) {
    for (const auto& entry : fs::directory_iterator(kRoot / "src")) {
        EXPECT_TRUE(fs::exists(entry.path() / "README.md")) << entry.path();
    }
}

// What must not be given away in CMake.
TEST(Includes, TheGroundStandsOnNothingAndTheCoreHasNoWindow) {
    const Units units = readUnits();
    EXPECT_TRUE(units.at("util").dependsOn.empty());
    EXPECT_EQ(units.at("platform").dependsOn, std::set<std::string>{"util"});
    EXPECT_EQ(units.at("controls").dependsOn, (std::set<std::string>{"platform", "util"}));
    for (const auto& [name, unit] : units) {
        for (const std::string& target : unit.dependsOn) {
            EXPECT_TRUE(unit.qt || !units.at(target).qt)
                << name << " has no windows but depends on " << target;
            EXPECT_TRUE(target != "platform_qt" || name == "app") << name << " names a port's implementation";
        }
    }
}

} // namespace
