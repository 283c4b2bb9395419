#pragma once

#include "errors/ErrorReport.h"
#include "films/JetHeaders.h"
#include "films/Statements.h"

#include <memory>
#include <string>

namespace drx9 {

/// Error reports into a table of an Access file, a row each, with the columns ErrorDate, ErrorString,
/// ErrorNumber, ErrorLine, ErrorProc, CallStack and AdditionalInfo. Columns that the table lacks, and values
/// that a column cannot hold, are left out; a text is cut to what its column takes. Until the table is open
/// reports are lost, and the handler's message says so.
class ErrorsTable : public ErrorReportSink {
public:
    explicit ErrorsTable(std::string table)
        : table_(std::move(table)) {}

    /// Opens the table in the database of that absolute path, to be written. A table without the column
    /// ErrorString is another program's. An empty text, or why it could not be opened, for a message box.
    std::string open(jet::DBEngine& engine, const std::string& path);
    void close();

    std::string write(const ErrorReport& report) override;
    /// Deletes every row, one after the other. Throws jet::JetError at the first that cannot be deleted.
    void clear() override;

private:
    void set(const jet::Field& column, const ErrorReport& report);

    std::string table_;
    Statements statements_;
    std::unique_ptr<jet::Database> database_;
    std::unique_ptr<jet::Recordset> records_;
};

} // namespace drx9
