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
    (void)files.makeFolder("/data");
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
    void TearDown() override { fs::remove_all(folder_); }
    void makeFiles() {
        fs::create_directories(folder_);
        for (const auto generation : kBoth) {
            for (unsigned seed = 1000; seed < 1000 + kWitnessed && !HasFailure(); ++seed) {
                const char* end = generation == Generation::Jet3 ? "-3.mdb" : "-4.mdb";
                std::ofstream(folder_ / (std::to_string(seed) + end), std::ios::binary)
                    << madeByRandom(generation, seed);
            }
        }
    }

    const fs::path folder_ =
        fs::temp_directory_path() / ("drx9-jet-" + std::to_string(makeOsFilePort()->processId()));
};

/// mdbtools and the package mdb-reader for Node, as far as they are there.
TEST_F(Witness, OtherReadersReadTheSame) {
    const bool exporter = !(output("mdb-ver --version") + output("mdb-export --version")).empty();
    const std::string reader = readerFolder();
    if (mdbtool().empty() || (!exporter && reader.empty())) {
        GTEST_SKIP() << "neither mdbtools nor Node with mdb-reader is there (DRX9_MDB_READER: the folder of "
                        "its node_modules), or mdbtool is not built";
    }
    makeFiles();
    std::map<std::string, std::string> dumps; ///< by the path where the script writes its own
    for (const auto& file : fs::directory_iterator(folder_)) {
        const std::string path = file.path().string();
        std::istringstream names(output(mdbtool() + " tables " + path));
        for (std::string name; std::getline(names, name);) {
            const std::string table = path + " '" + name + "'";
            const std::string dump = output(mdbtool() + " dump " + table);
            dumps[path + "." + name + ".txt"] = dump;
            // It prints GUIDs as hexadecimal of their text.
            const std::string format = "-T '%Y-%m-%d %H:%M:%S' -D '%Y-%m-%d %H:%M:%S' ";
            EXPECT_TRUE(!exporter || comparable(output("mdb-export -Q -e -b hex -d '\t' " + format + table),
                                                {"Key"}) == comparable(dump, {"Key"}))
                << table;
        }
    }
    EXPECT_GE(dumps.size(), 2 * kWitnessed);
    if (!reader.empty()) {
        // The script is read from standard input, so that the package is looked for in the current folder.
        output("cd " + reader + " && node --input-type=module - " + folder_.string() +
               " < " DRX9_SOURCE_DIR "/tests/jet/mdb-reader-dump.mjs");
        for (const auto& [path, dump] : dumps) {
            std::ifstream file(path);
            const std::string other{std::istreambuf_iterator<char>(file), {}};
            EXPECT_TRUE(comparable(other, {}) == comparable(dump, {})) << path;
        }
    }
}

} // namespace
} // namespace drx9::jet
