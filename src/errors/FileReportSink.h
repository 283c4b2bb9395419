#pragma once

#include "errors/ErrorReport.h"
#include "platform/FilePort.h"
#include "util/NumberLocale.h"

namespace drx9 {

/// Appends reports to a text file (UTF-8, CR LF). A report that cannot be written is lost and nothing of it
/// is left.
class FileReportSink : public ErrorReportSink {
public:
    FileReportSink(FilePort& files, const NumberLocale& locale, std::string path)
        : files_(files)
        , locale_(locale)
        , path_(std::move(path)) {}

    std::string write(const ErrorReport& report) override;
    /// Removes the file.
    void clear() override;

private:
    FilePort& files_;
    const NumberLocale& locale_;
    std::string path_;
};

} // namespace drx9
