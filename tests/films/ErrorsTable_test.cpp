// Error reports in a table: what a row holds, and what is said where there is no table.
#include "films/FilmBench.h"

#include "films/ErrorsTable.h"

namespace drx9 {
namespace {

TEST(ErrorsTable, TakesARowForEachReportAndForgetsThemAll) {
    FilmBench bench;
    using enum jet::ColumnType;
    // Without ErrorLine; the text columns are short.
    const jet::TableSpec errors{
        "Errors",
        {FilmBench::column("ErrorDate", Date), FilmBench::column("ErrorString", Text, 8),
         FilmBench::column("ErrorNumber", Long), FilmBench::column("ErrorProc", Text, 50),
         FilmBench::column("CallStack", Memo), FilmBench::column("AdditionalInfo", Memo)},
        {}};
    bench.engine.CreateDatabase("/data/errors.mdb", jet::Generation::Jet3, {errors}, {45000});
    ErrorsTable sink("Errors");
    ErrorReport report;
    report.ErrorDate = {2024, 2, 29, 18, 0, 0, 0};
    report.ErrorString = "something went wrong";
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
    EXPECT_EQ(rows[0], "45351.75|somethin|-7|Comm_FindUSBDRX9|01  outer\r\n02    inner|");
    sink.clear();
    EXPECT_TRUE(bench.rows("Errors", "/data/errors.mdb").empty());
}

} // namespace
} // namespace drx9
