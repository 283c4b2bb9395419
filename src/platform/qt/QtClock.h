#pragma once

#include "platform/Clock.h"

#include <cstdint>

namespace drx9 {

/// The system's clocks.
class QtClock : public Clock {
public:
    [[nodiscard]] double monotonic() const override;
    /// Asks the time zone once a minute (zones change on whole minutes): a log line must not pay for it.
    [[nodiscard]] LocalTime local() const override;

private:
    mutable std::int64_t minute_ = -1; ///< minutes since the epoch that minuteStart_ belongs to
    mutable LocalTime minuteStart_;
};

} // namespace drx9
