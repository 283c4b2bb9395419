#include "errors/FaultReports.h"

#include "errors/Texts.h"
#include "util/Text.h"

#include <utility>

namespace drx9 {

namespace {
constexpr double kOncePer = 60; // s
constexpr std::size_t kMostKept = 100;
} // namespace

void FaultReports::report(const std::exception& error) noexcept {
    try {
        std::string description = error.what();
        if (seen_.size() >= kMostKept && !seen_.contains(description)) {
            seen_.clear();
        }
        const double now = clock_.monotonic();
        const auto [entry, isNew] = seen_.try_emplace(description);
        Seen& seen = entry->second;
        if (!isNew && now - seen.reportedAt < kOncePer) {
            ++seen.leftOut;
            return;
        }
        seen.reportedAt = now;
        if (const int leftOut = std::exchange(seen.leftOut, 0); leftOut > 0) {
            description += filled(errorText::kTimesBefore, {std::to_string(leftOut)});
        }
        handler_.HandleError({.number = 0, .line = 0, .description = std::move(description)});
    } catch (const std::exception&) {
        return; // out of memory: a report is not worth the run
    }
}

} // namespace drx9
