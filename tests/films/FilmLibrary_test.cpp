// The film library: files that are opened, converted, edited, copied; files and disks that fail.
#include "films/FilmBench.h"

#include "platform/os/OsFilePort.h"

namespace drx9 {
namespace {

using Rows = std::vector<std::string>;

// ---- Conversion ----

TEST(LibraryUpgrade, NumbersTheFilmsInIndexOrderOverTheStoredRows) {
    FilmBench bench;
    bench.make({{"zinc"}, {"Mirror-Ag 2", "Silver", 102.5}, {"Au", std::nullopt, std::nullopt}}, "PRIMARYKEY",
               false);
    const std::string old = bench.bytes();
    bench.open();
    EXPECT_EQ(bench.rows("Film"),
              (Rows{"Au      |null|null|1|0.5|60|3|1", "Mirror-A|Silver|102.5|1|0.5|60|3|2",
                    "zinc    |Gold|100|1|0.5|60|3|3"}));
    EXPECT_EQ(bench.faults(), "");
    EXPECT_EQ(bench.bytes("/data/Monitor.mdb.bak"), old);
    EXPECT_EQ(bench.library.notice().text,
              "Converted, all films numbered; the old file is kept as Monitor.mdb.bak");
    EXPECT_EQ(bench.library.caption(), "Films - [Monitor.mdb]");

    const std::string converted = bench.bytes();
    bench.open();
    EXPECT_EQ(bench.bytes(), converted) << "converted once";
    EXPECT_EQ(bench.folder(), (Rows{"Monitor.mdb", "Monitor.mdb.bak"}));
}

TEST(LibraryUpgrade, NumbersNinetyNineAndKeepsEarlierCopies) {
    FilmBench bench;
    std::vector<TestFilm> many;
    for (int i = 0; i < 120; ++i) {
        many.push_back({"F" + std::to_string(1000 + i)});
    }
    bench.make(many, "PrimaryKey", false);
    bench.memory.put("/data/Monitor.mdb.bak", "mine");
    bench.memory.put("/data/Monitor.mdb.bak1", "mine too");
    bench.open();
    const Rows rows = bench.rows("Film");
    ASSERT_EQ(rows.size(), 120U);
    EXPECT_EQ(rows[98], "F1098   |Gold|100|1|0.5|60|3|99");
    EXPECT_EQ(rows[99], "F1099|Gold|100|1|0.5|60|3|null");
    EXPECT_EQ(bench.bytes("/data/Monitor.mdb.bak"), "mine");
    EXPECT_EQ(bench.library.notice().text,
              "Converted, 99 of 120 films numbered; the old file is kept as Monitor.mdb.bak2");
}

TEST(LibraryUpgrade, ConvertsAnEmptyTable) {
    FilmBench bench;
    bench.make({}, "PRIMARYKEY", false);
    bench.open();
    EXPECT_NE(bench.library.columnSize("Film", "FilmNum"), 0U);
}

// Each step on the disk fails, once or with all behind it: the file is the old one, or converted as a whole
// with the old one beside it.
TEST(LibraryUpgrade, IsWholeOrNotAtAll) {
    for (const bool forGood : {false, true}) {
        int converted = 0;
        for (int step = 1; step < 40; ++step) {
            FilmBench bench;
            bench.make({{"b"}, {"a"}}, "PRIMARYKEY", false);
            const std::string old = bench.bytes();
            bench.files.failStep(step, forGood);
            bench.library.DBOpen();
            bench.files.heal();
            const bool kept = bench.memory.exists("/data/Monitor.mdb.bak");
            if (bench.bytes() == old) {
                EXPECT_TRUE(!kept || forGood) << "step " << step;
                EXPECT_NE(bench.library.notice().text + bench.library.standing().text, "") << "step " << step;
            } else {
                ++converted;
                EXPECT_EQ(bench.faults(), "");
                EXPECT_EQ(bench.rows("Film").front().back(), '1');
                EXPECT_EQ(bench.bytes("/data/Monitor.mdb.bak"), old);
            }
        }
        EXPECT_GT(converted, 5);
    }
}

TEST(LibraryUpgrade, LeavesWhatItCannotConvertAsItIs) {
    const struct {
        const char* index;
        bool numbered;
        std::function<void(FilmBench&)> prepare;
        const char* told; ///< part of what the bottom line says
    } cases[] = {
        {"ByName", false, [](FilmBench&) {}, "PRIMARYKEY"},
        {"PRIMARYKEY", true, [](FilmBench&) {}, "FilmNum"},
        {"PRIMARYKEY", false, [](FilmBench& b) { b.lock(); }, "in use by user Admin on computer LAB-3"},
        {"PRIMARYKEY", false, [](FilmBench& b) { b.memory.find(kLibrary)->writeProtected = true; },
         "the file is read-only"},
        {"PRIMARYKEY", false, [](FilmBench& b) { b.memory.put(kLibrary, b.bytes().substr(0, 70000)); },
         "cut short"},
        {"PRIMARYKEY", false, [](FilmBench& b) { b.memory.remove(kLibrary); }, "Monitor.mdb"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.told);
        FilmBench bench;
        bench.make({{"a"}}, c.index, c.numbered);
        c.prepare(bench);
        const std::string before = bench.bytes();
        bench.open();
        EXPECT_EQ(bench.bytes(), before);
        EXPECT_FALSE(bench.memory.exists("/data/Monitor.mdb.bak"));
        const std::string told = bench.library.notice().text + bench.library.standing().text;
        EXPECT_NE(told.find(c.told), std::string::npos) << told;
    }
}

// ---- Edits ----

TEST(FilmEditor, ShowsAFilmWithItsMaterial) {
    FilmBench bench;
    bench.locale = {',', '.', "d.M.yyyy"};
    bench.make({{"Mirror", "Silver", 102.5, 1.25, 0.045}, {"Odd", "None", {}, {}, {}, {}, {}}});
    bench.open();
    bench.editor.ShowDBFilm("Mirror");
    ShownFilm now = bench.editor.shown();
    EXPECT_EQ(now.boxes, (std::array<std::string, 6>{"102,5", "10,5", "0,529", "1,25", "0,045", "Mirror"}));
    bench.editor.ShowDBFilm("Odd");
    now = bench.editor.shown();
    EXPECT_TRUE(now.film);
    EXPECT_FALSE(now.material);
    EXPECT_EQ(now.boxes[1], "");
    bench.editor.ShowDBFilm("O'Hara");
    EXPECT_FALSE(bench.editor.shown().film) << "a quote breaks the query";
    EXPECT_NE(bench.library.notice().text, "");
}

TEST(FilmEditor, WritesThroughAndOnlyWhatChanges) {
    OpenBench bench({{"a", "Gold", 100, 1, 0.5, 60, 3}}, "a");
    const auto steps = bench.files.steps().size();
    bench.editor.editBox(FilmBox::Tooling, "100.0");
    bench.editor.editBox(FilmBox::EndThick, "none");
    EXPECT_EQ(bench.library.notice().text, "\"none\" is no number: the value stays as it was");
    bench.editor.setTime(1, 0);
    bench.editor.changeMaterial("Gold");
    bench.editor.EditFilmName("a");
    EXPECT_EQ(bench.files.steps().size(), steps) << "nothing changed: nothing is written";
    bench.editor.editBox(FilmBox::Tooling, "99.9");
    bench.editor.editBox(FilmBox::Density, "19");
    bench.editor.setTime(99, 59);
    bench.editor.clickSensor(0, false);
    bench.editor.clickSensor(5, true);
    bench.editor.clickSensor(5, true); // added again, not set: kept
    EXPECT_EQ(bench.rows("Film"), Rows{"1|a|Gold|99.9|1|0.5|5999|66"});
    bench.editor.changeMaterial("silver");
    bench.editor.changeMaterial("Lead");
    EXPECT_EQ(bench.rows("Film"), Rows{"1|a|Silver|99.9|1|0.5|5999|66"});
    EXPECT_EQ(bench.rows("Material").front(), "Gold|19|0.381");
    EXPECT_EQ(bench.faults(), "");
}

TEST(FilmEditor, NamesFilmsByItsRules) {
    const std::pair<const char*, const char*> cases[] = {
        // null: refused with a box
        {"NewFilm7", nullptr},      {"NewFilm", nullptr},
        {"UnitFilm2", nullptr},     {"UnitFil", "UnitFil"},
        {"unitfilm", "unitfilm"},   {"", "FILM 1"},
        {"ALUMINIUM1", "ALUMINIU"}, {"a!b", "old"},
        {"O'Hara", "O'Hara"},       {"caf\xC3\xA9 9 xy", "caf\xC3\xA9 9 x"}};
    for (const auto& [typed, stored] : cases) {
        OpenBench bench({{"old"}}, "old");
        if (stored == nullptr) {
            bench.boxes.expectShow(
                "UnitFilm and NewFilm cannot be used for\nfilm names. Please select another name.");
        }
        bench.editor.EditFilmName(typed);
        EXPECT_EQ(bench.rows("Film").front(),
                  std::string("1|") + (stored ? stored : "old") + "|Gold|100|1|0.5|60|3")
            << typed;
    }
}

TEST(FilmEditor, AddsFilmsAndMaterials) {
    OpenBench bench({{"ALUMINIU"}}, "ALUMINIU");
    bench.input.answer = "aluminiu";
    bench.boxes.expectShow("Duplicate name. Select another name for Film");
    EXPECT_FALSE(bench.editor.addFilm("Gold"));
    EXPECT_EQ(bench.editor.shown().boxes[5], "ALUMINIU");
    for (const char* name : {"", "ALUMINIUM1", "a!b", "NewFilm"}) {
        bench.input.answer = name;
        bench.editor.addFilm("Gold");
    }
    EXPECT_EQ(bench.rows("Film"),
              (Rows{"1|ALUMINIU|Gold|100|1|0.5|60|3", "null|ALUMINIU|Gold|null|null|null|null|null",
                    "null|NewFilm|Gold|null|null|null|null|null"}));
    bench.input.answer = "gold";
    bench.boxes.expectShow("Duplicate name. Select another name for Material");
    EXPECT_EQ(bench.editor.addMaterial(), "");
    bench.input.answer = "A material with a name";
    EXPECT_EQ(bench.editor.addMaterial(), "A material with");
    EXPECT_EQ(bench.rows("Material").back(), "A material with|1|1");
}

TEST(FilmLibrary, SaysWhatWasNotSaved) {
    OpenBench bench({{"a"}}, "a");
    const std::string before = bench.bytes();
    bench.files.fillAfter(100);
    bench.editor.editBox(FilmBox::Tooling, "50");
    EXPECT_EQ(bench.library.notice().text, "Change not saved: No space left on device");
    EXPECT_EQ(bench.editor.shown().boxes[0], "100");
    bench.files.heal();
    bench.lock();
    bench.editor.setTime(3, 0);
    EXPECT_EQ(bench.library.notice().text, "Change not saved: in use by user Admin on computer LAB-3");
    EXPECT_EQ(bench.library.standing().text, "Read-only: in use by user Admin on computer LAB-3");
    EXPECT_EQ(bench.bytes(), before);
    EXPECT_EQ(bench.folder(), (Rows{"Monitor.ldb", "Monitor.mdb"}));
}

TEST(FilmLibrary, FollowsAFileThatAnotherProgramReplaced) {
    OpenBench bench({{"a"}});
    bench.make({{"a", "Silver"}, {"b"}}, "", true, "/data/other.mdb");
    const std::string ours = bench.bytes(), theirs = bench.bytes("/data/other.mdb");
    bench.memory.put(kLibrary, theirs);
    bench.library.refresh(Dat::MatAll);
    EXPECT_FALSE(bench.library.found(Dat::DBSelected)) << "nobody has chosen a film";
    bench.memory.remove(kLibrary);
    EXPECT_EQ(bench.library.refresh(Dat::DBFilms), Found::Failed);
    bench.memory.put(kLibrary, ours);
    bench.editor.ShowDBFilm("a");
    EXPECT_EQ(bench.library.standing().text, "") << "it is there again";
    bench.editor.EditFilmName("b");
    bench.memory.put(kLibrary, theirs);
    bench.library.refresh(Dat::MatAll);
    EXPECT_EQ(bench.editor.shown().boxes[5], "b") << "by its new name";
    bench.memory.put(kLibrary, ours);
    bench.editor.ShowDBFilm("a");
    bench.memory.put(kLibrary, theirs);
    bench.editor.editBox(FilmBox::Tooling, "50");
    EXPECT_EQ(bench.bytes(), theirs) << "read from the old file: not stored in the new one";
    EXPECT_EQ(bench.library.notice().text, "Change not saved: another program changed the file meanwhile");
    bench.editor.ShowDBFilm("a");
    EXPECT_EQ(bench.editor.shown().materialName, "Silver");
    EXPECT_EQ(bench.editor.films().size(), 2U) << "all sources look at the new file";
    bench.editor.editBox(FilmBox::Tooling, "50");
    EXPECT_EQ(bench.rows("Film").front(), "1|a|Silver|50|1|0.5|60|3");
}

// ---- Copies ----

TEST(FilmLibrary, SavesACopyAndStaysWhereItIs) {
    OpenBench bench({{"a"}});
    EXPECT_FALSE(bench.library.saveDatabaseAs()) << "cancelled";
    bench.dialogs.answers = {"/data/Shop.mdb"};
    EXPECT_TRUE(bench.library.saveDatabaseAs());
    EXPECT_TRUE(bench.dialogs.request.overwritePrompt);
    EXPECT_EQ(bench.dialogs.request.initialFolder, "/app");
    EXPECT_EQ(bench.DBFileName, "/data/Shop.mdb");
    EXPECT_EQ(bench.library.caption(), "Films - [Monitor.mdb]");
    EXPECT_EQ(bench.library.notice().text,
              "Saved as Shop.mdb. Changes here still go to Monitor.mdb; open Shop.mdb to edit it.");
    bench.editor.ShowDBFilm("a");
    bench.editor.setTime(0, 1);
    EXPECT_EQ(bench.rows("Film", "/data/Shop.mdb").front(), "1|a|Gold|100|1|0.5|60|3");
    EXPECT_EQ(bench.rows("Film").front(), "1|a|Gold|100|1|0.5|1|3");

    bench.files.failKind(FileStep::Rename);
    bench.dialogs.answers = {"/data/Third.mdb"};
    EXPECT_FALSE(bench.library.saveDatabaseAs());
    EXPECT_EQ(bench.DBFileName, "/data/Shop.mdb");
    EXPECT_EQ(bench.library.notice().text, "Not saved as Third.mdb: Input/output error");

    bench.files.heal();
    bench.dialogs.answers = {"/data/Monitor.mdb"}; // back onto the file that is shown
    EXPECT_TRUE(bench.library.saveDatabaseAs());
    EXPECT_EQ(bench.library.notice().text, "Saved as Monitor.mdb.");
    bench.editor.ShowDBFilm("a");
    EXPECT_EQ(bench.editor.shown().minutes, 1) << "it has been read again";
    bench.editor.setTime(0, 2);
    EXPECT_EQ(bench.rows("Film").front(), "1|a|Gold|100|1|0.5|2|3");
}

TEST(FilmLibrary, MarksAnUploadUntilThatIsSaved) {
    OpenBench bench({{"a"}});
    bench.make({{"other"}}, "", true, "/data/other.mdb");
    EXPECT_TRUE(bench.library.openUploadCopy());
    EXPECT_FALSE(bench.library.uploadOverwrites()) << "the next one begins with this one";
    bench.dialogs.answers = {"/data/other.mdb", "/data/X.mdb", "/data/Shop.mdb"};
    bench.library.openDatabase();
    EXPECT_TRUE(bench.library.saveDatabaseAs());
    EXPECT_EQ(bench.rows("Film", "/data/X.mdb").front(), "1|other|Gold|100|1|0.5|60|3");
    EXPECT_TRUE(bench.library.uploadOverwrites()) << "another file was saved";
    EXPECT_TRUE(bench.library.saveUploadAs());
    EXPECT_EQ(bench.rows("Film", "/data/Shop.mdb").front(), "1|a|Gold|100|1|0.5|60|3");
    EXPECT_FALSE(bench.library.unsavedUpload());
    EXPECT_EQ(bench.DBFileName, "/data/X.mdb") << "in the place of what was shown";
}

#ifdef DRX9_LIBRARY
// The library that the build makes for new installations.
TEST(ShippedLibrary, HoldsMaterialsAndOpensUnchanged) {
    FilmBench bench;
    std::string shipped;
    ASSERT_TRUE(makeOsFilePort()->read(DRX9_LIBRARY, shipped).ok());
    bench.memory.put(kLibrary, shipped);
    EXPECT_EQ(bench.faults(), "");
    bench.open();
    EXPECT_EQ(bench.bytes(), shipped) << "no index on Film: nothing to convert";
    EXPECT_EQ(bench.library.notice().text + bench.library.standing().text, "");
    const Rows materials = bench.rows("Material");
    EXPECT_GT(materials.size(), 30U);
    EXPECT_EQ(std::count(materials.begin(), materials.end(), "Gold|19.3|0.381"), 1);
}
#endif

} // namespace
} // namespace drx9
