#include "JetTestSupport.h"
#include "platform/os/OsFilePort.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace drx9::jet {
namespace {

namespace fs = std::filesystem;

constexpr unsigned kSequences = 100; ///< in each generation
constexpr int kSteps = 80;
constexpr unsigned kWitnessed = 12; ///< of them, in each generation, read by the other readers

/// A file made by random operations; what is read back from it is held against the model.
std::string madeByRandom(Generation generation, unsigned seed) {
    MemoryFilePort files;
    files.put("/data/x", "");
    SCOPED_TRACE("seed " + std::to_string(seed) + (generation == Generation::Jet3 ? ", Jet 3" : ", Jet 4"));
    DBEngine engine(files);
    const auto database = engine.CreateDatabase(kPath, generation, {}, kCreated);
    Model model(*database, seed);
    model.createTable("Table 1");
    for (int i = 0; i < kSteps && !testing::Test::HasFailure(); ++i) {
        model.step();
    }
    DBEngine fresh(files);
    model.compare(*fresh.OpenDatabase(kPath));
    EXPECT_EQ(faultsOf(files), "");
    return files.text(kPath);
}

TEST(Random, FilesHoldWhatTheModelHolds) {
    for (const auto generation : kBoth) {
        for (unsigned seed = 1; seed <= kSequences && !HasFailure(); ++seed) {
            madeByRandom(generation, seed);
        }
    }
}

// ---- Other readers ----

std::string output(const std::string& command) {
    std::string text;
    FILE* pipe = popen((command + " 2>/dev/null").c_str(), "r");
    if (pipe == nullptr) {
        return text;
    }
    char block[4096];
    for (std::size_t n = 0; (n = fread(block, 1, sizeof block, pipe)) > 0;) {
        text.append(block, n);
    }
    pclose(pipe);
    return text;
}

/// A dump's lines, sorted below its heading: numbers written alike, the columns that `skip` names left out.
std::vector<std::string> comparable(const std::string& dump, const std::vector<std::string>& skip) {
    std::vector<std::string> lines;
    std::vector<bool> skipped;
    std::istringstream rows(dump);
    for (std::string row; std::getline(rows, row);) {
        std::string line;
        std::istringstream cells(row + "\t");
        std::size_t at = 0;
        for (std::string cell; std::getline(cells, cell, '\t'); ++at) {
            if (lines.empty()) {
                skipped.push_back(std::find(skip.begin(), skip.end(), cell) != skip.end());
            }
            // Bytes in hexadecimal, which may look like a number too.
            if (cell.find_first_not_of("0123456789abcdefABCDEF") == std::string::npos) {
                std::transform(cell.begin(), cell.end(), cell.begin(),
                               [](char c) { return c >= 'A' ? static_cast<char>(c | 0x20) : c; });
            }
            char* end = nullptr;
            const double number = std::strtod(cell.c_str(), &end);
            const bool numeric = !cell.empty() && *end == '\0' &&
                                 cell.find_first_not_of("0123456789.-+e") == std::string::npos;
            char text[40];
            std::snprintf(text, sizeof text, "%.14g", number);
            line += at < skipped.size() && skipped[at] ? "" : numeric ? text : cell;
            line += '\t';
        }
        lines.push_back(line);
    }
    if (!lines.empty()) {
        std::sort(lines.begin() + 1, lines.end());
    }
    return lines;
}

/// Where two tables differ first, shortened; empty when they do not.
std::string difference(const std::vector<std::string>& a, const std::vector<std::string>& b) {
    for (std::size_t i = 0; i < std::max(a.size(), b.size()); ++i) {
        const std::string left = i < a.size() ? a[i] : "nothing";
        const std::string right = i < b.size() ? b[i] : "nothing";
        if (left != right) {
            const auto at = std::mismatch(
                left.begin(), left.begin() + static_cast<std::ptrdiff_t>(std::min(left.size(), right.size())),
                right.begin());
            const auto from = static_cast<std::size_t>(at.first - left.begin());
            const auto start = from < 40 ? 0 : from - 40;
            return "..." + left.substr(start, 80) + "\n..." + right.substr(start, 80);
        }
    }
    return {};
}

std::string mdbtool() {
    const std::string path = DRX9_BIN_DIR "/mdbtool";
    return fs::exists(path) ? path : std::string();
}

/// Folder whose node_modules hold mdb-reader.
std::string readerFolder() {
    const char* given = std::getenv("DRX9_MDB_READER");
    const std::string folder = given != nullptr ? given : DRX9_SOURCE_DIR;
    return fs::exists(folder + "/node_modules/mdb-reader") && !output("node --version").empty()
               ? folder
               : std::string();
}

class Witness : public testing::Test {
protected:
    void SetUp() override {
        if (mdbtool().empty()) {
            GTEST_SKIP() << "mdbtool is not built";
        }
        folder_ = fs::temp_directory_path() / ("drx9-jet-" + std::to_string(makeOsFilePort()->processId()));
        fs::create_directories(folder_);
    }
    void TearDown() override {
        if (!folder_.empty()) {
            fs::remove_all(folder_);
        }
    }

