#include "monitor/RequestReport.h"

#include "link/Link.h"

#include <utility>

namespace drx9 {

namespace {
constexpr double kNoticeStands = 10; ///< s
} // namespace

void RequestReport::ended(const char* request, std::uint16_t status, bool inStep) {
    if (std::exchange(fresh_, false)) {
        clear();
    }
    if (comm::isSilence(status)) {
        add(std::string(request) + ": no reply", " Press again if needed.");
    } else if (status != comm::kOk) {
        add(std::string(request) + ": " + commStatusText(status), " Press again if needed.");
    } else if (!inStep) {
        add(std::string(request) + ": answers out of step", " Press again if needed.");
    }
}

void RequestReport::notSent(const char* request) {
    if (std::exchange(fresh_, false)) {
        clear();
    }
    add(std::string(request) + ": not sent", "");
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
    const bool stands = !text_.empty() && clock_.monotonic() < saidAt_ + kNoticeStands;
    return stands ? text_ + "." + advice_ : std::string();
}

} // namespace drx9
