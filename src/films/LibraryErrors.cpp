#include "films/LibraryErrors.h"

namespace drx9 {

LibraryErrors::LibraryErrors(CErrHandler& handler, jet::DBEngine& engine, const Paths& paths,
                             const std::string& DBFileName)
    : handler_(handler)
    , file_(handler.Destination()) {
    handler_.BeforeHandlerCalled = [this, &engine, &paths, &DBFileName](bool& /*cancel*/) {
        if (table_.open(engine, paths.resolve(DBFileName)).empty()) {
            handler_.setDestination(&table_);
        }
    };
    handler_.AfterHandlerCalled = [this] {
        handler_.setDestination(file_);
        table_.close();
    };
}

LibraryErrors::~LibraryErrors() {
    handler_.BeforeHandlerCalled = {};
    handler_.AfterHandlerCalled = {};
}

} // namespace drx9