    /// Files made by random operations, and calls visitor(path, table, dump) for each of their tables.
    template<class Visitor>
    void eachTable(const Visitor& visitor) {
        for (const auto generation : kBoth) {
            for (unsigned seed = 1000; seed < 1000 + kWitnessed && !HasFailure(); ++seed) {
                const char* end = generation == Generation::Jet3 ? "-3.mdb" : "-4.mdb";
                std::ofstream(folder_ / (std::to_string(seed) + end), std::ios::binary)
                    << madeByRandom(generation, seed);
            }
        }
        for (const auto& file : fs::directory_iterator(folder_)) {
            const std::string path = file.path().string();
            std::istringstream names(output(mdbtool() + " tables " + path));
            for (std::string name; std::getline(names, name);) {
                const std::string dump = mdbtool().append(" dump ").append(path).append(" '");
                visitor(path, name, output(dump + name + "'"));
            }
        }
    }

    fs::path folder_;
};

TEST_F(Witness, MdbExportReadsTheSame) {
    if (output("mdb-ver --version").empty() && output("mdb-export --version").empty()) {
        GTEST_SKIP() << "mdbtools is not installed";
    }
    std::size_t tables = 0;
    eachTable([&](const std::string& path, const std::string& table, const std::string& dump) {
        const std::string other =
            output("mdb-export -Q -e -b hex -d '\t' -D '%Y-%m-%d %H:%M:%S' -T '%Y-%m-%d %H:%M:%S' " + path +
                   " '" + table + "'");
        // It prints GUIDs as hexadecimal of their text.
        EXPECT_EQ(difference(comparable(other, {"Key"}), comparable(dump, {"Key"})), "")
            << path << " " << table;
        EXPECT_NE(output("mdb-count " + path + " '" + table + "'"), "");
        ++tables;
    });
    EXPECT_GE(tables, 2 * kWitnessed);
}

TEST_F(Witness, MdbReaderReadsTheSame) {
    const std::string reader = readerFolder();
    if (reader.empty()) {
        GTEST_SKIP() << "Node with the package mdb-reader is not there (DRX9_MDB_READER: the folder of its "
                        "node_modules)";
    }
    std::map<std::string, std::string> dumps;
    eachTable([&](const std::string& path, const std::string& table, const std::string& dump) {
        dumps[path + "." + table + ".txt"] = dump;
    });
    // The script is read from standard input, so that the package is looked for in the current folder.
    output("cd " + reader + " && node --input-type=module - " + folder_.string() +
           " < " DRX9_SOURCE_DIR "/tests/jet/mdb-reader-dump.mjs");
    EXPECT_GE(dumps.size(), 2 * kWitnessed);
    for (const auto& [path, dump] : dumps) {
        std::ifstream file(path);
        const std::string other{std::istreambuf_iterator<char>(file), {}};
        EXPECT_EQ(difference(comparable(other, {}), comparable(dump, {})), "") << path;
    }
}

} // namespace
} // namespace drx9::jet
