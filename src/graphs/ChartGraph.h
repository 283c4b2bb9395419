#pragma once

#include "graphs/ChartModel.h"
#include "graphs/Graph.h"
#include "platform/EventPump.h"
#include "platform/FilePort.h"

#include <cstdint>
#include <functional>
#include <string>

namespace drx9 {

/// What a graph object works with beside its chart. Without files nothing is loaded or saved.
struct GraphPorts {
    FilePort* files = nullptr;
    std::string folder; ///< holds the configuration files
    EventPump* pump = nullptr;
};

/// Position and size on the main window, in its layout's units.
struct GraphPlace {
    std::int32_t height = 0;
    std::int32_t left = 0;
    std::int32_t top = 0;
    std::int32_t width = 0;
};

/// The graph object of one chart: one class for the four kinds. Acts at once on the chart; what it stores
/// itself are YMin, YMax, XMin, Xwide, the file name and the geometry.
class ChartGraph final : public Graph {
public:
    static constexpr int kCapacity = 500; ///< points of a series after InitChart

    ChartGraph(ChartModel& model, GraphPorts ports);

    /// Who puts the chart where InitChart says.
    void setPlacer(std::function<void(const GraphPlace&)> placer) { placer_ = std::move(placer); }

    /// Applies the geometry, empties the series and applies the grid spacings again.
    void InitChart();
    /// First-time set-up. For cAvgGraph and cAvgThkGraph it ends by running the events that wait (kept).
    void Init() override;
    void ReInit() override;

    [[nodiscard]] float YMin() const override { return yMin_; }
    void setYMin(float value) override;
    [[nodiscard]] float YMax() const override { return yMax_; }
    void setYMax(float value) override;
    [[nodiscard]] float XMin() const override { return xMin_; }
    void setXMin(float value) override;
    [[nodiscard]] float Xwide() const override { return xWide_; }
    void setXwide(float value) override;

    /// The Y axis as it is set now is what Home on the chart goes back to.
    void markYHome() { model_.markYHome(); }

    /// Grid spacing. A negative value counts by its magnitude, 0 as 1; labels follow it, ticks are a tenth.
    [[nodiscard]] float XDiv() const;
    void setXDiv(float value);
    [[nodiscard]] std::int16_t YDiv() const;
    void setYDiv(std::int16_t value);
    /// Written as a check box's state, of which only 1 is on; read back as a boolean (kept).
    [[nodiscard]] bool XGrid_Enable() const;
    void setXGrid_Enable(std::int16_t value);
    [[nodiscard]] bool YGrid_Enable() const;
    void setYGrid_Enable(std::int16_t value);

    [[nodiscard]] const std::string& Cfg_Filename() const { return fileName_; }
    void setCfg_Filename(std::string name) { fileName_ = std::move(name); }
    /// Saves the look with the time window from zero; the capacities are cut to the points that are there.
    [[nodiscard]] bool Cfg_Save();
    /// Loads data and look. A file name of fewer than three characters throws std::invalid_argument.
    [[nodiscard]] bool Cfg_Load();
    /// Why the last Cfg_Save failed, for people; empty when it did not.
    [[nodiscard]] const std::string& saveFault() const { return saveFault_; }

    /// Stored values; they reach the chart through InitChart alone. Reading them back is for a layout
    /// that places charts in a window's units.
    [[nodiscard]] std::int32_t GraphHeight() const { return place_.height; }
    void setGraphHeight(std::int32_t value) { place_.height = value; }
    [[nodiscard]] std::int32_t GraphWidth() const { return place_.width; }
    void setGraphWidth(std::int32_t value) { place_.width = value; }
    [[nodiscard]] std::int32_t GraphTop() const { return place_.top; }
    void setGraphTop(std::int32_t value) { place_.top = value; }
    [[nodiscard]] std::int32_t GraphLeft() const { return place_.left; }
    void setGraphLeft(std::int32_t value) { place_.left = value; }

    [[nodiscard]] const ChartDesign& design() const { return model_.design(); }

    // What the acquisition cycle uses beside.

    [[nodiscard]] float shownYMin() const override { return model_.yMinimum(); }
    [[nodiscard]] float shownYMax() const override { return model_.yMaximum(); }
    [[nodiscard]] int seriesCount() const override { return model_.seriesCount(); }
    void setLastPoint(int series, int last) override { model_.setLastPoint(series - 1, last); }
    void append(int series, double elapsed, double value) override;
    void appendGap() override { model_.appendGap(); }
    void redraw() override { model_.redraw(); }

private:
    void takeAxes();

    ChartModel& model_;
    GraphPorts ports_;
    std::function<void(const GraphPlace&)> placer_;
    float yMin_ = 0;
    float yMax_ = 0;
    float xMin_ = 0;
    float xWide_ = 0;
    std::string fileName_;
    std::string saveFault_;
    GraphPlace place_;
};

} // namespace drx9
