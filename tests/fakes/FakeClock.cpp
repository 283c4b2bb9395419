#include "fakes/FakeClock.h"

#include <chrono>
#include <cmath>

namespace drx9 {

namespace chr = std::chrono;

LocalTime FakeClock::local() const {
    const chr::year_month_day date{chr::year(local_.year), chr::month(static_cast<unsigned>(local_.month)),
                                   chr::day(static_cast<unsigned>(local_.day))};
    const auto passed = std::llround((secondsSinceMidnight(local_) + now_ - localSetAt_) * 1000);
    const auto whole = chr::floor<chr::days>(chr::milliseconds(passed));
    const auto rest = chr::hh_mm_ss(chr::milliseconds(passed) - whole);
    const chr::year_month_day today{chr::sys_days(date) + whole};
    LocalTime time;
    time.year = static_cast<int>(today.year());
    time.month = static_cast<int>(static_cast<unsigned>(today.month()));
    time.day = static_cast<int>(static_cast<unsigned>(today.day()));
    time.hour = static_cast<int>(rest.hours().count());
    time.minute = static_cast<int>(rest.minutes().count());
    time.second = static_cast<int>(rest.seconds().count());
    time.millisecond = static_cast<int>(rest.subseconds().count());
    return time;
}

void FakeClock::advanceTo(double time) {
    if (time > now_) {
        now_ = time;
    }
}

void FakeClock::setLocal(const LocalTime& time) {
    local_ = time;
    localSetAt_ = now_;
}

} // namespace drx9
