#pragma once

#include <QWidget>

#include <vector>

namespace drx9 {

/// The line above a chart: title and note at the left, legend at the right. A click on a legend entry hides
/// or shows its series. Where they do not fit one line the legend takes a second.
class ChartHeader : public QWidget {
    Q_OBJECT
public:
    struct Entry {
        QString label;
        QColor color;
        bool shown = true;   ///< the operator has not hidden it
        bool present = true; ///< the sensor exists
    };

    ChartHeader(const QString& title, QWidget* parent);

    void setEntries(std::vector<Entry> entries);
    void setNote(const QString& note);
    [[nodiscard]] const QString& note() const { return note_; }

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

signals:
    void entryClicked(int series);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    [[nodiscard]] int legendWidth() const;
    [[nodiscard]] int titleWidth() const;
    [[nodiscard]] bool secondLine() const;
    void fitHeight();
    [[nodiscard]] std::vector<QRect> entryRects() const;

    QString title_;
    QString note_;
    std::vector<Entry> entries_;
};

} // namespace drx9
