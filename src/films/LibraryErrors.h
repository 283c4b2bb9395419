#pragma once

#include "errors/CErrHandler.h"
#include "films/ErrorsTable.h"
#include "films/JetHeaders.h"
#include "util/Paths.h"

#include <string>

namespace drx9 {

/// Sends the handler's reports into the table "Errors" of the library in use, where it has one and can be
/// written; otherwise they go where they went before, the text file. Looks anew at each error, and holds the
/// library open for that report only. Uses the handler's two events.
class LibraryErrors {
public:
    /// All of them outlive this.
    LibraryErrors(CErrHandler& handler, jet::DBEngine& engine, const Paths& paths,
                  const std::string& DBFileName);
    LibraryErrors(const LibraryErrors&) = delete;
    LibraryErrors& operator=(const LibraryErrors&) = delete;
    ~LibraryErrors();

private:
    CErrHandler& handler_;
    const CErrHandler::ReportDestination file_;
    ErrorsTable table_{"Errors"};
};

} // namespace drx9
