#pragma once

#include "graphs/Graph.h"

#include <QPointer>
#include <QWidget>

#include <array>

class QMenu;

namespace drx9 {

class ChartHeader;
class ChartPlot;

/// What tells the four charts apart.
struct ChartDesign {
    const char* objectName;
    const char* title;
    const char* seriesLabel; ///< a number follows where there are several series
    int series;
    float yMax;
    double ySpacing;
    int decimals;
};

/// The four designs in the graphs' fixed order.
const std::array<ChartDesign, 4>& chartDesigns();

/// One strip chart of the main window.
///
/// The time window follows the run until the operator zooms or pans along it; a double click or Home follows
/// again. Zooming along Y changes the axis itself and does not stop the following.
class ChartControl final : public QWidget, public Graph {
    Q_OBJECT
public:
    explicit ChartControl(const ChartDesign& design, QWidget* parent = nullptr);

    // The graph.

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
    [[nodiscard]] float shownYMin() const override;
    [[nodiscard]] float shownYMax() const override;
    [[nodiscard]] int seriesCount() const override { return design_.series; }
    void setLastPoint(int series, int last) override;
    void append(int series, double elapsed, double value) override;
    void appendGap() override;
    void redraw() override;

    // The window.

    /// Sensors beyond the count have neither series nor legend entry.
    void setSensorCount(int count);
    /// "No readings since 14:09:04"; empty when readings come.
    void setSilence(const QString& text);
    [[nodiscard]] bool following() const { return following_; }
    [[nodiscard]] QString note() const;

public slots:
    void follow();
    void toggleSeries(int series); ///< from 0
    void copyPicture();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void pauseFollowing();
    void followX();
    void applyX();
    void applyTheme();
    void showSeries();
    void showNote();
    bool viewKey(int key, Qt::KeyboardModifiers modifiers);
    [[nodiscard]] QMenu* buildMenu();
    [[nodiscard]] QPoint menuCorner() const;
    void openMenu(const QPoint& corner);

    ChartDesign design_;
    ChartHeader* header_;
    ChartPlot* plot_;
    float yMin_ = 0;
    float yMax_ = 0;
    float xMin_ = 0;
    float xWide_ = 0;
    double axisXMin_ = 0; ///< the X axis while following; its maximum may lag behind between two settings
    double axisXMax_ = 0;
    float homeYMin_ = 0; ///< the Y axis before the operator zoomed it
    float homeYMax_ = 0;
    bool following_ = true;
    int sensors_;
    std::array<bool, 6> hidden_{};
    QString silence_;
};

/// The four charts in the graphs' fixed order. Owns each until a window takes it into its layout.
class ChartSet {
public:
    ChartSet();
    ~ChartSet();
    ChartSet(const ChartSet&) = delete;
    ChartSet& operator=(const ChartSet&) = delete;

    [[nodiscard]] ChartControl& chart(int number) const; ///< 1..4
    [[nodiscard]] std::array<Graph*, 4> graphs() const;

private:
    std::array<QPointer<ChartControl>, 4> charts_;
};

} // namespace drx9
