// Transfers in which an exchange fails, an answer comes twice, or the library goes.
#include "films/TransferBench.h"

namespace drx9 {
namespace {

enum Fault { Silent, Refused, Damaged, RefusedForGood, ForGood, Closing, Late };
constexpr Fault kFaults[] = {Silent, Refused, Damaged, RefusedForGood, ForGood, Closing, Late};

/// The k-th exchange fails.
void spoilExchange(Transfer& bench, Fault fault, int k) {
    bench.boxes.allow("");
    bench.spoilAt = k;
    bench.spoil = [&bench, fault](const std::string& command) {
        bench.spoilAt += fault == ForGood || fault == RefusedForGood ? 1 : 0;
        std::string damaged = good("rubbish that is long enough");
        damaged[6] ^= 1;
        const std::string reply = bench.soundAnswer(command);
        if (fault == Late) {
            bench.wire().arrive(reply, Link::kReplyLimit + 0.45);
        }
        return fault == Refused || fault == RefusedForGood ? replyPacket('D', "")
               : fault == Damaged                          ? damaged
               : fault == Closing                          ? reply
                                                           : std::string();
    };
    bench.ends = [&bench, fault, k] { return fault == Closing && bench.exchanges >= k; };
}

TEST(Faults, AtEachExchangeOfAnUpload) {
    for (const Fault fault : kFaults) {
        for (int k = 1; k <= 9; ++k) {
            SCOPED_TRACE(testing::Message() << "fault " << fault << " at " << k);
            Transfer bench({});
            spoilExchange(bench, fault, k);
            bench.transfer.upload();
            const auto stored = static_cast<std::size_t>(fault == Closing ? k : k - 1);
            ASSERT_EQ(bench.rows("Film", kUpload).size(), stored);
            EXPECT_EQ(bench.exchanges, k);
            for (std::size_t f = 1; f <= stored; ++f) {
                EXPECT_TRUE(bench.isOwn(f)) << f;
            }
            EXPECT_EQ(bench.faults(kUpload), "");
            EXPECT_FALSE(bench.transfer.running() || bench.progress.standing != 0);
            const std::string count = std::to_string(stored) + (stored == 9 ? "" : " of 9") + " films read";
            EXPECT_NE(bench.told().find(count), std::string::npos) << bench.told();
        }
    }
}

TEST(Faults, AtEachExchangeOfADownload) {
    for (const Fault fault : kFaults) {
        for (int k = 1; k <= 7; ++k) { // "U?", three films, three read back
            SCOPED_TRACE(testing::Message() << "fault " << fault << " at " << k);
            Transfer bench({{"A"}, {"B"}, {"C"}});
            const std::string before = bench.bytes();
            spoilExchange(bench, fault, k);
            bench.transfer.download(1);
            EXPECT_EQ(bench.bytes(), before) << "a download changes no library";
            for (int f = 1; f <= 3; ++f) {
                FilmRecord held;
                parseFilmReply(bench.held(f), f, held);
                const bool unsure = (k == f + 1 && fault != Closing) ||
                                    (k <= f + 1 && (fault == ForGood || fault == RefusedForGood));
                EXPECT_TRUE(unsure || bench.films[static_cast<std::size_t>(f)].FilmName == held.FilmName)
                    << f;
            }
            EXPECT_FALSE(bench.transfer.running() || bench.hourglass || bench.progress.standing != 0);
            EXPECT_EQ(bench.told() == "3 films sent", fault == Closing && k >= 4) << bench.told();
            const int sent = fault == Closing ? k : fault == ForGood ? std::min(k + 1, 7) : 7;
            EXPECT_EQ(bench.exchanges, k == 1 && fault != Closing ? 1 : sent);
            const bool asked = bench.boxesOf("Film Name") != 0;
            EXPECT_TRUE(!asked || fault <= RefusedForGood) << "compared with another film's answer";
            EXPECT_LE(bench.boxesOf("Get Film Error: "), 1) << "the others are named";
        }
    }
}

// The k-th command is answered twice. A copy that comes before the next command is dropped; one that comes
// behind it moves all answers from there on by one, also where films are alike, so that it shows in none of
// them; or nothing is answered any more from the first, second or third command behind it on. No film is
// stored under another's number. Only where the list's last command alone is lost the surplus answer takes
// its place, and nothing tells.
TEST(Faults, AnAnswerTwiceAtEachExchangeOfAnUpload) {
    for (int n = 0; n < 9 * 9 * 5; ++n) {
        const int twins = n % 9, k = n / 9 % 9 + 1; // that film and the next one are alike; 0: none are
        const int mode = n / 81; // the copy early; late; and silent from the 1st, 2nd, 3rd command behind
        const int silentFrom = mode < 2 ? 99 : mode - 1;
        SCOPED_TRACE(testing::Message() << k << ", twins " << twins << ", mode " << mode);
        Transfer bench({});
        for (int f = twins; f > 0 && f <= twins + 1; ++f) {
            bench.instrument.execute(filmCommand(f) + "SAME____ 1.000 100 1.000 1.000 1.000  1  1", 0);
        }
        bench.answerTwice(k, mode == 0 ? 0.02 : 0.03, silentFrom, 99);
        bench.transfer.upload();
        const std::string told = bench.told();
        const std::size_t stored = bench.rows("Film", kUpload).size();
        EXPECT_NE(told.find(stored == 9 ? "9 films" : std::to_string(stored) + " of 9 films"),
                  std::string::npos)
            << told;
        EXPECT_TRUE(stored == 9 || mode > 1 || told.rfind("Answers out of step. 0 of 9", 0) == 0) << told;
        EXPECT_TRUE(stored == 9 || (k < 9 && mode == 1) || mode > 1) << told;
        for (std::size_t f = 1; f <= stored; ++f) {
            EXPECT_TRUE(bench.isOwn(f) || k + silentFrom == 9) << f;
        }
    }
}

// The same for films that are written and read back, one of which may be refused: "U?", four and four.
TEST(Faults, AnAnswerTwiceAtEachExchangeOfADownload) {
    for (int n = 0; n < 2 * 5 * 10; ++n) {
        const int refused = n % 5, k = n / 5 % 10; // 0: none
        const double copyAfter = n < 50 ? 0.02 : 0.03;
        SCOPED_TRACE(testing::Message() << k << ", refused " << refused << ", " << copyAfter);
        Transfer bench({{"A"}, {"SAME"}, {"SAME"}, {"D"}});
        bench.boxes.allow("Film Name for film #" + std::to_string(refused) + " = ");
        bench.refuse = refused == 0 ? "" : filmCommand(refused);
        bench.answerTwice(k, copyAfter);
        bench.transfer.download(1);
        // With a refusal among the answers these have moved, or may have for all that shows.
        const int twice = k >= 2 && k <= 5 ? k - 1 : 0; // the film
        const bool outOfStep =
            refused != 0 && twice != 0 &&
            (copyAfter > 0.02 ? refused >= 3 || twice <= refused : refused >= 3 && twice >= refused);
        const std::string told = bench.told();
        EXPECT_EQ(told.rfind("Answers out of step", 0) == 0, outOfStep) << told;
        const std::string named = "Not accepted (Bad Data): " + std::to_string(refused);
        EXPECT_TRUE(outOfStep || refused == 0 || told.find(named) != std::string::npos) << told;
        for (int f = 1; f <= 4; ++f) {
            const FilmRecord& film = bench.films[static_cast<std::size_t>(f)];
            EXPECT_TRUE(film.FilmNum != f || film.FilmName == bench.held(f).substr(0, 8)) << f;
        }
    }
}

// The fault comes in the 5th exchange of an upload, and in that of a download's second film; what was stored
// before the fault is in the file.
TEST(Faults, OfTheLibraryInMidTransfer) {
    struct Case {
        std::function<void(Transfer&, const std::string&)> fault; ///< of the file of that path
        std::size_t rows;                                         ///< that the upload leaves
        const char* uploaded;
        const char* sent;
    };
    const Case cases[] = {
        {[](Transfer& b, const std::string&) { b.files.fillAfter(100); }, 4,
         "Changes not saved: No space left on device. 4 of 9 films read", "2 films sent"},
        {[](Transfer& b, const std::string& path) { b.memory.find(path)->writeProtected = true; }, 4,
         "Changes not saved: the file is read-only. 4 of 9 films read", "2 films sent"},
        {[](Transfer& b, const std::string& path) { b.lock(path); }, 4,
         "Changes not saved: in use by user Admin on computer LAB-3. 4 of 9 films read", "2 films sent"},
        {[](Transfer& b, const std::string& path) { b.memory.put(path, b.bytes("/data/other.mdb")); }, 6,
         "Another program replaced the library, films stored before that are gone. 5 of 9 films read",
         "2 films sent. Not compared, cannot be looked up: mine, two"},
        {[](Transfer& b, const std::string& path) { b.memory.remove(path); }, 0,
         "UploadData.mdb: there is no such file. 4 of 9 films read. Not stored: 5, 6, 7, 8 and 1 more",
         "2 films sent. Not compared, cannot be looked up: mine, two"},
    };
    for (const Case& c : cases) {
        for (const bool upload : {true, false}) {
            SCOPED_TRACE(c.uploaded);
            Transfer bench({{"mine"}, {"two"}});
            bench.make({{"theirs"}}, "", true, "/data/other.mdb");
            bench.wire().setAnswerer([&](const std::string& command) { return bench.answer(command); }, 0.3);
            bench.spoilAt = upload ? 5 : 3;
            bench.spoil = [&](const std::string& command) {
                c.fault(bench, upload ? kUpload : kLibrary);
                return bench.soundAnswer(command);
            };
            upload ? bench.transfer.upload() : bench.transfer.download(1);
            EXPECT_EQ(bench.told(),
                      upload ? std::string(c.uploaded) + ". Not saved under another name yet" : c.sent);
            if (upload && c.rows != 0) {
                EXPECT_EQ(bench.rows("Film", kUpload).size(), c.rows);
                EXPECT_EQ(bench.faults(kUpload), "");
            }
        }
    }
}

TEST(Faults, ButtonsInMidTransferDoNothing) {
    Transfer bench({{"A"}, {"B"}});
    bool tried = false;
    bench.pump.atPump(3, [&] {
        bench.transfer.upload();
        bench.transfer.download(1);
        bench.transfer.resetToDefaults();
        tried = true;
    });
    bench.transfer.download(1);
    EXPECT_TRUE(tried);
    EXPECT_EQ(bench.wire().commands().size(), 5U);
    EXPECT_EQ(bench.told(), "2 films sent");
}

} // namespace
} // namespace drx9
