#include "graphs/controls/ChartTickers.h"

#include <cmath>

namespace drx9 {

namespace {
constexpr double kLeastTicks = 1.5;
constexpr double kMostTicks = 12;
} // namespace

double SpacingTicker::getTickStep(const QCPRange& range) {
    const double size = range.size();
    double step = spacing_;
    if (step <= 0 || size <= 0) {
        return 1;
    }
    const int factors[3] = {2, 5, 10};
    for (double base = step; size / step > kMostTicks; base *= 10) {
        for (const int factor : factors) {
            step = base * factor;
            if (size / step <= kMostTicks) {
                break;
            }
        }
    }
    for (double base = step; size / step < kLeastTicks; base /= 10) {
        for (const int factor : factors) {
            step = base / factor;
            if (size / step >= kLeastTicks) {
                break;
            }
        }
    }
    return step;
}

int SpacingTicker::getSubTickCount(double) {
    return 9;
}

QString SpacingTicker::getTickLabel(double tick, const QLocale& locale, QChar, int) {
    const double rounded = std::round(tick * 1e6) / 1e6 + 0.0; // -0 reads as 0
    return locale.toString(rounded == 0 ? 0 : rounded, 'g', 7);
}

QString ElapsedTicker::getTickLabel(double tick, const QLocale&, QChar, int) {
    return elapsedLabel(tick);
}

int lastLabelRoom(const QFontMetrics& metrics) {
    return std::max(36, metrics.horizontalAdvance(elapsedLabel(0)) / 2 + 6);
}

QString elapsedLabel(double seconds) {
    const qint64 whole = static_cast<qint64>(std::floor(std::fabs(seconds) + 1e-6));
    const QString sign = seconds < 0 && whole > 0 ? QStringLiteral("-") : QString();
    const QChar zero = QLatin1Char('0');
    return sign + QStringLiteral("%1:%2:%3")
                      .arg(whole / 3600, 2, 10, zero)
                      .arg(whole / 60 % 60, 2, 10, zero)
                      .arg(whole % 60, 2, 10, zero);
}

} // namespace drx9
