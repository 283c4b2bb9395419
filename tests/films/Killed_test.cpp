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

std::string convert(FilePort& files, const std::string& folder) {
    QueuedDialogs dialogs;
    jet::DBEngine engine(files);
    const Paths paths{folder, folder};
    std::string name = "Monitor.mdb";
    FilmLibrary library({engine, files, paths, dialogs, name});
    library.DBOpen();
    return library.notice().text + library.standing().text;
}

TEST(Killed, AConversionIsWholeOrNotAtAll) {
    FilmBench bench;
    std::vector<TestFilm> films;
    for (int i = 0; i < 2000; ++i) {
        films.push_back({"F" + std::to_string(9999 - i)});
    }
    bench.make(films, "PRIMARYKEY", false);
    const std::string old = bench.bytes();
    const auto files = makeOsFilePort();
    const fs::path folder = fs::temp_directory_path() / ("drx9-killed-" + std::to_string(files->processId()));
    const std::string library = (folder / "Monitor.mdb").string();
    const auto bytes = [&](const std::string& path) {
        std::string read;
        (void)files->read(path, read);
        return read;
    };
    std::mt19937 random(static_cast<unsigned>(testing::UnitTest::GetInstance()->random_seed()));
    double whole = 5; // s
    for (int i = 0; i <= 25; ++i) {
        fs::remove_all(folder);
        fs::create_directory(folder);
        std::ofstream(library, std::ios::binary) << old;
        const double killAfter = std::uniform_real_distribution(whole / 100, whole * 1.1)(random);
        SCOPED_TRACE(testing::Message() << "killed after " << killAfter << " of " << whole << " s");
        const auto start = std::chrono::steady_clock::now();
        const pid_t child = fork();
        if (child == 0) {
            convert(*files, folder.string());
            _exit(0);
        }
        if (i > 0) { // the first is left alone, and timed
            std::this_thread::sleep_for(Seconds(killAfter));
            kill(child, SIGKILL);
        }
        waitpid(child, nullptr, 0);
        whole = i > 0 ? whole : Seconds(std::chrono::steady_clock::now() - start).count();
        const bool isOld = bytes(library) == old;
        const std::string kept = bytes(library + ".bak");
        EXPECT_TRUE(kept == old || (isOld && kept.empty())) << "whole, or not there";
        EXPECT_EQ(convert(*files, folder.string()).rfind("Converted, 99 of 2000 films numbered", 0) == 0,
                  isOld);
        const auto rows = FilmBench::rowsIn(*files, library, "Film");
        ASSERT_EQ(rows.size(), 2000U);
        EXPECT_EQ(rows[98], "F8098   |Gold|100|1|0.5|60|3|99");
        EXPECT_EQ(rows[99].substr(rows[99].rfind('|')), "|null");
    }
    fs::remove_all(folder);
}

} // namespace
} // namespace drx9
#endif
