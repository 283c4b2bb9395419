#include "platform/qt/QtClock.h"

#include <QDateTime>

#include <chrono>
#include <ctime>

namespace drx9 {

double QtClock::monotonic() const {
#ifdef __linux__
    // Linux stops its steady clock while the machine sleeps; a run's time goes on.
    timespec now{};
    clock_gettime(CLOCK_BOOTTIME, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
#else
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
#endif
}

LocalTime QtClock::local() const {
    constexpr std::int64_t kMinute = 60000;
    const std::int64_t now = QDateTime::currentMSecsSinceEpoch();
    if (now / kMinute != minute_) {
        minute_ = now / kMinute;
        const QDateTime start = QDateTime::fromMSecsSinceEpoch(minute_ * kMinute);
        const QDate date = start.date();
        minuteStart_ = {
            date.year(), date.month(), date.day(), start.time().hour(), start.time().minute(), 0, 0};
    }
    LocalTime time = minuteStart_;
    time.second = static_cast<int>(now % kMinute / 1000);
    time.millisecond = static_cast<int>(now % 1000);
    return time;
}

} // namespace drx9
