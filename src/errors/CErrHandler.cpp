#include "errors/CErrHandler.h"

#include "errors/FileReportSink.h"
#include "errors/Texts.h"
#include "util/Text.h"

#include <limits>
#include <utility>

namespace drx9 {
namespace {

/// Reporting must never be the cause of a second error.
template<typename Action>
void quietly(Action action) noexcept {
    try {
        action();
    } catch (...) { // whatever went wrong, there is nobody left to tell
    }
}

std::string twoDigits(int value) {
    return (value < 10 ? "0" : "") + std::to_string(value);
}

std::string filePath(const std::string& name, const Paths& paths) {
#ifndef _WIN32
    if (name.size() > 1 && name[1] == ':') {
        return paths.resolve(bareName(name));
    }
#endif
    return paths.resolve(name);
}

} // namespace

CErrHandler::CErrHandler(CErrHandlerParts parts)
    : parts_(std::move(parts)) {}

CErrHandler::~CErrHandler() {
    setTraceExecution(false);
    if (pointer_ != 0) {
        quietly([&] {
            information(filled(errorText::kStackAtEnd, {std::to_string(pointer_), topOfStack()}));
        });
    }
}

void CErrHandler::Push(std::string_view procedure) noexcept {
    quietly([&] {
        if (pointer_ < std::numeric_limits<std::int16_t>::max()) {
            ++pointer_;
        }
        if (pointer_ <= maxProcStackItems_ && pointer_ < kStackSlots) {
            stack_[static_cast<std::size_t>(pointer_)] = procedure;
        } else {
            information(errorText::kOverflow);
        }
    });
    quietly([&] {
        if (trace_) {
            trace_->write(std::string(procedure) + "\r\n");
        }
    });
}

void CErrHandler::Pop() noexcept {
    if (pointer_ < kStackSlots) {
        stack_[static_cast<std::size_t>(pointer_)].clear();
    }
    if (--pointer_ < 0) {
        pointer_ = 0;
        quietly([&] { information(errorText::kUnderflow); });
    }
}

void CErrHandler::HandleError(const CurrentError& error) noexcept {
    quietly([&] {
        lastError_ = error;
        currentProcedure_ = topOfStack();
    });
    bool cancel = false;
    quietly([&] {
        if (BeforeHandlerCalled) {
            BeforeHandlerCalled(cancel);
        }
    });
    if (!cancel) {
        quietly([&] { report(); });
        quietly([&] {
            if (displayMsgOnError_) {
                parts_.boxes.show(messageText(), parts_.app.title, MessageIcon::Exclamation);
            }
        });
    }
    quietly([&] {
        if (AfterHandlerCalled) {
            AfterHandlerCalled();
        }
    });
}

void CErrHandler::ClearLog() noexcept {
    quietly([&] { withSink([](ErrorReportSink& sink) { sink.clear(); }); });
}

void CErrHandler::setDestination(ReportDestination destination) noexcept {
    quietly([&] {
        const auto* sink = std::get_if<ErrorReportSink*>(&destination);
        if (sink && !*sink) {
            parts_.boxes.show(errorText::kNoSink, parts_.app.title, MessageIcon::Exclamation);
            return;
        }
        destination_ = std::move(destination);
    });
}

void CErrHandler::setTraceExecution(bool on) noexcept {
    traceExecution_ = on;
    quietly([&] {
        if (trace_) {
            trace_->close();
            trace_.reset();
        }
        if (on) {
            const std::string path = parts_.paths.resolve(kTraceFile);
            parts_.files.remove(path);
            FileStatus status;
            trace_ = parts_.files.create(path, {}, status);
        }
    });
}

std::string CErrHandler::topOfStack() const {
    return pointer_ < kStackSlots ? stack_[static_cast<std::size_t>(pointer_)] : std::string();
}

std::vector<std::string> CErrHandler::callStack() const {
    std::vector<std::string> lines;
    for (std::size_t i = 0; i < stack_.size(); ++i) {
        if (!stack_[i].empty()) {
            lines.push_back(twoDigits(static_cast<int>(i)) + std::string(2 * i, ' ') + stack_[i]);
        }
    }
    return lines;
}

std::vector<std::string> CErrHandler::additionalInfo() const {
    const AppInfo& app = parts_.app;
    return {"",
            "Additional Information",
            "----------------------",
            "Current Directory: " + parts_.files.currentFolder(),
            "App Title: " + app.title,
            "App CompanyName: " + app.companyName,
            "App Major: " + std::to_string(app.major),
            "App Minor: " + std::to_string(app.minor),
            "App Revision: " + std::to_string(app.revision),
            "App Path: " + parts_.paths.programFolder,
            "App ProductName: " + app.productName};
}

ErrorReport CErrHandler::makeReport() const {
    return {parts_.app.title,
            parts_.clock.local(),
            lastError_.description,
            lastError_.number,
            lastError_.line,
            currentProcedure_,
            callStack(),
            currentOperation_,
            includeExpandedInfo_ ? additionalInfo() : std::vector<std::string>()};
}

std::string CErrHandler::messageText() const {
    const std::string line = lastError_.line == 0 ? errorText::kUnknownLine : std::to_string(lastError_.line);
    std::string text =
        filled(errorText::kOccurred,
               {currentProcedure_, line, std::to_string(lastError_.number), lastError_.description});
    if (!currentOperation_.empty()) {
        // Kept: no line break before it.
        text += filled(errorText::kOperation, {currentOperation_});
    }
    return text;
}

void CErrHandler::report() {
    std::string refusal;
    withSink([&](ErrorReportSink& sink) { refusal = sink.write(makeReport()); });
    if (!refusal.empty()) {
        parts_.boxes.show(refusal, parts_.app.title, MessageIcon::Exclamation);
    }
}

void CErrHandler::withSink(const std::function<void(ErrorReportSink&)>& action) {
    if (auto* const* sink = std::get_if<ErrorReportSink*>(&destination_)) {
        action(**sink);
        return;
    }
    FileReportSink file(parts_.files, parts_.locale,
                        filePath(std::get<std::string>(destination_), parts_.paths));
    action(file);
}

void CErrHandler::information(const std::string& text) {
    parts_.boxes.show(filled(errorText::kNonFatal, {text}), parts_.app.title, MessageIcon::Information);
}

} // namespace drx9
