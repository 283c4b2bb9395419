#include "graphs/ChartGraph.h"

#include "graphs/ChartFile.h"
#include "graphs/Texts.h"
#include "util/Numbers.h"
#include "util/Paths.h"

#include <cmath>
#include <stdexcept>

namespace drx9 {

namespace {
constexpr std::size_t kExtension = 3;
constexpr double kTicksToSpacing = 10;

double spacingOf(double value) {
    return value == 0 || !std::isfinite(value) ? 1 : std::fabs(value);
}
} // namespace

ChartGraph::ChartGraph(ChartModel& model, GraphPorts ports)
    : model_(model)
    , ports_(std::move(ports)) {
    takeAxes();
}

void ChartGraph::InitChart() {
    if (placer_) {
        placer_(place_);
    }
    model_.dropOwnPoints();
    for (int series = 0; series < model_.seriesCount(); ++series) {
        model_.setCapacity(series, kCapacity);
        model_.setFirstPoint(series, 1);
        model_.setLastPoint(series, 0);
    }
    setXDiv(XDiv());
    setYDiv(YDiv());
    model_.setXAnnotation(2);
}

void ChartGraph::Init() {
    model_.beginBatch();
    fileName_ = joinPath(ports_.folder, bareName(design().fileName));
    static_cast<void>(Cfg_Load());
    InitChart();
    takeAxes();
    model_.followX();
    model_.endBatch();
    if (design().pumpsAfterInit && ports_.pump != nullptr) {
        ports_.pump->processPending();
    }
}

/// What the chart shows is what the object has from now on.
void ChartGraph::takeAxes() {
    const AxisLook& x = model_.look().x;
    xMin_ = static_cast<float>(x.minimum);
    xWide_ = static_cast<float>(x.maximum - x.minimum);
    yMin_ = model_.yMinimum();
    yMax_ = model_.yMaximum();
}

void ChartGraph::ReInit() {
    setXMin(0);
    setXwide(Xwide());
    model_.dropOwnPoints();
    model_.setLastPoint(0, 0);
    model_.followX();
}

void ChartGraph::setYMin(float value) {
    yMin_ = value;
    model_.setYMinimum(value);
}

void ChartGraph::setYMax(float value) {
    yMax_ = value;
    model_.setYMaximum(value);
}

void ChartGraph::setXMin(float value) {
    xMin_ = value;
    model_.setXMinimum(value);
}

void ChartGraph::setXwide(float value) {
    xWide_ = value;
    model_.setXMaximum(model_.look().x.minimum + value);
}

float ChartGraph::XDiv() const {
    return static_cast<float>(model_.look().x.gridSpacing);
}

void ChartGraph::setXDiv(float value) {
    const double spacing = spacingOf(value);
    model_.setXSpacing(spacing, spacing, spacing / kTicksToSpacing);
}

std::int16_t ChartGraph::YDiv() const {
    return toInt16(model_.look().y.gridSpacing);
}

void ChartGraph::setYDiv(std::int16_t value) {
    const double spacing = spacingOf(value);
    model_.setYSpacing(spacing, spacing, spacing / kTicksToSpacing);
}

bool ChartGraph::XGrid_Enable() const {
    return model_.look().x.gridPattern == kGridOn;
}

void ChartGraph::setXGrid_Enable(std::int16_t value) {
    model_.setXGridPattern(value == 1 ? kGridOn : kGridOff);
}

bool ChartGraph::YGrid_Enable() const {
    return model_.look().y.gridPattern == kGridOn;
}

void ChartGraph::setYGrid_Enable(std::int16_t value) {
    model_.setYGridPattern(value == 1 ? kGridOn : kGridOff);
}

bool ChartGraph::Cfg_Save() {
    for (int series = 0; series < model_.seriesCount(); ++series) {
        model_.setCapacity(series, model_.lastPoint(series));
    }
    model_.beginBatch();
    model_.setXMinimum(0);
    model_.setXMaximum(xWide_);
    FileStatus status = FileStatus::failure(graphText::kNoFolder);
    if (ports_.files != nullptr) {
        status = saveChartLook(*ports_.files, fileName_, model_.look());
    }
    model_.setXMinimum(xMin_);
    model_.setXMaximum(static_cast<double>(xMin_) + static_cast<double>(xWide_));
    model_.endBatch();
    saveFault_ = status.reason();
    return status.ok();
}

bool ChartGraph::Cfg_Load() {
    if (fileName_.size() < kExtension) {
        throw std::invalid_argument("The graph's file name is too short: " + fileName_);
    }
    if (ports_.files == nullptr) {
        return false;
    }
    const std::string base = fileName_.substr(0, fileName_.size() - kExtension);
    model_.setOwnPoints(loadChartData(*ports_.files, base + "dat", model_.seriesCount()));
    std::optional<ChartLook> look = loadChartLook(*ports_.files, base + "oc2", designLook(design()));
    if (!look) {
        return false;
    }
    model_.setLook(std::move(*look));
    model_.markYHome();
    return true;
}

void ChartGraph::append(int series, double elapsed, double value) {
    model_.append(series - 1, elapsed, value);
}

} // namespace drx9
