#include "JetTestSupport.h"

#include <fstream>
#include <numeric>
#include <sstream>

namespace drx9::jet {
namespace {

class Objects : public testing::TestWithParam<Generation> {
protected:
    void SetUp() override {
        makeOldLibrary(files, GetParam(), {"Zinc-2", "alu", "Co-op", "coo", "Very long film name"});
    }
    MemoryFilePort files;
    DBEngine engine{files};
};
INSTANTIATE_TEST_SUITE_P(Both, Objects, testing::ValuesIn(kBoth));

TEST_P(Objects, FindRowsByQuery) {
    const auto database = engine.OpenDatabase(kPath);
    const auto set = database->OpenRecordset("Material");
    addRow(*set, {{"Material", std::string("Aluminum")}, {"Density", 2.7}, {"ZFactor", 1.08}});
    addRow(*set, {{"Material", std::string("O'Gold")}, {"Density", 19.3}, {"ZFactor", 1.08}});
    // Position of the first row that a query finds.
    const std::pair<const char*, long> cases[] = {
        {"SELECT * FROM Material WHERE Density=2.7AND ZFactor=1.08", 0},
        {"SELECT * FROM Material WHERE Density=2.7AND ZFactor=1.0", -1},
        {"SELECT * From material WHERE MATERIAL ='aluminum  '", 0},
        {"SELECT * FROM Material Where Material='O''gold'", 0},
        {"SELECT * FROM Material Where Material='Ω'", -1},
        {"SELECT * FROM Film WHERE FilmName='ALU'", 0},
    };
    for (const auto& [query, position] : cases) {
        EXPECT_EQ(database->OpenRecordset(query)->AbsolutePosition(), position) << query;
    }
    for (const char* bad : {"SELECT * FROM Film WHERE Tooling='x'", "SELECT * FROM Film WHERE FilmName=1",
                            "SELECT * FROM Nothing", "SELECT * FROM Film WHERE Nothing=1", "Nothing"}) {
        EXPECT_EQ(failure([&] { (void)database->OpenRecordset(bad); }).find(kPath), 0u) << bad;
    }
}

TEST_P(Objects, ShareOneStorePerFile) {
    const auto one = engine.OpenDatabase(kPath);
    const auto other = engine.OpenDatabase(kPath);
    const auto set = one->OpenRecordset("Film");
    const auto reader = other->OpenRecordset("Film");
    editRow(*set, {{"Tooling", 42.0}});
    EXPECT_EQ(reader->Value("Tooling"), Value(42.0));
    set->Delete();
    EXPECT_EQ(set->AbsolutePosition(), -1);
    EXPECT_NE(failure([&] { (void)reader->Value("Tooling"); }).find("has been deleted"), std::string::npos);
    reader->Requery();
    EXPECT_EQ(reader->RecordCount(), 4u);

    one->BeginTrans();
    set->MoveFirst();
    set->Delete();
    EXPECT_EQ(other->OpenRecordset("Film")->RecordCount(), 3u);
    other->BeginTrans();
    EXPECT_NE(failure([&] { one->Rollback(); }).find("another database began"), std::string::npos);
    other->CommitTrans();
    one->Rollback();
    EXPECT_EQ(other->OpenRecordset("Film")->RecordCount(), 4u);
    EXPECT_EQ(faultsOf(files), "");
}

TEST_P(Objects, HonourOtherPrograms) {
    const auto database = engine.OpenDatabase(kPath);
    const auto set = database->OpenRecordset("Film");
    const auto change = [&] { return failure([&] { editRow(*set, {{"Tooling", 1.0}}); }); };
    std::string lock(64, '\0');
    lock.replace(0, 5, "LAB-3");
    lock.replace(32, 5, "Admin");
    files.link("/links/film.mdb", kPath);
    const auto byLink = engine.OpenDatabase("/links/film.mdb");
#ifndef _WIN32 // where a lock file that can be removed, as the fake's can, is nobody's
    for (const char* name : {"/data/test.ldb", "/data/test.Ldb", "/links/film.LDB"}) {
        files.put(name, lock);
        EXPECT_EQ(database->ReadOnlyReason(), "in use by user Admin on computer LAB-3") << name;
        EXPECT_NE(change().find("in use by user Admin on computer LAB-3"), std::string::npos);
        files.remove(name);
    }
#endif
    files.put(kPath, files.text(kPath) + std::string(4096, '\0'));
    EXPECT_NE(change().find("another program changed the file"), std::string::npos);
    set->CancelUpdate();
    EXPECT_NE(set->Value("Tooling"), Value(1.0));
}

TEST_P(Objects, ReadAFileCutInMidPageAndLeaveIt) {
    files.put(kPath, files.text(kPath) + std::string(100, 'x'));
    const std::string before = files.text(kPath);
    const auto set = engine.OpenDatabase(kPath)->OpenRecordset("Film");
    EXPECT_EQ(set->RecordCount(), 5u);
    EXPECT_NE(failure([&] { set->Delete(); }).find("cut short"), std::string::npos);
    EXPECT_NE(faultsOf(files).find("cut short"), std::string::npos);
    EXPECT_EQ(files.text(kPath), before);
}

/// Amounts that are one number as doubles, texts that differ behind what an index key reaches.
TEST_P(Objects, CompareValuesToTheLastDigitAndCharacter) {
    const auto database = engine.OpenDatabase(kPath);
    database->CreateTable(everythingTable("E"), kCreated);
    const auto set = database->OpenRecordset("E");
    for (std::int64_t i = 0; i < 2; ++i) {
        const std::string note = std::string(300, 'x') + std::to_string(i);
        addRow(*set, {{"Id", i}, {"Amount", Currency{INT64_MAX - i}}, {"Note", note}});
        EXPECT_EQ(database->OpenRecordset("E", {{"Amount", Currency{INT64_MAX - i}}})->RecordCount(), 1u);
        EXPECT_EQ(database->OpenRecordset("E", {{"Note", note}})->RecordCount(), 1u);
    }
    EXPECT_TRUE(sameValue(Numeric{"-1.50"}, Numeric{"-01.5"}));
    EXPECT_FALSE(sameValue(Numeric{"1234567890123456789"}, Numeric{"1234567890123456788"}));
}

TEST_P(Objects, KeepARelationshipWithinATable) {
    const auto made = engine.OpenDatabase(kPath);
    TableSpec spec{"R", {column("A", ColumnType::Text, 20), column("Up", ColumnType::Text, 20)}, {}};
    spec.indexes = {{.name = "P", .columns = {{"A", true}}, .primary = true},
                    {.name = "Q", .columns = {{"Up", true}}}};
    made->CreateTable(spec, kCreated);
    const Definition& table = made->shared().table("R").definition();
    const Layout& layout = layoutOf(GetParam());
    std::string bytes = files.text(kPath);
    for (std::size_t i = 0, at = table.page() * layout.pageSize; i < 2; ++i) { // P is referred to, Q refers
        at = bytes.find(table.logicalIndexes[i].block, at);
        bytes[at + layout.relationAt] = static_cast<char>(i + 1);
        Patch(std::span(bytes)).u32(at + layout.otherIndexAt, table.logicalIndexes[1 - i].number);
        Patch(std::span(bytes)).u32(at + layout.otherTableAt, table.page());
    }
    files.put(kPath, bytes);
    const auto set = engine.OpenDatabase(kPath)->OpenRecordset("R");
    // Which row (+: a new one), its A, its Up, and ! for what is forbidden.
    for (const std::string step : {"+aa", "+da", "0Ad", "+ef!", "0bd!", "1dd", "0bb"}) {
        set->AbsolutePosition(step[0] - '0');
        const Values values = {{"A", step.substr(1, 1)}, {"Up", step.substr(2, 1)}};
        const auto message = failure([&] { step[0] == '+' ? addRow(*set, values) : editRow(*set, values); });
        EXPECT_EQ(message.find("a relationship forbids it") != std::string::npos, step.size() == 4) << step;
    }
    set->MoveFirst();
    EXPECT_EQ(failure([&] { set->Delete(); }), "");
    EXPECT_EQ(faultsOf(files), "");
}

/// Beyond 512 or 1024 pages every map must grow; indexes get nodes over nodes.
TEST_P(Objects, GrowBeyondTheFirstMaps) {
    const auto database = engine.OpenDatabase(kPath);
    database->CreateTable({"Big",
                           {column("A", ColumnType::Long), column("T", ColumnType::Text, 200),
                            column("B", ColumnType::Binary, 250)},
                           {{.name = "ByText", .columns = {{"T", true}}},
                            {.name = "P", .columns = {{"A", true}}, .primary = true}}},
                          kCreated);
    database->BeginTrans();
    const auto set = database->OpenRecordset("Big");
    for (std::int64_t i = 0; i < 3500; ++i) {
        addRow(*set, {{"A", (i * 7919) % 3500},
                      {"T", std::string(190, static_cast<char>('a' + i % 26)) + std::to_string(i)},
                      {"B", Binary{std::string(240, 'b')}}});
    }
    database->CommitTrans();
    EXPECT_GT(*files.size(kPath), 1024u * 2048u);
    EXPECT_EQ(faultsOf(files), "");
    EXPECT_EQ(database->TableDefs("Big").RecordCount(), 3500u);
    database->Execute("DROP INDEX ByText ON Big");
    EXPECT_EQ(faultsOf(files), "");
}

/// Long keys make trees of three levels; rows leave from either end, and from everywhere. Freed pages are
/// used again.
TEST_P(Objects, IndexTreesGrowAndShrink) {
    constexpr std::int64_t kRows = 500;
    const auto database = engine.OpenDatabase(kPath);
    TableSpec spec{"Tree",
                   {column("Id", ColumnType::Long), column("T", ColumnType::Text, 200)},
                   {{.name = "P", .columns = {{"Id", true}}, .primary = true},
                    {.name = "Up", .columns = {{"T", true}}},
                    {.name = "Down", .columns = {{"T", false}}}}};
    database->CreateTable(spec, kCreated);
    std::mt19937 random(5);
    std::uint64_t size = 0;
    const auto sound = [&](std::size_t rows) {
        const auto result = checkDatabase(database->shared().store());
        EXPECT_EQ(result.faults, std::vector<std::string>()) << rows << " rows";
        EXPECT_EQ(database->TableDefs("Tree").RecordCount(), rows);
    };
    for (const char* order : {"forward", "backward", "shuffled"}) {
        SCOPED_TRACE(order);
        std::vector<std::int64_t> ids(kRows);
        std::iota(ids.begin(), ids.end(), 0);
        database->BeginTrans();
        for (const bool in : {true, false}) {
            if (order == std::string("backward")) {
                std::sort(ids.rbegin(), ids.rend());
            } else if (order == std::string("shuffled")) {
                std::shuffle(ids.begin(), ids.end(), random);
            }
            const auto set = database->OpenRecordset("Tree");
            for (std::size_t done = 0; done < ids.size() && !HasFailure(); ++done) {
                const std::int64_t id = ids[done];
                if (in) {
                    addRow(*set, {{"Id", id},
                                  {"T", std::to_string(10000 + id) +
                                            std::string(static_cast<std::size_t>(id % 180), 'k')}});
                } else {
                    database->OpenRecordset("Tree", {{"Id", Value(id)}})->Delete();
                }
                if (done % 41 == 0) {
                    sound(in ? done + 1 : ids.size() - done - 1);
                }
            }
            sound(in ? ids.size() : 0);
        }
        database->CommitTrans();
        size = size == 0 ? *files.size(kPath) : size;
        EXPECT_LE(*files.size(kPath), size * 11 / 10);
    }
    EXPECT_EQ(faultsOf(files), "");
}

/// The example in the format's description is what the engine writes.
TEST(Format, IsDescribedToTheByte) {
    MemoryFilePort files;
    (void)files.makeFolder("/data");
    DBEngine engine(files);
    const TableSpec spec{"Metal",
                         {column("Id", ColumnType::Long), column("Name", ColumnType::Text, 20)},
                         {{.name = "PrimaryKey", .columns = {{"Id", true}}, .primary = true}}};
    const auto set = engine.CreateDatabase(kPath, Generation::Jet4, {spec}, kCreated)->OpenRecordset("Metal");
    for (const auto& [id, name] : {std::pair<std::int64_t, std::string>{7, "Gold"}, {-2, "Al"}}) {
        addRow(*set, {{"Id", id}, {"Name", name}});
    }
    std::ifstream description(DRX9_SOURCE_DIR "/docs/jet-format.md");
    const std::string bytes = files.text(kPath);
    std::size_t page = 0;
    int lines = 0;
    for (std::string line; std::getline(description, line);) {
        unsigned at = 0;
        (void)std::sscanf(line.c_str(), "Page %zu", &page); // before the dump of each page
        if (line.rfind("    ", 0) != 0 || std::sscanf(line.c_str(), "%4X", &at) != 1) {
            continue;
        }
        ++lines;
        std::istringstream hex(line.substr(10, 24)); // what follows is said about them
        for (unsigned byte = 0; hex >> std::hex >> byte; ++at) {
            EXPECT_EQ(static_cast<unsigned char>(bytes[page * kJet4.pageSize + at]), byte) << line;
        }
    }
    EXPECT_GT(lines, 40);
}

} // namespace
} // namespace drx9::jet
