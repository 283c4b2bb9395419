// Error reports in a table: what a row holds, what is said where there is no table, and where reports go.
#include "films/FilmBench.h"

#include "films/LibraryErrors.h"

namespace drx9 {
namespace {

/// Without ErrorLine.
jet::TableSpec errorsTable(jet::ColumnType number) {
    using enum jet::ColumnType;
    const FilmBench::Columns columns = {{"ErrorDate", Date}, {"ErrorString", Text}, {"ErrorNumber", number},
                                        {"ErrorProc", Text}, {"CallStack", Memo},   {"AdditionalInfo", Memo}};
    return FilmBench::table("Errors", columns);
}

TEST(ErrorsTable, TakesARowForEachReportAndForgetsThemAll) {
    FilmBench bench;
    bench.engine.CreateDatabase("/data/errors.mdb", jet::Generation::Jet3,
                                {errorsTable(jet::ColumnType::Long)}, {45000});
    ErrorsTable sink("Errors");
    ErrorReport report;
    report.ErrorDate = {2024, 2, 29, 18, 0, 0, 0};
    report.ErrorString = "something went wrong, and how";
    report.ErrorNumber = -7;
    report.ErrorProc = "Comm_FindUSBDRX9";
    report.CallStack = {"01  outer", "02    inner"};
    EXPECT_EQ(sink.write(report),
              "Error handler cannot write to the [Errors] errors table because the Destination "
              "recordset variable has not been initialized.");
    EXPECT_EQ(sink.open(bench.engine, "/data/none.mdb").rfind("Error opening recordset: /data/none.mdb: ", 0),
              0U);
    EXPECT_EQ(sink.open(bench.engine, "/data/errors.mdb"), "");
    EXPECT_EQ(sink.write(report), "");
    EXPECT_EQ(sink.write(report), "");
    const auto rows = bench.rows("Errors", "/data/errors.mdb");
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0], "45351.75|something went wrong|-7|Comm_FindUSBDRX9|01  outer\r\n02    inner|");
    bench.engine.CreateDatabase("/data/theirs.mdb", jet::Generation::Jet4,
                                {FilmBench::table("Errors", {{"Id", jet::ColumnType::Long}})}, {45000});
    EXPECT_NE(ErrorsTable("Errors").open(bench.engine, "/data/theirs.mdb"), "") << "of another make";
    sink.clear();
    EXPECT_TRUE(bench.rows("Errors", "/data/errors.mdb").empty());
}

TEST(ErrorsTable, TakesReportsWhereTheLibraryHasOneThatCanBeWritten) {
    FilmBench bench;
    CErrHandler handler({bench.files, bench.boxes, bench.clock, bench.locale, {}, bench.paths});
    const LibraryErrors errors(handler, bench.engine, bench.paths, bench.DBFileName);
    const auto inFile = [&] {
        handler.HandleError({-7, 0, "a fault"});
        return std::exchange(bench.memory.find("/data/ERRORS.TXT")->bytes, "").size() > 100;
    };
    bench.memory.put("/data/ERRORS.TXT", "");
    EXPECT_TRUE(inFile()) << "no library";
    bench.make({{"a"}});
    EXPECT_TRUE(inFile()) << "no table";
    bench.engine.OpenDatabase(kLibrary)->CreateTable(errorsTable(jet::ColumnType::Byte), {45000});
    bench.open();
    EXPECT_FALSE(inFile());
    EXPECT_EQ(bench.rows("Errors"), std::vector<std::string>{"45429.4375|a fault|null|||"})
        << "-7 is no byte";
    bench.files.failKind(FileStep::Rename);
    EXPECT_TRUE(inFile()) << "the row cannot be saved";
    bench.files.heal();
    bench.lock();
    EXPECT_TRUE(inFile()) << "in use by another program";
    EXPECT_EQ(bench.rows("Errors").size(), 1U);
}

} // namespace
} // namespace drx9
