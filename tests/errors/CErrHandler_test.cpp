#include "errors/CErrHandler.h"

#include "fakes/FakeClock.h"
#include "fakes/FakeMessageBoxes.h"
#include "fakes/FaultyFilePort.h"
#include "fakes/MemoryFilePort.h"

#include <gtest/gtest.h>
#include <stdexcept>

namespace drx9 {
namespace {

const std::string kOverflow = "Non Fatal Error:\nError Stack Overflow.";

class CErrHandlerTest : public ::testing::Test {
protected:
    CErrHandlerTest() {
        disk.put("/app/Monitor.ini", "");
        disk.current = "/home/operator";
    }
    std::string reports() { return disk.text("/app/ERRORS.TXT"); }
    CErrHandler& make() {
        const AppInfo app{"Title", "Company", "Product", 3, 2, 1};
        const Paths paths{"/bin/drx9", "/app"};
        handler = std::make_unique<CErrHandler>(CErrHandlerParts{files, boxes, clock, locale, app, paths});
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
    EXPECT_EQ(reports(),
              report + report +
                  "\r\nAdditional Information\r\n----------------------\r\n"
                  "Current Directory: /home/operator\r\nApp Title: Title\r\nApp CompanyName: Company\r\n"
                  "App Major: 3\r\nApp Minor: 2\r\nApp Revision: 1\r\nApp Path: /bin/drx9\r\n"
                  "App ProductName: Product\r\n");
    errors.ClearLog();
    EXPECT_FALSE(disk.exists("/app/ERRORS.TXT"));
    end(2, "Comm_FindUSBDRX9");
}
#endif

TEST_F(CErrHandlerTest, CutsTheDescriptionAt255CharactersNotBytes) {
    CErrHandler& errors = make();
    errors.setDestination("other.txt");
    const std::string kept = std::string(254, 'x') + "\xC3\xA4";
    errors.HandleError({1, 0, kept + "\xC3\xB6 and more"});
    EXPECT_NE(disk.text("/app/other.txt").find("Error String   : " + kept + "\r\n"), std::string::npos);
}

TEST_F(CErrHandlerTest, ShowsTheErrorOnlyWhenAsked) {
    CErrHandler& errors = make();
    errors.Push("proc");
    errors.HandleError({-5, 7, "Overflow"});
    errors.setDisplayMsgOnError(true);
    errors.setCurrentOperation("saving");
    boxes.expectShow("The following error has occurred in procedure: \nproc on line <unknown>\n"
                     "Error (-5) OverflowCurrent Operation: saving");
    errors.HandleError({-5, 0, "Overflow"});
    errors.Pop();
}

TEST_F(CErrHandlerTest, NamesPastTheLimitAreToldAndPopsStillBalance) {
    const std::pair<std::int16_t, int> cases[] = {{100, 100}, {0, 0}, {-1, 0}, {32767, 101}};
    for (const auto& [limit, kept] : cases) {
        CErrHandler& errors = make();
        errors.setMaxProcStackItems(limit);
        for (int i = 1; i <= kept + 2; ++i) {
            if (i > kept) {
                boxes.expectShow(kOverflow);
            }
            errors.Push("p" + std::to_string(i));
        }
        errors.HandleError({});
        EXPECT_EQ(errors.currentProcedure(), "");
        errors.Pop();
        errors.Pop();
        errors.HandleError({});
        EXPECT_EQ(errors.currentProcedure(), kept == 0 ? "" : "p" + std::to_string(kept));
        for (int i = 0; i < kept; ++i) {
            errors.Pop();
        }
        boxes.expectShow("Non Fatal Error:\nError Stack Underflow.");
        errors.Pop();
        EXPECT_EQ(errors.stackPointer(), 0);
        handler.reset();
    }
}

TEST_F(CErrHandlerTest, EventsComeAroundTheReportAndMayCancelIt) {
    CErrHandler& errors = make();
    errors.setDestination("/app/e.txt");
    std::string order;
    bool refuse = true;
    errors.BeforeHandlerCalled = [&](bool& cancel) {
        order += disk.exists("/app/e.txt") ? "B" : "b";
        cancel = refuse;
    };
    errors.AfterHandlerCalled = [&] { order += disk.exists("/app/e.txt") ? "A" : "a"; };
    errors.HandleError({1, 1, "one"});
    refuse = false;
    errors.HandleError({2, 2, "two"});
    EXPECT_EQ(order, "babA");
}

TEST_F(CErrHandlerTest, TracesEveryNameFromTheMomentItIsOn) {
    disk.put("/app/trace.log", "older");
    CErrHandler& errors = make();
    errors.Push("before");
    EXPECT_EQ(disk.text("/app/trace.log"), "older");
    errors.setTraceExecution(true);
    errors.setMaxProcStackItems(1);
    boxes.expectShow(kOverflow);
    errors.Push("not kept");
    EXPECT_EQ(disk.text("/app/trace.log"), "not kept\r\n");
    errors.Pop();
    errors.setMaxProcStackItems(9);
    files.failKind(FileStep::Write);
    errors.Push("on a full disk");
    end(2, "on a full disk");
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
    boxes.expectShow("Invalid object type: Nothing");
    errors.setDestination(static_cast<ErrorReportSink*>(nullptr));
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

    errors.setDestination("e.txt");
    files.fillAfter(20);
    errors.HandleError({});
    EXPECT_FALSE(disk.exists("/app/e.txt"));
}

} // namespace
} // namespace drx9
