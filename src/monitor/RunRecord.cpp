#include "monitor/RunRecord.h"

#include "monitor/Texts.h"

#include <utility>

namespace drx9 {

RunRecord::RunRecord(const Parts& parts)
    : parts_(parts)
    , charts_(parts.graphs) {}

void RunRecord::clear() {
    points_.clear();
    charts_.restart();
}

void RunRecord::begin(int sensors) {
    sensors_ = sensors;
    startTime_ = parts_.clock.local();
    parts_.sleep.hold(monitorText::kKeepAwake);
}

void RunRecord::startLog(std::string_view filmName) {
    if (logs()) {
        parts_.log.InitDataLog();
        parts_.log.startBlock(filmName);
    }
}

void RunRecord::end(std::string_view filmName) {
    if (logs()) {
        parts_.log.endBlock(filmName);
    }
    parts_.log.runEnded();
    parts_.sleep.release();
}

void RunRecord::store(const Readings& readings, int sensors, bool running) {
    points_.store(readings, sensors, std::exchange(gapPending_, false));
    if (!running) {
        return;
    }
    charts_.UpdateGraph(points_, sensors);
    if (logs()) {
        parts_.log.UpdateDataLog(readings, points_.row(points_.currentPoint()).elapsed, sensors);
    }
    points_.advance();
}

} // namespace drx9
