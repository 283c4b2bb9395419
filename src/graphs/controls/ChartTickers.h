#pragma once

#include <qcustomplot.h>

namespace drx9 {

/// Ticks at a fixed spacing with ten small ticks to a major one. Where the view is zoomed so far that the
/// spacing would give none, or too many, a round fraction or multiple of it is taken.
class SpacingTicker : public QCPAxisTicker {
public:
    explicit SpacingTicker(double spacing)
        : spacing_(spacing) {}

    [[nodiscard]] double spacing() const { return spacing_; }
    void setSpacing(double spacing) { spacing_ = spacing; }

protected:
    double getTickStep(const QCPRange& range) override;
    int getSubTickCount(double tickStep) override;
    QString getTickLabel(double tick, const QLocale& locale, QChar formatChar, int precision) override;

private:
    double spacing_;
};

/// The same for elapsed seconds: labels "%H:%M:%S".
class ElapsedTicker : public SpacingTicker {
public:
    using SpacingTicker::SpacingTicker;

protected:
    QString getTickLabel(double tick, const QLocale& locale, QChar formatChar, int precision) override;
};

/// Room right of the axes in which the last time label stays whole.
int lastLabelRoom(const QFontMetrics& metrics);

/// "00:05:52"; hours go beyond 24.
QString elapsedLabel(double seconds);

} // namespace drx9
