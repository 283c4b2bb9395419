#pragma once

#include "graphs/ChartGraph.h"
#include "graphs/ChartTracer.h"
#include "graphs/controls/ChartMouse.h"
#include "graphs/controls/ChartOutput.h"

#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <array>
#include <memory>

class QMenu;

namespace drx9 {

class ChartEditor;
class ChartPainter;
struct ChartSurface;

/// One strip chart of the main window: draws what its model says and holds no point.
///
/// The time window follows the run until the operator zooms or pans along it; a double click or Home follows
/// again. Notes have a place of their own inside the plot, so that nothing moves when one comes.
class ChartControl final : public QWidget {
    Q_OBJECT
public:
    /// Model and graph outlive the control.
    ChartControl(ChartModel& model, ChartGraph& graph, const ChartPorts& ports, QWidget* parent = nullptr);
    ~ChartControl() override;

    /// Sensors beyond the count have neither series nor legend entry.
    void setSensorCount(int count) { model_.setSensorCount(count); }
    /// "No readings since 14:09:04"; empty when readings come.
    void setSilence(const QString& text);
    [[nodiscard]] bool following() const { return model_.following(); }
    [[nodiscard]] QString note() const;
    /// Is shown as a note for a while.
    void showMessage(const QString& text);
    /// Where the plot lies within the axes.
    [[nodiscard]] QRect plotRect() const;
    /// The chart's built-in editor: one at a time, not modal.
    void openEditor(QWidget* owner);

public slots:
    void follow();
    void toggleSeries(int series); ///< from 0
    void copyPicture();

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void modelChanged();
    void allChanged();
    void takePlace();
    void placeAt(const GraphPlace& place);
    [[nodiscard]] ChartPainter painter() const;
    [[nodiscard]] char decimal() const;
    bool clickLegend(const QPoint& at);
    bool tracerKey(int key, Qt::KeyboardModifiers modifiers);
    void showTraced();
    void pinTraced();
    void traceAt(const QPointF& at);
    [[nodiscard]] QMenu* buildMenu();
    void addViews(QMenu& menu);
    void openMenu(const QPoint& corner);
    void describeSoon();
    void describe();

    ChartModel& model_;
    ChartGraph& graph_;
    ChartMouse mouse_;
    ChartTracer tracer_;
    std::function<void(QWidget&)> place_;
    ChartOutput output_;
    std::unique_ptr<ChartSurface> surface_;
    QString silence_;
    QString message_;
    QTimer messageTimer_;
    QTimer describeTimer_;
    bool focusCame_ = false; ///< with the mouse or the window, and nothing was done since
    bool pressPins_ = false;
    QPointer<ChartEditor> editor_;
};

/// The four charts in the graphs' fixed order, over one run's points. Owns each control until a window takes
/// it into its layout.
class ChartSet {
public:
    explicit ChartSet(const ChartPorts& ports = {});
    ~ChartSet();
    ChartSet(const ChartSet&) = delete;
    ChartSet& operator=(const ChartSet&) = delete;

    [[nodiscard]] ChartControl& chart(int number) const; ///< 1..4
    [[nodiscard]] ChartGraph& graph(int number) const;   ///< 1..4
    [[nodiscard]] std::array<Graph*, 4> graphs() const;

private:
    struct One {
        std::unique_ptr<ChartModel> model;
        std::unique_ptr<ChartGraph> graph;
        QPointer<ChartControl> control;
    };
    RunPoints points_{kRunColumns};
    std::array<One, 4> charts_;
};

} // namespace drx9
