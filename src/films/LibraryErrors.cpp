#include "films/LibraryErrors.h"

namespace drx9 {

LibraryErrors::LibraryErrors(CErrHandler& handler, jet::DBEngine& engine, const Paths& paths,
                             const std::string& DBFileName)
    : handler_(handler)
    , file_(handler.Destination()) {
    handler_.BeforeHandlerCalled = [this, &engine, &paths, &DBFileName](bool& /*cancel*/) {
        if (!toFile_ && table_.open(engine, paths.resolve(DBFileName)).empty()) {
            handler_.setDestination(static_cast<ErrorReportSink*>(this));
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

std::string LibraryErrors::write(const ErrorReport& report) {
    if (!statements_.run([&] { (void)table_.write(report); })) {
        reportToFile();
    }
    return {};
}

/// The error once more, without its box, which comes behind the report in hand.
void LibraryErrors::reportToFile() {
    const bool shows = handler_.DisplayMsgOnError();
    toFile_ = true;
    handler_.setDestination(file_);
    handler_.setDisplayMsgOnError(false);
    handler_.HandleError(CurrentError(handler_.lastError()));
    handler_.setDisplayMsgOnError(shows);
    toFile_ = false;
}

} // namespace drx9
