// The acquisition cycle: the tick, the reading, the charts, and a lost link.
#include "monitor/Monitor.h"

#include "util/Text.h"

#include <cmath>

namespace drx9 {

namespace {
/// Least time between two attempts to open a lost link again: seven ticks, so that polling resumes within 2 s
/// of the instrument's return, the exchanges of the attempt included. Half a tick off, lest timer jitter skip
/// one.
constexpr double kReconnectInterval = 7 * 0.25 - 0.125;
/// How long (s) the status bar goes on saying which request's exchange failed.
constexpr double kFailureStands = 10;
/// Ticks in a row that found the last exchange refused before the link is opened anew.
constexpr int kRefusalsBeforeReconnect = 4;
/// A pause longer than this between two readings is no usual interval (a dialog, a lost link).
constexpr double kLongestUsualInterval = 5.0;

/// The instrument answered, but refused or answered garbled: it lives.
bool livingAnswer(std::uint16_t status) {
    return status >= comm::kNotReady && status <= comm::kChecksum;
}
} // namespace

void Monitor::tmrUpdate_Timer() {
    if (parts_.actions.busy() || parts_.actions.waiting() || runMode_ == kExiting) {
        return;
    }
    const ActionQueue::Scope scope(parts_.actions);
    if (!parts_.link.CommOK()) {
        if (wasOnLine_ && (runMode_ == kIdle || runMode_ == kRunning)) {
            reconnect();
        }
        changed();
        return;
    }
    wasOnLine_ = true;
    failure_.clear();
    if (readyToPoll()) {
        ReadDRX();
        if (!parts_.actions.waiting() && linkFine()) {
            takeRequests();
        }
        publishExchange();
    }
    changed();
}

bool Monitor::readyToPoll() {
    const std::uint16_t status = parts_.link.CommStatus();
    if (status == comm::kOk) {
        refusals_ = 0;
        return true;
    }
    if (livingAnswer(status) && ++refusals_ < kRefusalsBeforeReconnect) {
        parts_.link.setCommStatus(comm::kOk);
        return true;
    }
    if (status != comm::kBusy && runMode_ != kStarting) {
        reconnect(); // what it found is polled from the next tick on
    }
    return false;
}

bool Monitor::linkFine() {
    if (livingAnswer(parts_.link.CommStatus())) {
        parts_.link.setCommStatus(comm::kOk);
    }
    return parts_.link.CommStatus() == comm::kOk;
}

void Monitor::reconnect() {
    const double now = parts_.clock.monotonic();
    if (lastAttempt_ >= 0 && now - lastAttempt_ < kReconnectInterval) {
        return;
    }
    lastAttempt_ = now;
    if (!reconnecting_) {
        reconnecting_ = true;
        gapPending_ = true;
        versionAtLoss_ = parts_.link.CommVersion();
        changed();
    }
    if (!parts_.discovery.Comm_Open(Discovery::Messages::NonBlocking)) {
        lastExchange_ = parts_.discovery.failure();
        return;
    }
    reconnecting_ = false;
    refusals_ = 0;
    lastExchange_ = "OK";
    if (runMode_ == kIdle) {
        setRunMode(kIdle);
    } else if (parts_.link.CommVersion() != versionAtLoss_) {
        notice_ = "Another instrument answers now: " + utf8FromAnsi(trimmed(parts_.link.CommVersion()));
    }
}

void Monitor::ReadDRX() {
    const auto result = parts_.commands.Comm_GetData(readings_, [this] { return parts_.actions.waiting(); });
    noteReading(result);
    if (result != Commands::ReadResult::Done) {
        return;
    }
    points_.store(readings_, parts_.link.sensorCount(), gapPending_);
    gapPending_ = false;
    refreshReadouts();
    if (runMode_ != kRunning) {
        return;
    }
    UpdateGraph();
    const DataLogSettings& log = parts_.settings.log;
    const double elapsed = points_.row(points_.currentPoint()).elapsed;
    if (log.Type != kLogNone && log.Start <= elapsed && elapsed <= log.End && log.Start != log.End) {
        parts_.log.UpdateDataLog(readings_, elapsed, parts_.link.sensorCount());
    }
    points_.advance();
}

void Monitor::noteReading(Commands::ReadResult result) {
    failure_ = parts_.commands.readFailure();
    if (result == Commands::ReadResult::LinkDead || result == Commands::ReadResult::OutOfStep) {
        gapPending_ = true;
    }
    if (result != Commands::ReadResult::Done) {
        return;
    }
    const double now = parts_.clock.monotonic();
    const double interval = now - lastGoodReading_;
    if (lastGoodReading_ >= 0 && interval < kLongestUsualInterval) {
        usualInterval_ += (interval - usualInterval_) / 4;
    }
    lastGoodReading_ = now;
    lastGoodTime_ = parts_.clock.local();
}

void Monitor::noteExchange(const char* command) {
    // The exchange's own outcome: the status may be that of a command that was kept for after it.
    const std::string text = commStatusText(parts_.link.outcome());
    if (!text.empty()) {
        failure_ = std::string(command) + ": " + text;
    }
}

void Monitor::keepRequestFailure(const char* command) {
    noteExchange(command);
    if (parts_.link.outcome() != comm::kOk) {
        requestFailure_ = failure_;
        requestFailureUntil_ = parts_.clock.monotonic() + kFailureStands;
    }
}

void Monitor::publishExchange() {
    const bool stands = parts_.clock.monotonic() < requestFailureUntil_;
    lastExchange_ = stands ? requestFailure_ : failure_.empty() ? "OK" : failure_;
}

void Monitor::refreshReadouts() {
    parts_.readouts.refresh(runMode_, readings_, currentFilm(), parts_.link.sensorCount());
    changed();
}

void Monitor::UpdateGraph() {
    for (Graph* graph : parts_.graphs) { // follow what the operator changed on the chart itself
        graph->setYMax(graph->shownYMax());
        graph->setYMin(graph->shownYMin());
    }
    const std::int16_t current = points_.currentPoint();
    const std::int16_t plotted = points_.lastPlotted();
    if (current > plotted) {
        PlotData(current - plotted, plotted);
    } else if (current < plotted) {
        PlotData(PointStore::kRows + 1 - plotted, plotted);
        PlotData(current, PointStore::kRestartPoint);
    }
    points_.setLastPlotted(current);
}

void Monitor::InitGraph() {
    firstPlot_ = true;
    lastAppended_ = -1;
}

void Monitor::PlotData(int count, std::int16_t first) {
    if (firstPlot_) {
        firstPlot_ = false;
        for (Graph* graph : parts_.graphs) {
            for (int series = 1; series <= graph->seriesCount(); ++series) {
                graph->setLastPoint(series, 0);
            }
        }
    }
    for (int i = 0; i < count; ++i) {
        plotPoint(points_.row(static_cast<std::int16_t>(first + i)));
    }
    for (Graph* graph : parts_.graphs) {
        GraphRollover(*graph, lastAppended_);
        graph->redraw();
    }
}

void Monitor::plotPoint(const PointStore::Row& row) {
    if (row.elapsed <= lastAppended_) {
        return; // the row at the store's wrap is given twice
    }
    lastAppended_ = row.elapsed;
    if (row.gapBefore) {
        for (Graph* graph : parts_.graphs) {
            graph->appendGap();
        }
    }
    parts_.graphs[0]->append(1, row.elapsed, row.averageRate);
    parts_.graphs[2]->append(1, row.elapsed, row.averageThickness);
    const int sensors = parts_.link.sensorCount();
    for (int s = 1; s <= sensors; ++s) {
        parts_.graphs[1]->append(s, row.elapsed, row.rate[static_cast<std::size_t>(s - 1)]);
        parts_.graphs[3]->append(s, row.elapsed, row.thickness[static_cast<std::size_t>(s - 1)]);
    }
}

void Monitor::GraphRollover(Graph& graph, double newest) {
    const double width = graph.Xwide();
    const double beyond = newest - (graph.XMin() + width);
    if (width <= 0 || beyond <= 0) {
        return;
    }
    const double quarter = width / 4;
    graph.setXMin(static_cast<float>(graph.XMin() + std::ceil(beyond / quarter) * quarter));
    graph.setXwide(graph.Xwide());
}

} // namespace drx9
