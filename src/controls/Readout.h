#pragma once

#include "controls/ReadOnlyLine.h"

#include <QHash>
#include <QPixmap>

namespace drx9 {

/// One of the big numbers: read-only, frameless, right-aligned on a fixed column so that the last digit's ink
/// ends on the column's edge, its base line at a fixed height. Its text can be selected, copied and read
/// aloud. A text that is too wide takes the next smaller size, down to the smallest.
class Readout : public ReadOnlyLine {
    Q_OBJECT
public:
    /// Stale is grey and slanted, Kept (a former run's) grey and upright.
    enum class Look { Live, Stale, Kept };

    explicit Readout(QWidget* parent = nullptr);

    /// Largest size of the digits and the distance of the base line from the bottom edge, in pixels.
    void setSize(int pixels, int baseline);
    void setLook(Look look);
    /// Sets the text only when it differs: setting it takes the selection away. "OFF" is shown smaller and
    /// grey.
    void showText(const QString& shown);

    /// A font whose digits are all of one width.
    static QFont digitFont(const QFont& base);
    /// Width of a column that holds the text at a size.
    static int columnWidth(const QFont& font, int pixels, const QString& text);

signals:
    /// An arrow key asks for the next readout (+1) or the one before (-1).
    void walk(int direction);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    /// Digits of this size are outlines that the painter fills again each time, which took more than all else
    /// in the window together: they are painted from pictures, as long as nothing is selected.
    void paintEvent(QPaintEvent* event) override;

private:
    /// A character as it is painted in the present font and colour.
    struct Glyph {
        QPixmap picture;
        double advance = 0;
    };
    [[nodiscard]] const Glyph& glyph(QChar character);
    [[nodiscard]] Glyph paintedGlyph(QChar character) const;
    void fit();
    void colour();
    [[nodiscard]] int fittingSize() const;

    int pixels_ = 28;
    int baseline_ = 8;
    int shownPixels_ = 0;
    QString shape_; ///< of the text that was fitted; another text of this shape takes the same room
    QHash<QChar, Glyph> glyphs_;
    double glyphScale_ = 0; ///< device pixels a pixel, of the glyphs
    Look look_ = Look::Live;
    bool colouring_ = false;
};

} // namespace drx9
