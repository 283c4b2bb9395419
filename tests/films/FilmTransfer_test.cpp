// Upload, download and verification against a simulated instrument: what goes over the wire, what is stored,
// what is said; each exchange that fails in turn.
#include "films/FilmBench.h"

namespace drx9 {
namespace {

using Rows = std::vector<std::string>;
constexpr const char* kUpload = "/data/UploadData.mdb";

/// A bench with a library open and its first film selected.
struct Transfer : FilmBench {
    explicit Transfer(const std::vector<TestFilm>& rows, int slots = 9, int sensors = 6)
        : FilmBench(slots, sensors) {
        make(rows);
        open();
        exchanges = 0;
        for (int f = 1; f <= slots; ++f) {
            parseFilmReply(held(f), f, films[static_cast<std::size_t>(f)]);
        }
    }
    std::string told() { return library.notice().text; }
    auto boxesOf(const std::string& beginning) {
        return std::count_if(boxes.shown().begin(), boxes.shown().end(),
                             [&](const auto& box) { return box.text.rfind(beginning, 0) == 0; });
    }
    /// The f-th row of the upload is the instrument's film f.
    bool isOwn(std::size_t f) {
        return rows("Film", kUpload)[f - 1].substr(2, 8) == held(static_cast<int>(f)).substr(0, 8);
    }
    /// Answers come after 0.02 s, that of the k-th exchange twice; those of the next ones in that range do
    /// not.
    void answerTwice(int k, double copyAfter, int silentFrom = 0, int silentTo = 0) {
        boxes.allow("Error reading Film number ");
        boxes.allow("Get Film Error: ");
        wire().setAnswerer([this](const std::string& command) { return answer(command); }, 0.02);
        spoilAt = exchanges + k;
        spoil = [=, this](const std::string& command) {
            const int behind = ++spoilAt - 1 - k;
            const std::string reply = soundAnswer(command);
            if (behind == 0) {
                wire().arrive(reply, copyAfter);
            }
            return behind >= silentFrom && behind <= silentTo && behind > 0 ? std::string() : reply;
        };
    }
};

// ---- Upload ----

TEST(Upload, StoresByNumberInACopy) {
    Transfer bench({{"mine"}, {"two"}, {"3"}, {"4"}, {"5"}, {"6"}, {"7"}, {"8"}, {"9"}, {"ten"}});
    const std::string before = bench.bytes();
    bench.transfer.upload();
    EXPECT_EQ(bench.bytes(), before) << "the operator's own library";
    EXPECT_EQ(bench.wire().commands(), (Rows{"A1?", "A2?", "A3?", "A4?", "A5?", "A6?", "A7?", "A8?", "A9?"}));
    const Rows rows = bench.rows("Film", kUpload);
    ASSERT_EQ(rows.size(), 10U);
    EXPECT_EQ(rows[0], "1|ALUMINUM|UnitMat1|100|5|2.5|60|63");
    EXPECT_EQ(rows[1], "2|GOLD    |Gold|100|1|0.5|60|63");
    EXPECT_EQ(rows[9], "10|ten|Gold|100|1|0.5|60|3") << "above the instrument's count";
    EXPECT_EQ(bench.rows("Material", kUpload)[2], "UnitMat1|2.7|1.08");
    EXPECT_EQ(bench.faults(kUpload), "");
    EXPECT_EQ(bench.told(), "9 films read. Not saved under another name yet");
    EXPECT_EQ(bench.progress.shown, Rows{"Reading DRX-9 Films"});
    EXPECT_EQ(bench.progress.percents, (std::vector<int>{11, 22, 33, 44, 56, 67, 78, 89, 100}));
    EXPECT_EQ(bench.progress.standing, 0);

    const Rows once = bench.rows("Material", kUpload);
    bench.transfer.upload();
    EXPECT_EQ(bench.rows("Material", kUpload), once) << "each pair's material is found again";
    EXPECT_EQ(bench.rows("Film", kUpload), rows);

    bench.editor.ShowDBFilm("ten");
    bench.editor.setTime(0, 1);
    bench.dialogs.answers = {"/data/Monitor.mdb"};
    bench.library.openDatabase(); // and now the next upload would overwrite what is not saved
    for (const int step : {0, 1, 2}) { // Yes, and no file chosen; No, by the program's close; No
        bench.boxes.expect(FakeMessageBoxes::Kind::YesNo, "Save Uploaded Data to a database?", step == 0,
                           [&] { bench.ends = [=] { return step == 1; }; });
        bench.transfer.upload();
        EXPECT_EQ(bench.rows("Film", kUpload)[9], step < 2 ? "10|ten|Gold|100|1|0.5|1|3" : rows[9]);
    }
    bench.dialogs.answers = {"/data/Shop.mdb"};
    EXPECT_TRUE(bench.library.saveDatabaseAs());
    EXPECT_FALSE(bench.library.unsavedUpload());
}

TEST(Upload, StoresWhatItHasBeforeABoxTells) {
    Transfer bench({{"mine"}});
    bench.spoil = [](const std::string&) { return replyPacket('D', ""); };
    bench.spoilAt = 5;
    bench.boxes.expectShow("Get Film Error: ", [&] { EXPECT_EQ(bench.rows("Film", kUpload).size(), 4U); });
    bench.boxes.expectShow("Error reading Film number 5");
    bench.transfer.upload();
}

TEST(Upload, StoresWhatTheColumnsHold) {
    Transfer bench({{"mine"}});
    using enum jet::ColumnType;
    const auto film = FilmBench::table("Film", {{"FilmNum", Integer},
                                                {"FilmName", Text},
                                                {"Material", Text},
                                                {"Tooling", Byte},
                                                {"EndThick", Single},
                                                {"ThickSet", Single},
                                                {"TimeSet", Double},
                                                {"SensorAvg", Double}});
    const auto material =
        FilmBench::table("Material", {{"Material", Text}, {"Density", Single}, {"ZFactor", Single}});
    bench.engine.CreateDatabase("/data/single.mdb", jet::Generation::Jet4, {film, material}, {45000});
    bench.dialogs.answers = {"/data/single.mdb"};
    bench.library.openDatabase();
    bench.instrument.execute("A2SAME____ 2.700 300 1.080 0.100 0.200  1  1", 0);
    bench.transfer.upload();
    bench.transfer.upload(); // over what is there
    EXPECT_EQ(bench.rows("Material", kUpload).size(), 8U) << "film 2 has film 1's";
    EXPECT_EQ(bench.rows("Film", kUpload)[1], "2|SAME    |UnitMat1|null|0.1|0.2|1|1") << "300 is no byte";
    EXPECT_EQ(bench.told(), "Change not saved: the number is out of range of the column \"Tooling\". "
                            "9 films read. Not stored: Tooling of film 2. Not saved under another name yet");
    bench.transfer.download(1);
    EXPECT_EQ(bench.told(), "9 films sent") << "and nothing differs";

    bench.engine.CreateDatabase("/data/none.mdb", jet::Generation::Jet4, {film}, {45000});
    bench.dialogs.answers = {"/data/none.mdb"};
    bench.library.openDatabase();
    bench.boxes.expect(FakeMessageBoxes::Kind::YesNo, "Save Uploaded Data to a database?");
    bench.transfer.upload();
    EXPECT_EQ(bench.rows("Film", kUpload)[0], "1|ALUMINUM|null|100|5|2.5|60|63") << "has no materials";
    EXPECT_NE(bench.told().find("9 films read. Not stored: Material of film 1, "), std::string::npos)
        << bench.told();
}

TEST(Upload, EndsWhereTheCopyFails) {
    Transfer bench({{"mine"}});
    bench.files.failKind(FileStep::Rename);
    bench.transfer.upload();
    EXPECT_TRUE(bench.wire().commands().empty());
    EXPECT_EQ(bench.DBFileName, "Monitor.mdb");
    EXPECT_FALSE(bench.library.unsavedUpload());
    EXPECT_EQ(bench.told(),
              "Nothing read: the library cannot be copied to UploadData.mdb: Input/output error");
}

TEST(Upload, GathersItsCommits) {
    Transfer bench({{"mine"}}, 99);
    bench.wire().setAnswerer([&](const std::string& command) { return bench.answer(command); }, 0.1);
    bench.transfer.upload();
    const auto renames = std::count(bench.files.steps().begin(), bench.files.steps().end(), FileStep::Rename);
    EXPECT_GE(renames, 10) << "at least one commit a second in 9.9 s";
    EXPECT_LE(renames, 30);
    EXPECT_EQ(bench.rows("Film", kUpload).size(), 99U);
}

// ---- Download ----

TEST(Download, WritesRowsByTheirPlaceAndVerifiesThem) {
    Transfer bench({{"AU", "Gold", 110, 1.25, 0.5, 75, 5}, {"AG", "Silver"}, {"third"}}, 9);
    bench.selected = {0, 2};
    bench.transfer.download(0);
    EXPECT_EQ(bench.wire().commands(),
              (Rows{"U?", "A1AU______ 19.300 110 0.381 1.250 0.500  75  5",
                    "A3THIRD___ 19.300 100 0.381 1.000 0.500  60  3", "A1?", "A3?"}));
    EXPECT_EQ(bench.progress.shown, (Rows{"Writing DRX-9 Films", "Verifying DRX-9 Films"}));
    EXPECT_EQ(bench.told(), "2 films sent");
    EXPECT_FALSE(bench.hourglass);
    EXPECT_EQ(bench.selected, std::set<int>{0});
    EXPECT_EQ(bench.films[1].Tooling, 110) << "holds what the instrument holds";
    EXPECT_EQ(bench.films[2].FilmName, "GOLD    ");
    bench.selected = {};
    bench.wire().forget();
    bench.transfer.download(0);
    EXPECT_EQ(bench.wire().commands(), Rows{"U?"}) << "nothing selected";
    EXPECT_EQ(bench.progress.standing, 0);
}

TEST(Download, WritesNoMoreThanTheInstrumentHolds) {
    Transfer bench(std::vector<TestFilm>(12, {"F"}));
    bench.transfer.download(1);
    EXPECT_EQ(bench.wire().commands().size(), 1 + 9 + 9U);
    EXPECT_EQ(bench.wire().commands().back(), "A9?");
    bench.selected = {8, 9, 11};
    bench.transfer.download(0);
    EXPECT_EQ(bench.told().rfind("1 of 3 films sent. ", 0), 0U) << bench.told();
    EXPECT_NE(bench.told().find("Not sent, the DRX-9 holds 9 films: F"), std::string::npos);
}

TEST(Download, TakesNamesAndNullsAsTheyAre) {
    // Looked up by the first 8 characters: a longer name finds another film, or none.
    Transfer bench({{"O'Hara"}, {"a!\xC3\xA9", "Lead", {}, 2, {}, {}, {}}, {"NotAFilm"}, {"TOO_LONG_1"}}, 9,
                   2);
    bench.boxes.expect(FakeMessageBoxes::Kind::OkCancel,
                       "Film Name for film #2 = A_\xC3\x89.\nThe Film Name should be A!\xC3\x89", true);
    bench.boxes.expect(FakeMessageBoxes::Kind::OkCancel,
                       "Film Name for film #3 = SILVER.\nThe Film Name should be NOTAFILM");
    bench.transfer.download(1);
    EXPECT_EQ(bench.wire().commands(),
              (Rows{"U?", "A2A_\xC9_____ 19.300 100 0.381 2.000 0.500  60  3", "A1?", "A2?", "A3?"}))
        << "density, Z factor and nulls stay the instrument's";
    EXPECT_EQ(bench.told(), "1 of 4 films sent. Not sent, cannot be looked up: O'Hara, NotAFilm, TOO_LONG_1. "
                            "Material not in the library, density and Z factor left as they are: a!\xC3\xA9");
    bench.library.forgetNotice();
    EXPECT_NE(bench.transfer.lasting().text, "") << "until the next transfer";
}

TEST(Download, KnowsWhatWasReadOrAccepted) {
    Transfer bench({{"A"}, {"B", "Gold", {}}, {"C", "Lead"}});
    bench.films = Films{}; // nobody has read them
    bench.boxes.allow("Film ");
    bench.transfer.download(1);
    EXPECT_EQ(bench.told(), "1 of 3 films sent. "
                            "Not sent, what the DRX-9 holds for their empty fields is not known: B, C");
    EXPECT_EQ(bench.films[1].FilmNum, 1);
    bench.transfer.download(1);
    EXPECT_EQ(bench.told().rfind("2 of 3 films sent. Not sent", 0), 0U) << "B was read back, then cancelled";
    bench.selected = {2};
    bench.transfer.download(0);
    EXPECT_EQ(bench.told().rfind("1 film sent. Material not", 0), 0U) << bench.told();
    bench.transfer.resetToDefaults();
    EXPECT_EQ(bench.wire().commands().back(), "Z");
    bench.selected = {2};
    bench.transfer.download(0);
    EXPECT_EQ(bench.told().rfind("0 of 1 film", 0), 0U) << bench.told();
}

TEST(Download, SendsNumbersAsTheInstrumentTakesThem) {
    const struct {
        TestFilm film;
        int sensors;
        const char* numbers; ///< as sent; null: not sent, no packet is long enough
    } cases[] = {{{"A", "Gold", -0.4, 99999.9995, 0.0005, 5999.5, 1e9},
                  6,
                  "0 0.381 100000.000 0.001  5999.5  1000000000"},
                 {{"A", "Gold", 1e250}, 6, nullptr},
                 {{"A", "Gold", 100, 1, 0.5, 60, 4}, 2, "100 0.381 1.000 0.500  60  1"},
                 {{"A", "Gold", 100, 1, 0.5, 60, 63}, 2, "100 0.381 1.000 0.500  60  3"}};
    for (const auto& c : cases) {
        Transfer bench({c.film}, 9, c.sensors);
        bench.boxes.allow("");
        bench.transfer.download(1);
        EXPECT_EQ(bench.wire().commands()[1],
                  c.numbers ? std::string("A1A_______ 19.300 ") + c.numbers : "A1?");
        EXPECT_EQ(bench.told().find("Not sent, its numbers are too long: A") == std::string::npos,
                  c.numbers != nullptr);
        EXPECT_EQ(bench.boxes.shown().empty(), *c.film.sensorAvg == 63)
            << "the mask's first two sensors are compared";
    }
}

TEST(Download, NeedsTheShutterClosed) {
    Transfer bench({{"A"}});
    bench.instrument.setShutter(true, 0);
    bench.boxes.expectShow("Please close shutter before downloading films.");
    bench.transfer.download(1);
    EXPECT_TRUE(bench.hourglass) << "left behind: kept";
    EXPECT_EQ(bench.boxes.shown().back().title, "Shutter is opened!");
    EXPECT_EQ(bench.wire().commands(), Rows{"U?"});
    bench.spoil = [](const std::string&) { return replyPacket('B', ""); };
    bench.spoilAt = bench.exchanges + 1;
    bench.transfer.download(1);
    EXPECT_EQ(bench.told(), "Nothing sent: whether the shutter is closed is not known (Not Ready)");
    EXPECT_FALSE(bench.hourglass);
    EXPECT_EQ(bench.wire().commands().size(), 2U);
}

TEST(Verification, AsksAboutEachDifferenceUntilCancelled) {
    for (int cancelAt = 1; cancelAt <= 9; ++cancelAt) {
        Transfer bench({{"Alum", "Gold", 99.6, 1.0004, 0.5, 60, 3}, {"B"}});
        bench.spoil = [](const std::string&) { return good("ALU      1.5 7 2 3 4 5 6"); };
        bench.spoilAt = 4; // U?, two films, then the first is read back
        const std::pair<const char*, const char*> texts[] = {
            {"Film Name for film #1 = ALU.", "The Film Name should be ALUM"},
            {"Film Density for film #1 = 1.5.", "The Film Density should be 19.3"},
            {"Film Tooling for film #1 = 7.", "The Film Tooling should be 99.6"},
            {"Film ZFactor for film #1 = 2.", "The Film ZFactor should be 0.381"},
            {"Final Thickness for film #1 = 3.", "The Final Thickness should be 1.0004"},
            {"Thickness Setpoint for film #1 = 4.", "The Thickness Setpoint should be 0.5"},
            {"Time Setpoint for film #1 = 5.", "The Time Setpoint should be 60"},
            {"Sensor Average for film #1 = 6.", "The Sensor Average should be 3"}};
        for (int i = 1; i <= std::min(cancelAt, 8); ++i) {
            bench.boxes.expect(FakeMessageBoxes::Kind::OkCancel,
                               std::string(texts[i - 1].first) + "\n" + texts[i - 1].second, i < cancelAt);
        }
        bench.transfer.download(1);
        EXPECT_EQ(bench.wire().commands().back(), cancelAt == 9 ? "A2?" : "A1?");
    }
}

// ---- Faults ----

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
// them. A command that is lost takes the surplus answer up; or nothing is answered any more. No film is
// stored under another's number. The last of two films that end the list may be: whether they are alike, or
// its command was lost, nothing tells.
TEST(Faults, AnAnswerTwiceAtEachExchangeOfAnUpload) {
    for (int n = 0; n < 9 * 9 * 8; ++n) {
        const int twins = n % 9, k = n / 9 % 9 + 1; // that film and the next one are alike; 0: none are
        const int mode =
            n / 81; // the copy early; late; lost the 1st, 2nd, 3rd command behind; and all from there on
        const int silentFrom = mode < 2 ? 99 : (mode - 2) % 3 + 1;
        SCOPED_TRACE(testing::Message() << k << ", twins " << twins << ", mode " << mode);
        Transfer bench({});
        for (int f = twins; f > 0 && f <= twins + 1; ++f) {
            bench.instrument.execute(filmCommand(f) + "SAME____ 1.000 100 1.000 1.000 1.000  1  1", 0);
        }
        bench.answerTwice(k, mode == 0 ? 0.02 : 0.03, silentFrom, mode < 5 ? silentFrom : 99);
        bench.transfer.upload();
        const std::string told = bench.told();
        const std::size_t stored = bench.rows("Film", kUpload).size();
        EXPECT_NE(told.find(stored == 9 ? "9 films" : std::to_string(stored) + " of 9 films"),
                  std::string::npos)
            << told;
        EXPECT_TRUE(stored == 9 || mode > 1 || told.rfind("Answers out of step. 0 of 9", 0) == 0) << told;
        EXPECT_TRUE(stored == 9 || (k < 9 && mode == 1) || mode > 1) << told;
        for (std::size_t f = 1; f <= stored; ++f) {
            EXPECT_TRUE(bench.isOwn(f) || (f == 9 && k + silentFrom == 9)) << f;
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
