#pragma once

#include "errors/CErrHandler.h"
#include "films/ErrorsTable.h"
#include "films/JetHeaders.h"
#include "util/Paths.h"

#include <string>

namespace drx9 {

/// Sends the handler's reports into the table "Errors" of the library in use, where it has one and can be
/// written; otherwise, and where the row cannot be saved, they go where they went before, the text file.
/// Looks again at each error, and holds the library open for that report only. Uses the handler's two events.
class LibraryErrors : private ErrorReportSink {
public:
    /// All of them outlive this.
    LibraryErrors(CErrHandler& handler, jet::DBEngine& engine, const Paths& paths,
                  const std::string& DBFileName);
    LibraryErrors(const LibraryErrors&) = delete;
    LibraryErrors& operator=(const LibraryErrors&) = delete;
    ~LibraryErrors() override;

private:
    std::string write(const ErrorReport& report) override;
    void clear() override { table_.clear(); }
    void reportToFile();

    CErrHandler& handler_;
    const CErrHandler::ReportDestination file_;
    ErrorsTable table_{"Errors"};
    Statements statements_;
    bool toFile_ = false;
};

} // namespace drx9
