#pragma once

#include <QFontMetrics>
#include <QHash>
#include <QString>

namespace drx9 {

/// Widths of texts in one font. Measuring a text takes longer than most of what is done with its width, so
/// they are remembered by the text's shape: every digit counts as the widest one, and a text whose numbers
/// move is measured once. A width is never less than the text's own.
class TextWidths {
public:
    /// In whole pixels. The metrics are those of the same font in each call since forget().
    [[nodiscard]] int of(const QString& text, const QFontMetrics& metrics);
    /// The font has changed.
    void forget();

    /// The text with each digit as "0": two texts of one shape take the same room where all digits are of one
    /// width.
    [[nodiscard]] static QString shapeOf(const QString& text, QChar digit = QLatin1Char('0'));

private:
    QHash<QString, int> widths_;
    QChar widest_; ///< digit; null before the first measure
};

} // namespace drx9
