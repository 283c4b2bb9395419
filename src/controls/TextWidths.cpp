#include "controls/TextWidths.h"

#include <algorithm>

namespace drx9 {

namespace {
constexpr qsizetype kMostKept = 64; ///< shapes; one control shows far fewer

bool isDigit(QChar character) {
    return character >= QLatin1Char('0') && character <= QLatin1Char('9');
}

QChar widestDigit(const QFontMetrics& metrics) {
    QChar widest = QLatin1Char('0');
    for (char digit = '1'; digit <= '9'; ++digit) {
        if (metrics.horizontalAdvance(QLatin1Char(digit)) > metrics.horizontalAdvance(widest)) {
            widest = QLatin1Char(digit);
        }
    }
    return widest;
}
} // namespace

QString TextWidths::shapeOf(const QString& text, QChar digit) {
    QString shape = text;
    std::replace_if(shape.begin(), shape.end(), isDigit, digit);
    return shape;
}

int TextWidths::of(const QString& text, const QFontMetrics& metrics) {
    if (widest_.isNull()) {
        widest_ = widestDigit(metrics);
    }
    const QString shape = shapeOf(text, widest_);
    const auto known = widths_.constFind(shape);
    if (known != widths_.cend()) {
        return *known;
    }
    if (widths_.size() >= kMostKept) {
        widths_.clear();
    }
    return *widths_.insert(shape, metrics.horizontalAdvance(shape));
}

void TextWidths::forget() {
    widths_.clear();
    widest_ = QChar();
}

} // namespace drx9
