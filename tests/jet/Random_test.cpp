#include "JetTestSupport.h"
#include "platform/FileWorld.h"

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace drx9::jet {
namespace {

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
    return run(command + " 2>/dev/null").out;
}

/// A dump's lines, sorted below its heading: numbers written alike, the column "Key" left out (a GUID, which
/// the other reader prints as hexadecimal of its text).
std::vector<std::string> comparable(const std::string& dump) {
    std::vector<std::string> lines;
    std::size_t key = std::string::npos;
    std::istringstream rows(dump);
    for (std::string row; std::getline(rows, row);) {
        std::string line;
        std::istringstream cells(row + "\t");
        std::size_t at = 0;
        for (std::string cell; std::getline(cells, cell, '\t'); ++at) {
            key = lines.empty() && cell == "Key" ? at : key;
            if (cell.find_first_not_of("0123456789ABCDEF") == std::string::npos) { // bytes
                std::transform(cell.begin(), cell.end(), cell.begin(),
                               [](char c) { return c < 'A' ? c : static_cast<char>(c | 0x20); });
            }
            char* end = nullptr;
            const double number = std::strtod(cell.c_str(), &end);
            const bool numeric = !cell.empty() && *end == '\0' &&
                                 cell.find_first_not_of("0123456789.-+e") == std::string::npos;
            char text[40];
            std::snprintf(text, sizeof text, "%.14g\t", number);
            line += at == key ? "" : numeric ? text : cell + '\t';
        }
        lines.push_back(line);
    }
    if (!lines.empty()) {
        std::sort(lines.begin() + 1, lines.end());
    }
    return lines;
}

TEST(Witness, MdbtoolsReadTheSame) {
    const std::string mdbtool = DRX9_BIN_DIR "/mdbtool";
    if (!std::filesystem::exists(mdbtool) ||
        (output("mdb-ver --version") + output("mdb-export --version")).empty()) {
        GTEST_SKIP() << "mdbtools are not there, or mdbtool is not built";
    }
    const OsWorld world;
    const std::string path = world.path("a.mdb");
    std::size_t tables = 0;
    for (const auto generation : kBoth) {
        for (unsigned seed = 1000; seed < 1000 + kWitnessed && !HasFailure(); ++seed) {
            std::ofstream(path, std::ios::binary) << madeByRandom(generation, seed);
            std::istringstream names(output(mdbtool + " tables " + path));
            for (std::string name; std::getline(names, name); ++tables) {
                const std::string table = path + " '" + name + "'";
                const std::string format = "-T '%Y-%m-%d %H:%M:%S' -D '%Y-%m-%d %H:%M:%S' ";
                const std::string other = output("mdb-export -Q -e -b hex -d '\t' " + format + table);
                EXPECT_TRUE(comparable(other) == comparable(output(mdbtool + " dump " + table)))
                    << "seed " << seed << ", " << table;
            }
        }
    }
    EXPECT_GE(tables, 2 * kWitnessed);
}

} // namespace
} // namespace drx9::jet
