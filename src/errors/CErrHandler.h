#pragma once

#include "errors/ErrorReport.h"
#include "platform/Clock.h"
#include "platform/FilePort.h"
#include "platform/MessageBoxes.h"
#include "util/NumberLocale.h"
#include "util/Paths.h"

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace drx9 {

/// What the handler works with. The references outlive it.
struct CErrHandlerParts {
    FilePort& files;
    MessageBoxes& boxes;
    const Clock& clock;
    const NumberLocale& locale;
    AppInfo app;
    Paths paths;
};

/// Reports errors with the names of the procedures that led to them. Procedures that want to be named
/// register on entry (Push) and on every way out (Pop). No operation throws. Those that may show a message
/// box pump events while it is open: HandleError, and Push, Pop and the destructor where pushes and pops do
/// not balance.
class CErrHandler {
public:
    /// Slots of the procedure stack; slot 0 stays empty, for the pointer is raised before a name is stored.
    static constexpr std::int16_t kStackSlots = 102;
    static constexpr const char* kDefaultDestination = "C:\\ERRORS.TXT";
    static constexpr const char* kTraceFile = "trace.log";

    /// A file's name, or a sink such as an errors table (not owned).
    using ReportDestination = std::variant<std::string, ErrorReportSink*>;

    explicit CErrHandler(CErrHandlerParts parts);
    /// Tells of a procedure that never called Pop.
    ~CErrHandler();
    CErrHandler(const CErrHandler&) = delete;
    CErrHandler& operator=(const CErrHandler&) = delete;

    /// Registers a procedure. A name beyond MaxProcStackItems is told and not kept, but counts, so that pops
    /// balance.
    void Push(std::string_view procedure) noexcept;
    void Pop() noexcept;
    /// Keeps the error, reports it and shows it if DisplayMsgOnError is on.
    void HandleError(const CurrentError& error) noexcept;
    /// Empties the destination; a file is removed.
    void ClearLog() noexcept;

    // The properties, each to be read and set: the class offers all of them, whether or not the program does
    // more than keep the defaults.

    [[nodiscard]] const ReportDestination& Destination() const { return destination_; }
    /// A relative name lies in the data folder; so does the bare name of a path with a drive letter where the
    /// system has no drives. A null sink is refused with a message.
    void setDestination(ReportDestination destination) noexcept;
    [[nodiscard]] bool DisplayMsgOnError() const { return displayMsgOnError_; }
    void setDisplayMsgOnError(bool on) { displayMsgOnError_ = on; }
    [[nodiscard]] bool IncludeExpandedInfo() const { return includeExpandedInfo_; }
    void setIncludeExpandedInfo(bool on) { includeExpandedInfo_ = on; }
    [[nodiscard]] std::int16_t MaxProcStackItems() const { return maxProcStackItems_; }
    /// Names kept at most; never more than the slots hold, whatever is set.
    void setMaxProcStackItems(std::int16_t count) { maxProcStackItems_ = count; }
    [[nodiscard]] bool TraceExecution() const { return traceExecution_; }
    /// On starts a new trace file in the data folder, off closes it. A file that cannot be opened stays
    /// silent.
    void setTraceExecution(bool on) noexcept;
    /// What the program is about, for reports and messages; empty when it is not told.
    void setCurrentOperation(std::string text) { currentOperation_ = std::move(text); }

    [[nodiscard]] const CurrentError& lastError() const { return lastError_; }
    /// Top of the stack when the last error was handled.
    [[nodiscard]] const std::string& currentProcedure() const { return currentProcedure_; }
    [[nodiscard]] std::int16_t stackPointer() const { return pointer_; }

    /// Called before an error is reported; setting `cancel` leaves it unreported and unshown.
    std::function<void(bool& cancel)> BeforeHandlerCalled;
    /// Called after each handled error, a cancelled one too.
    std::function<void()> AfterHandlerCalled;

private:
    [[nodiscard]] std::string topOfStack() const;
    [[nodiscard]] std::vector<std::string> callStack() const;
    [[nodiscard]] std::vector<std::string> additionalInfo() const;
    [[nodiscard]] ErrorReport makeReport() const;
    [[nodiscard]] std::string messageText() const;
    void report();
    void withSink(const std::function<void(ErrorReportSink&)>& action);
    void information(const std::string& text);

    CErrHandlerParts parts_;
    std::array<std::string, kStackSlots> stack_;
    std::int16_t pointer_ = 0;
    std::int16_t maxProcStackItems_ = 100;
    ReportDestination destination_ = kDefaultDestination;
    bool displayMsgOnError_ = false;
    bool includeExpandedInfo_ = false;
    bool traceExecution_ = false;
    std::unique_ptr<OutputFile> trace_;
    CurrentError lastError_;
    std::string currentProcedure_;
    std::string currentOperation_;
};

} // namespace drx9
