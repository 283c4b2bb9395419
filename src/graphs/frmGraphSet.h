#pragma once

#include "controls/Window.h"

#include <array>

class QCheckBox;
class QGridLayout;
class QGroupBox;

namespace drx9 {

class ChartGraph;
class ChartSet;
class MarkLabel;
class SpinBox;

/// The graph configuration window: the axes of the graph that is current when it opens, and the time window
/// of all four. Nothing is applied before OK, which also saves every graph's configuration file.
class frmGraphSet : public Window {
    Q_OBJECT
public:
    /// `current` is 1..4. The charts outlive the window.
    frmGraphSet(ChartSet& charts, int current, QWidget* owner);

signals:
    /// "Graph settings not saved: No space left on device"
    void settingsNotSaved(const QString& text);

private:
    /// Indices of spnSetup and lblReading.
    enum Spinner { kWidthMinutes, kWidthSeconds, kXSpacing, kYMinimum, kYMaximum, kYSpacing };

    QGroupBox* buildCurrent();
    QGroupBox* buildAll();
    QLayout* buildBottom();
    SpinBox* spinner(Spinner index, const char* accessible, int least, int most);
    void addRow(QGridLayout& grid, int row, int column, const char* heading, SpinBox* box,
                const char* toolTip);
    QCheckBox* addGrid(QGridLayout& grid, int row, int column, const char* heading, const char* name,
                       const char* toolTip);
    [[nodiscard]] ChartGraph& graph() const;
    [[nodiscard]] SpinBox& spn(Spinner index) const { return *spnSetup_[static_cast<std::size_t>(index)]; }

    void Form_Load();
    void spnSetup_Change();
    void cmdOK_Click();
    void cmdCancel_Click();
    void CmdAdvanced_Click();

    ChartSet& charts_;
    int current_;
    std::array<SpinBox*, 6> spnSetup_{};
    QCheckBox* chkXDiv_ = nullptr;
    QCheckBox* chkYDiv_ = nullptr;
    MarkLabel* state_ = nullptr;
};

} // namespace drx9
