#include "errors/CErrHandler.h"

#include "fakes/FakeClock.h"
#include "fakes/FakeMessageBoxes.h"
#include "fakes/FaultyFilePort.h"
#include "fakes/MemoryFilePort.h"

#include <gtest/gtest.h>
#include <stdexcept>

namespace drx9 {
namespace {

class CErrHandlerTest : public ::testing::Test {
protected:
    CErrHandlerTest() { disk.put("/app/Monitor.ini", ""); }
    std::string reports() { return disk.text("/app/ERRORS.TXT"); }
    CErrHandler& make() {
        AppInfo app;
        app.title = "Title";
        handler = std::make_unique<CErrHandler>(
            CErrHandlerParts{files, boxes, clock, locale, app, {"/bin/drx9", "/app"}});
        return *handler;
    }
    /// Ends the handler while `left` procedures are registered.
    void end(int left, const std::string& top) {
        boxes.expectShow("Non Fatal Error:\nError Trace Stack = " + std::to_string(left) +
                         " on Terminate.\nProcedure: " + top);
        handler.reset();
    }

    MemoryFilePort disk;
    FaultyFilePort files{disk};
    FakeMessageBoxes boxes;
    FakeClock clock;
    NumberLocale locale{',', '.', "dd.MM.yyyy"};
    std::unique_ptr<CErrHandler> handler;
};

#ifndef _WIN32
TEST_F(CErrHandlerTest, WritesTheWholeReportToTheDefaultFile) {
    CErrHandler& errors = make();
    errors.Push("Form_Load");
    errors.Push("Comm_FindUSBDRX9");
    errors.HandleError({53, 120, "File not found"});
    const std::string report = "Title Application Error Information\r\n"
                               "====================================\r\n"
                               "Current Time   : 17.05.2024 10:30:00\r\n"
                               "Error String   : File not found\r\n"
                               "Error Number   : 53\r\n"
                               "Error Line     : 120\r\n"
                               "Error Procedure: Comm_FindUSBDRX9\r\n"
                               "\r\n"
                               "Procedure Stack\r\n"
                               "---------------\r\n"
                               "01  Form_Load\r\n"
                               "02    Comm_FindUSBDRX9\r\n"
                               "Current Operation: \r\n";
    EXPECT_EQ(reports(), report);

    errors.setIncludeExpandedInfo(true);
    errors.HandleError({53, 120, "File not found"});
    EXPECT_EQ(reports().rfind(report + report + "\r\nAdditional Information\r\n", 0), 0U);
    errors.ClearLog();
    EXPECT_FALSE(disk.exists("/app/ERRORS.TXT"));
    end(2, "Comm_FindUSBDRX9");
}
#endif

TEST_F(CErrHandlerTest, CutsLongTextsAndShowsTheErrorOnlyWhenAsked) {
    CErrHandler& errors = make();
    errors.Push("proc");
    errors.setDestination("other.txt");
    const std::string kept = std::string(254, 'x') + "\xC3\xA4"; // 255 characters
    errors.HandleError({-5, 7, kept + "\xC3\xB6 and more"});
    EXPECT_NE(disk.text("/app/other.txt").find("Error String   : " + kept + "\r\n"), std::string::npos);
    errors.setDisplayMsgOnError(true);
    errors.setCurrentOperation("saving");
    errors.setTraceExecution(true);
    boxes.expectShow("The following error has occurred in procedure: \nproc on line <unknown>\n"
                     "Error (-5) OverflowCurrent Operation: saving");
    errors.HandleError({-5, 0, "Overflow"});
    errors.Pop();
    errors.Push("traced");
    EXPECT_EQ(disk.text("/app/trace.log"), "traced\r\n");
    files.failKind(FileStep::Write);
    errors.Push("on a full disk");
    end(2, "on a full disk");
}

TEST_F(CErrHandlerTest, NamesPastTheLimitAreToldAndPopsStillBalance) {
    for (const auto& [limit, kept] : {std::pair<std::int16_t, int>{-1, 0}, {32767, 101}}) {
        CErrHandler& errors = make();
        errors.setMaxProcStackItems(limit);
        for (int i = 0; i <= kept; ++i) {
            if (i == kept) {
                boxes.expectShow("Non Fatal Error:\nError Stack Overflow.");
            }
            errors.Push("p");
        }
        errors.HandleError({});
        EXPECT_NE(reports().find("Error Procedure: \r\n"), std::string::npos);
        for (int i = 0; i <= kept; ++i) {
            errors.Pop();
        }
        boxes.expectShow("Non Fatal Error:\nError Stack Underflow.");
        errors.Pop();
        handler.reset();
    }
}

struct Sink : ErrorReportSink {
    std::string write(const ErrorReport& report) override {
        last = report;
        return throws ? throw std::runtime_error("no table") : refusal;
    }
    void clear() override { last = {}; }

    ErrorReport last;
    bool throws = false;
    std::string refusal;
};

TEST_F(CErrHandlerTest, ASinkTakesTheFilesPlaceAndItsFailuresAreIgnored) {
    CErrHandler& errors = make();
    Sink sink;
    errors.setDestination(&sink);
    errors.HandleError({11, 12, "to the table"});
    EXPECT_EQ(sink.last.ErrorString, "to the table");
    sink.refusal = "Cannot write.";
    boxes.expectShow("Cannot write.");
    errors.HandleError({});
    sink.throws = true;
    errors.AfterHandlerCalled = [] { throw std::runtime_error("owner"); };
    errors.HandleError({11, 12, "lost"});
    errors.ClearLog();
    EXPECT_EQ(sink.last.ErrorString, "");
}

} // namespace
} // namespace drx9
