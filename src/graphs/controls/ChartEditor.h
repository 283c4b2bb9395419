#pragma once

#include "controls/Window.h"

#include "graphs/LookEdit.h"

#include <functional>
#include <string>
#include <vector>

class QFormLayout;
class QTableWidget;
class QTableWidgetItem;

namespace drx9 {

/// The chart's built-in editor: all of a chart's look that its configuration file stores. Every change shows
/// on the chart at once; Cancel takes back what was changed here.
class ChartEditor : public Window {
    Q_OBJECT
public:
    /// The model outlives the editor.
    ChartEditor(ChartModel& model, QWidget* owner);

    void reject() override;

protected:
    bool event(QEvent* event) override;

private:
    using Change = std::function<void(ChartLook&)>;
    using Field = std::function<double&(ChartLook&)>;
    struct Limits {
        double least;
        double most;
        double step;
        int decimals;
    };

    QWidget* buildAxes();
    QWidget* buildSeries();
    QWidget* buildTitles();
    QLayout* buildBottom();
    void addNumber(QFormLayout& form, const char* label, const char* name, const Limits& limits, Field field);
    void addCheck(QFormLayout& form, const char* label, const char* name,
                  std::function<bool&(ChartLook&)> field);
    void addGridCheck(QFormLayout& form, const char* label, const char* name, AxisLook ChartLook::*axis);
    void addText(QFormLayout& form, const char* label, const char* name, std::string AxisLook::*text,
                 AxisLook ChartLook::*axis);
    void addFormat(QFormLayout& form, const char* label, const char* name, AxisLook ChartLook::*axis,
                   const std::vector<std::pair<const char*, const char*>>& choices);
    void addFontSize(QFormLayout& form);
    void refill();
    void fillSeries();
    void seriesEdited(QTableWidgetItem* item);
    void chooseColor();
    void useProgramColors();
    void change(const Change& change) { edit_.change(change); }
    [[nodiscard]] QColor shownColor(int series) const;

    ChartModel& model_;
    LookEdit edit_;
    QTableWidget* table_ = nullptr;
    std::vector<std::function<void()>> refills_; ///< one a field: shows what the chart has now
};

} // namespace drx9
