#pragma once

#include <QLabel>

namespace drx9 {

/// Label of a sensor's readout: a swatch in the sensor's colour before it (none while the sensor is off), and
/// at its right, when the crystal looks failed, a triangle and "crystal?".
class SensorLabel : public QLabel {
    Q_OBJECT
public:
    SensorLabel(int sensor, QWidget* parent); ///< 1..6

    void setOff(bool off);
    /// An empty text takes the mark away; else it is the mark's tooltip.
    void setMark(const QString& explanation);
    [[nodiscard]] bool marked() const { return !explanation_.isEmpty(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;

private:
    [[nodiscard]] QRect markRect() const;

    int sensor_;
    bool off_ = false;
    QString explanation_;
};

} // namespace drx9
