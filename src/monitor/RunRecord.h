#pragma once

#include "link/Records.h"
#include "monitor/ChartFeed.h"
#include "monitor/DataLog.h"
#include "monitor/PointStore.h"
#include "platform/Clock.h"
#include "platform/Desktop.h"
#include "util/LocalTime.h"

#include <string_view>

namespace drx9 {

/// What is kept of a run: its points, the charts that they feed, its lines in the log. Holds the machine
/// awake while a run is in progress.
class RunRecord {
public:
    struct Parts {
        const DataLogSettings& settings; ///< read again each time: the operator may change them in a run
        DataLog& log;
        GraphSet graphs;
        SleepInhibitor& sleep;
        const Clock& clock;
    };

    explicit RunRecord(const Parts& parts);

    /// First-time set-up of the charts.
    void initCharts() { charts_.Init(); }
    /// Points and charts start over at time zero.
    void clear();

    /// A run begins that reads this many sensors; the log follows with startLog().
    void begin(int sensors);
    void startLog(std::string_view filmName);
    void end(std::string_view filmName);

    /// Keeps a reading of this many sensors. In a run it goes to charts and log, outside of one it is
    /// overwritten by the next.
    void store(const Readings& readings, int sensors, bool running);
    /// A reading that should have been kept was not: the next one has a gap before it.
    void noteGap() { gapPending_ = true; }
    [[nodiscard]] bool gapPending() const { return gapPending_; }

    [[nodiscard]] const LocalTime& startTime() const { return startTime_; } ///< of the last run
    [[nodiscard]] int sensors() const { return sensors_; }                  ///< that the last run began with

private:
    [[nodiscard]] bool logs() const { return parts_.settings.Type != LogMode::None; }

    Parts parts_;
    PointStore points_;
    ChartFeed charts_;
    LocalTime startTime_;
    int sensors_ = 0;
    bool gapPending_ = false;
};

} // namespace drx9
