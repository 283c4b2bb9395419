#include "errors/FileReportSink.h"

#include "util/DisplayFormats.h"
#include "util/Utf.h"

namespace drx9 {
namespace {

constexpr const char* kLineEnd = "\r\n";
constexpr std::size_t kLongestErrorString = 255; // characters

/// The first characters of UTF-8 text, none of them cut.
std::string firstCharacters(const std::string& text, std::size_t count) {
    std::size_t end = 0;
    while (end < text.size() && (count > 0 || continuesCharacter(text[end]))) {
        count -= continuesCharacter(text[end]) ? 0 : 1;
        ++end;
    }
    return text.substr(0, end);
}

std::string reportText(const ErrorReport& report, const NumberLocale& locale) {
    std::string text;
    const auto line = [&text](const std::string& content) { text += content + kLineEnd; };
    line(report.title + " Application Error Information");
    line("====================================");
    line("Current Time   : " + shortDateText(report.ErrorDate, locale) + " " +
         timeOfDayText(report.ErrorDate));
    line("Error String   : " + firstCharacters(report.ErrorString, kLongestErrorString));
    line("Error Number   : " + std::to_string(report.ErrorNumber));
    line("Error Line     : " + std::to_string(report.ErrorLine));
    line("Error Procedure: " + report.ErrorProc);
    line("");
    line("Procedure Stack");
    line("---------------");
    for (const std::string& call : report.CallStack) {
        line(call);
    }
    line("Current Operation: " + report.currentOperation);
    for (const std::string& info : report.AdditionalInfo) {
        line(info);
    }
    return text;
}

} // namespace

std::string FileReportSink::write(const ErrorReport& report) {
    files_.append(path_, reportText(report, locale_));
    return {};
}

void FileReportSink::clear() {
    files_.remove(files_.resolveLinks(path_));
}

} // namespace drx9
