#include "monitor/RequestReport.h"

#include "link/Link.h"
#include "monitor/Texts.h"
#include "util/Text.h"

#include <utility>

namespace drx9 {

using namespace monitorText;

namespace {
constexpr double kNoticeSeconds = 10;
} // namespace

void RequestReport::ended(const char* request, std::uint16_t status, bool inStep) {
    if (std::exchange(fresh_, false)) {
        clear();
    }
    if (comm::isSilence(status)) {
        add(filled(kRequestNoReply, {request}), kPressAgain);
    } else if (status != comm::kOk) {
        add(std::string(request) + ": " + commStatusText(status), kPressAgain);
    } else if (!inStep) {
        add(filled(kRequestOutOfStep, {request}), kPressAgain);
    }
}

void RequestReport::notSent(const char* request) {
    if (std::exchange(fresh_, false)) {
        clear();
    }
    add(filled(kRequestNotSent, {request}), "");
}

void RequestReport::add(const std::string& text, const char* advice) {
    text_ += (text_.empty() ? "" : "; ") + text;
    advice_ = advice;
    saidAt_ = clock_.monotonic();
}

void RequestReport::clear() {
    text_.clear();
    advice_.clear();
}

std::string RequestReport::notice() const {
    const bool shown = !text_.empty() && clock_.monotonic() < saidAt_ + kNoticeSeconds;
    return shown ? text_ + "." + advice_ : std::string();
}

} // namespace drx9
