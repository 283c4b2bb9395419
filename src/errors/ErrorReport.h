#pragma once

#include "util/LocalTime.h"
#include "util/ProgramName.h"

#include <cstdint>
#include <string>
#include <vector>

namespace drx9 {

/// What the program says of itself in reports.
struct AppInfo {
    std::string title = kProgramName;
    std::string companyName;
    std::string productName = kProgramName;
    int major = 0;
    int minor = 0;
    int revision = 0;
};

/// The error that is current in the procedure that caught it.
struct CurrentError {
    std::int32_t number = 0;
    std::int32_t line = 0; ///< 0: unknown
    std::string description;
};

/// One handled error as a sink writes it. The fields are named after the columns of an errors table.
struct ErrorReport {
    std::string title; ///< the application's
    LocalTime ErrorDate;
    std::string ErrorString; ///< whole description, UTF-8
    std::int32_t ErrorNumber = 0;
    std::int32_t ErrorLine = 0;
    std::string ErrorProc;
    std::vector<std::string> CallStack; ///< a line for each registered procedure, the outermost first
    std::string currentOperation;
    std::vector<std::string> AdditionalInfo; ///< lines with their heading; empty unless asked for
};

/// Where reports go. A sink may throw: the handler ignores it, as it ignores every failure to report.
class ErrorReportSink {
public:
    virtual ~ErrorReportSink() = default;
    /// Text for a message box where the operator must know why there is no report; usually empty.
    virtual std::string write(const ErrorReport& report) = 0;
    /// Removes every report.
    virtual void clear() = 0;
};

} // namespace drx9
