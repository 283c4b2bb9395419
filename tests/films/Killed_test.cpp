// A conversion that is killed at any moment: the library is the old one, or converted as a whole.
#if defined(__unix__)
#include "films/FilmBench.h"

#include "platform/os/OsFilePort.h"

#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <random>
#include <thread>

namespace drx9 {
namespace {

using Seconds = std::chrono::duration<double>;
namespace fs = std::filesystem;

/// A large library of the old format in a folder of its own, and processes that convert it.
struct Conversion {
    Conversion() {
        FilmBench bench;
        std::vector<TestFilm> films;
        for (int i = 0; i < 2000; ++i) {
            films.push_back({"F" + std::to_string(9999 - i)});
        }
        bench.make(films, "PRIMARYKEY", false);
        old = bench.bytes();
        fs::create_directory(folder);
    }
    Conversion(const Conversion&) = delete;
    Conversion& operator=(const Conversion&) = delete;
    ~Conversion() { fs::remove_all(folder); }

    std::string open() const {
        QueuedDialogs dialogs;
        jet::DBEngine engine(*files);
        const Paths paths{folder.string(), folder.string()};
        std::string name = "Monitor.mdb";
        FilmLibrary library({engine, *files, paths, dialogs, name});
        library.DBOpen();
        return library.notice().text + library.standing().text;
    }
    /// Converts in a process of its own, which is killed after that time; how long it lived.
    double run(double killAfter) const {
        for (const auto& entry : fs::directory_iterator(folder)) {
            fs::remove(entry);
        }
        std::ofstream(folder / "Monitor.mdb", std::ios::binary) << old;
        const auto start = std::chrono::steady_clock::now();
        const pid_t child = fork();
        if (child == 0) {
            open();
            _exit(0);
        }
        if (killAfter > 0) {
            std::this_thread::sleep_for(Seconds(killAfter));
            kill(child, SIGKILL);
        }
        waitpid(child, nullptr, 0);
        return Seconds(std::chrono::steady_clock::now() - start).count();
    }
    std::string bytes(const char* name) const {
        std::string read;
        (void)files->read((folder / name).string(), read);
        return read;
    }

    std::unique_ptr<FilePort> files = makeOsFilePort();
    fs::path folder = fs::temp_directory_path() / ("drx9-killed-" + std::to_string(files->processId()));
    std::string old;
};

// More of them: DRX9_KILLS=1000
TEST(Killed, AConversionIsWholeOrNotAtAll) {
    const Conversion conversion;
    const double whole = conversion.run(0);
    ASSERT_NE(conversion.bytes("Monitor.mdb"), conversion.old);
    const char* const given = std::getenv("DRX9_KILLS");
    const int kills = given != nullptr ? std::atoi(given) : 25;
    std::mt19937 random(static_cast<unsigned>(testing::UnitTest::GetInstance()->random_seed()));
    std::uniform_real_distribution<double> moment(whole / 100, whole * 1.1);
    int converted = 0;
    int keptEarly = 0; // killed between the old file's copy and the commit
    for (int i = 0; i < kills; ++i) {
        const double killAfter = moment(random);
        SCOPED_TRACE(testing::Message() << "killed after " << killAfter << " of " << whole << " s");
        conversion.run(killAfter);
        const std::string kept = conversion.bytes("Monitor.mdb.bak");
        EXPECT_TRUE(kept.empty() || kept == conversion.old) << "whole, or not there";
        const bool isOld = conversion.bytes("Monitor.mdb") == conversion.old;
        keptEarly += isOld && !kept.empty() ? 1 : 0;
        if (!isOld) {
            ++converted;
            EXPECT_EQ(kept, conversion.old);
            EXPECT_EQ(conversion.open(), "") << "nothing is left to convert";
        } else {
            EXPECT_EQ(conversion.open().rfind("Converted, 99 of 2000 films numbered", 0), 0U);
        }
        const auto rows =
            FilmBench::rowsIn(*conversion.files, (conversion.folder / "Monitor.mdb").string(), "Film");
        ASSERT_EQ(rows.size(), 2000U);
        EXPECT_EQ(rows[98], "F8098   |Gold|100|1|0.5|60|3|99");
        EXPECT_EQ(rows[99].substr(rows[99].rfind('|')), "|null");
    }
    std::printf("%d kills: %d converted, %d with only the copy made\n", kills, converted, keptEarly);
}

} // namespace
} // namespace drx9
#endif
