#pragma once

#include <QWidget>

namespace drx9 {

/// A bar without a number: how far a value has come.
class Gauge : public QWidget {
    Q_OBJECT
public:
    explicit Gauge(QWidget* parent = nullptr);

    /// Share 0..1; repaints only when a pixel changes.
    void setShare(double share);
    void setStale(bool stale);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] int fillWidth() const;

    double share_ = 0;
    bool stale_ = false;
};

} // namespace drx9
