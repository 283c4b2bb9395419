#include "JetTestSupport.h"
#include "platform/FileWorld.h"

#include <fstream>
#include <sstream>

namespace drx9::jet {
namespace {

class Mdbtool : public testing::Test, protected OsWorld {
protected:
    void SetUp() override {
        if (!std::filesystem::exists(DRX9_BIN_DIR "/mdbtool")) {
            GTEST_SKIP() << "mdbtool is not built";
        }
    }
    /// Prints standard output and error.
    Outcome run(const std::string& arguments, const std::string& input = {}) const {
        std::ofstream(path("in.txt"), std::ios::binary) << input;
        return jet::run("cd " + folder + " && " DRX9_BIN_DIR "/mdbtool " + arguments + " < " +
                        path("in.txt") + " 2>&1");
    }
};

TEST_F(Mdbtool, MakesChangesAndPrintsALibrary) {
    for (const char* generation : {"", " --jet3"}) {
        (void)files->remove(path("a.mdb"));
        ASSERT_EQ(run(std::string("new a.mdb") + generation).code, 0);
        EXPECT_EQ(run("tables a.mdb").out, "Film\nMaterial\n");
        EXPECT_EQ(run("new a.mdb").code, 2);
        const Outcome applied =
            run("apply a.mdb", "insert\tFilm\tFilmNum=1\tFilmName=a\\tb\\\\\\r\\n\tTooling=99.9\tMaterial=\n"
                               "insert\tFilm\tFilmNum=2\tFilmName=c d \tTooling\tTimeSet=1e-7\r\n\n"
                               "add-column\tFilm\tWhen\tdate\nadd-column\tFilm\tPrice\tcurrency\n"
                               "add-column\tFilm\tNote\tmemo\nadd-column\tFilm\tOk\tboolean\n"
                               "update\tFilm\tFilmName=C D\t--\tWhen=2004-02-29 12:34:56\tPrice=-12.5\tOk=1\n"
                               "update\tFilm\tMaterial\t--\tMaterial=Gold\n"
                               "insert\tFilm\tFilmNum=3\ndelete\tFilm\tFilmNum=3\n");
        EXPECT_EQ(applied.out, "");
        EXPECT_EQ(applied.code, 0);
        EXPECT_EQ(run("dump a.mdb Film").out,
                  "FilmNum\tFilmName\tMaterial\tTooling\tEndThick\tThickSet\tTimeSet\tSensorAvg\tWhen\tPrice"
                  "\tNote\tOk\n"
                  "1\ta\\tb\\\\\\r\\n\t\t99.9\t\t\t\t\t\t\t\t0\n"
                  "2\tc d \tGold\t\t\t\t1e-07\t\t2004-02-29 12:34:56\t-12.5\t\t1\n");
        EXPECT_EQ(run("check a.mdb").out.substr(0, 2), "ok");
    }
}

TEST_F(Mdbtool, RefusesWholeScripts) {
    ASSERT_EQ(run("new a.mdb --jet3").code, 0);
    ASSERT_EQ(run("apply a.mdb", "insert\tMaterial\tMaterial=Gold\nadd-column\tFilm\tD\tDATE\n").code, 0);
    const std::string before = text("a.mdb");
    std::istringstream script(
        "insert\tFilm\tFilmName=123456789012345678901\n"
        "insert\tFilm\tFilmNum=1x\ninsert\tFilm\tFilmName=Ω\ninsert\tNothing\tA=1\n"
        "insert\tFilm\tNothing=1\ndrop-index\tFilm\tNothing\nnothing\ndelete\tFilm\n"
        "add-column\tFilm\tFILMNUM\tlong\nadd-column\tFilm\tX\ttext(256)\n"
        "add-column\tFilm\tX\tnumber\nupdate\tFilm\tFilmNum=1\tFilmNum=2\n"
        "insert\tFilm\tFilmName=\\x\ninsert\tMSysObjects\tId=1\ninsert\tFilm\tTooling=\n"
        "insert\tFilm\tTooling=1e999\ninsert\tFilm\tD=2004-02-09\n"
        "insert\tFilm\tD=2004-2-9 00:00:00\ninsert\tFilm\tFilmNum=1\tFILMNUM=2\n");
    for (std::string bad; std::getline(script, bad);) {
        const Outcome outcome =
            run("apply a.mdb", "insert\tFilm\tFilmNum=7\n" + bad + "\ninsert\tFilm\tFilmNum=8\n");
        EXPECT_EQ(outcome.code, 1) << bad;
        EXPECT_EQ(outcome.out.find("line 2: "), 0u) << outcome.out;
        EXPECT_EQ(text("a.mdb"), before) << bad;
    }
    EXPECT_EQ(run("dump a.mdb Nothing").code, 1);
    // "#" hides the usual redirections.
    const std::pair<const char*, const char*> cases[] = {
        {"dump none.mdb Film", "there is no such file"},
        {"new none/b.mdb", "its folder does not exist"},
        {"tables a.mdb 2>&1 > /dev/full #", "the output cannot be written"},
        {"apply a.mdb 2>&1 < . #", "cannot be read"},
        {"check a.mdb; mkdir x; cd x; rmdir ../x; " DRX9_BIN_DIR "/mdbtool tables q.mdb", "q.mdb: the"},
    };
    for (const auto& [arguments, reason] : cases) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.code, 2) << arguments;
        EXPECT_NE(outcome.out.find(reason), std::string::npos) << outcome.out;
    }
    std::string damaged = before;
    damaged[2048 * 2 + 4] = 2; // the catalog's definition chained to itself
    std::ofstream(path("a.mdb"), std::ios::binary) << damaged;
    EXPECT_EQ(run("check a.mdb").code, 1);
    EXPECT_EQ(run("tables a.mdb").code, 2);
}

} // namespace
} // namespace drx9::jet
