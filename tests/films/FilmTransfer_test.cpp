// Upload, download and verification against a simulated instrument: what goes over the wire, what is stored,
// what is said.
#include "films/TransferBench.h"

namespace drx9 {
namespace {

using Rows = std::vector<std::string>;

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
    bench.library.openDatabase();      // and now the next upload would overwrite what is not saved
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
    bench.spoilAt = bench.exchanges + 1;
    bench.spoil = [](const std::string&) { return "x" + good("").substr(0, 3) + "??"; };
    bench.transfer.resetToDefaults();
    EXPECT_EQ(bench.told().rfind("Defaults, not known whether", 0), 0U) << bench.told();
    bench.spoilAt = 0;
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
                 {{"A", "Gold", std::numeric_limits<double>::infinity()}, 6, nullptr},
                 {{"A", "Gold", 100, 1, 0.5, 60, 4}, 2, "100 0.381 1.000 0.500  60  1"},
                 {{"A", "Gold", 100, 1, 0.5, 60, 63}, 2, "100 0.381 1.000 0.500  60  3"}};
    for (const auto& c : cases) {
        Transfer bench({c.film}, 9, c.sensors);
        bench.boxes.allow("");
        bench.transfer.download(1);
        EXPECT_EQ(bench.wire().commands()[1],
                  c.numbers ? std::string("A1A_______ 19.300 ") + c.numbers : "A1?");
        EXPECT_EQ(bench.told().find("Not sent, its numbers are too long, or none: A") == std::string::npos,
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

} // namespace
} // namespace drx9
