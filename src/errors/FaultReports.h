#pragma once

#include "errors/CErrHandler.h"
#include "platform/Clock.h"

#include <exception>
#include <map>
#include <string>

namespace drx9 {

/// Reports what a tick, a queued action or a window's handler throws. The same fault, which may come with
/// every tick, is reported once a minute, with the number of times that it was left out since.
class FaultReports {
public:
    FaultReports(CErrHandler& handler, const Clock& clock)
        : handler_(handler)
        , clock_(clock) {}

    void report(const std::exception& error) noexcept;

private:
    struct Seen {
        double reportedAt = 0; ///< monotonic
        int leftOut = 0;
    };

    CErrHandler& handler_;
    const Clock& clock_;
    std::map<std::string, Seen> seen_; ///< by description
};

} // namespace drx9
