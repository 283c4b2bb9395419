#include "controls/Readout.h"

#include "controls/TextWidths.h"
#include "controls/Theme.h"

#include <QFontDatabase>
#include <QKeyEvent>
#include <QPainter>
#include <QStyleOptionFrame>

#include <array>
#include <cmath>

namespace drx9 {

namespace {
/// Sizes that a text steps down to; 0.7 of a size is left to "OFF".
constexpr std::array<int, 9> kSizes{104, 72, 56, 40, 28, 20, 16, 13, 10};
constexpr int kLineEditMargin = 2; ///< what a line edit keeps free at each side
constexpr double kOffShare = 0.7;

/// What slanted ink may reach over a character's cell at either side.
double slantRoom(const QFontMetricsF& metrics) {
    return std::ceil(metrics.height() / 5);
}

bool digitsAreTabular(const QFont& font) {
    const QFontMetricsF metrics(font);
    const double width = metrics.horizontalAdvance(QLatin1Char('0'));
    for (char digit = '1'; digit <= '9'; ++digit) {
        if (std::abs(metrics.horizontalAdvance(QLatin1Char(digit)) - width) > 0.01) {
            return false;
        }
    }
    return true;
}
} // namespace

Readout::Readout(QWidget* parent)
    : ReadOnlyLine(parent) {
    setFrame(false);
    setAlignment(Qt::AlignRight | Qt::AlignBottom);
    setPlaceholderText(QStringLiteral("\u2014"));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setFont(digitFont(font()));
    colour();
}

QFont Readout::digitFont(const QFont& base) {
    QFont probe = fontOfSize(base, 72);
    if (digitsAreTabular(probe)) {
        return base;
    }
    const QStringList families = QFontDatabase::families();
    for (const char* name : {"DejaVu Sans", "Segoe UI", "Helvetica Neue"}) {
        const QString family = QString::fromLatin1(name);
        probe.setFamily(family);
        if (families.contains(family) && digitsAreTabular(probe)) {
            QFont font = base;
            font.setFamily(family);
            return font;
        }
    }
    return base;
}

int Readout::columnWidth(const QFont& font, int pixels, const QString& text) {
    return QFontMetrics(fontOfSize(digitFont(font), pixels)).horizontalAdvance(text);
}

void Readout::setSize(int pixels, int baseline) {
    pixels_ = pixels;
    baseline_ = baseline;
    shownPixels_ = 0;
    fit();
}

void Readout::setLook(Look look) {
    if (look_ == look) {
        return;
    }
    look_ = look;
    shownPixels_ = 0;
    fit();
    colour();
}

void Readout::showText(const QString& shown) {
    if (text() == shown) {
        return;
    }
    const bool off = shown == QLatin1String("OFF");
    const bool wasOff = text() == QLatin1String("OFF");
    setText(shown);
    if (const QString shape = TextWidths::shapeOf(shown); shape != shape_) {
        shape_ = shape;
        fit();
    }
    if (off != wasOff) {
        colour();
    }
}

int Readout::fittingSize() const {
    if (text() == QLatin1String("OFF")) {
        return static_cast<int>(pixels_ * kOffShare);
    }
    for (const int size : kSizes) {
        if (size <= pixels_ && columnWidth(font(), size, text()) <= width()) {
            return size;
        }
    }
    return kSizes.back();
}

void Readout::fit() {
    const int size = fittingSize();
    if (size == shownPixels_) {
        return;
    }
    shownPixels_ = size;
    QFont sized = fontOfSize(font(), size);
    sized.setItalic(look_ == Look::Stale);
    setFont(sized);
    const QFontMetrics metrics(sized);
    const int bearing = metrics.rightBearing(QLatin1Char('0'));
    const int below = baseline_ - 1 - metrics.descent();
    // The margins may be negative: the text may use the pixels that a line edit keeps free.
    setTextMargins(-kLineEditMargin, 0, -kLineEditMargin - bearing, below);
}

void Readout::colour() {
    const Theme theme = Theme::of(palette());
    const bool grey = look_ != Look::Live || text() == QLatin1String("OFF");
    const QColor wanted = grey ? theme.stale : theme.text;
    if (palette().color(QPalette::Text) == wanted &&
        palette().color(QPalette::PlaceholderText) == theme.stale) {
        return;
    }
    QPalette mine; // only these two roles: the rest follows the window
    mine.setColor(QPalette::Text, wanted);
    mine.setColor(QPalette::PlaceholderText, theme.stale);
    colouring_ = true;
    setPalette(mine);
    colouring_ = false;
}

void Readout::keyPressEvent(QKeyEvent* event) {
    const bool plain = event->modifiers() == Qt::NoModifier || event->modifiers() == Qt::KeypadModifier;
    const int key = event->key();
    if (plain && (key == Qt::Key_Right || key == Qt::Key_Down)) {
        emit walk(1);
    } else if (plain && (key == Qt::Key_Left || key == Qt::Key_Up)) {
        emit walk(-1);
    } else {
        ReadOnlyLine::keyPressEvent(event);
    }
}

void Readout::resizeEvent(QResizeEvent* event) {
    ReadOnlyLine::resizeEvent(event);
    fit();
}

void Readout::paintEvent(QPaintEvent* event) {
    const QString shown = text();
    if (shown.isEmpty() || hasSelectedText()) {
        ReadOnlyLine::paintEvent(event);
        return;
    }
    QPainter painter(this);
    QStyleOptionFrame panel;
    initStyleOption(&panel);
    style()->drawPrimitive(QStyle::PE_PanelLineEdit, &panel, &painter, this);
    if (glyphScale_ != devicePixelRatioF()) {
        glyphs_.clear();
        glyphScale_ = devicePixelRatioF();
    }
    double wide = 0;
    for (const QChar character : shown) {
        wide += glyph(character).advance;
    }
    const QFontMetricsF metrics(font());
    // Where the line edit would put it: the last digit's ink ends on the right edge.
    const int bearing = QFontMetrics(font()).rightBearing(QLatin1Char('0'));
    double x = width() + bearing - wide;
    const double top = height() - baseline_ - metrics.ascent();
    for (const QChar character : shown) {
        const Glyph& painted = glyph(character);
        painter.drawPixmap(QPointF(x - slantRoom(metrics), top), painted.picture);
        x += painted.advance;
    }
}

const Readout::Glyph& Readout::glyph(QChar character) {
    auto known = glyphs_.find(character);
    if (known == glyphs_.end()) {
        known = glyphs_.insert(character, paintedGlyph(character));
    }
    return *known;
}

/// The character between two rooms for slanted ink, its base line at the ascent.
Readout::Glyph Readout::paintedGlyph(QChar character) const {
    const double scale = devicePixelRatioF();
    const QFontMetricsF metrics(font());
    const double room = slantRoom(metrics);
    const double advance = metrics.horizontalAdvance(character);
    QPixmap picture((QSizeF(room * 2 + advance, metrics.height()) * scale).toSize());
    picture.setDevicePixelRatio(scale);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setFont(font());
    painter.setPen(palette().color(QPalette::Text));
    painter.drawText(QPointF(room, metrics.ascent()), QString(character));
    painter.end();
    return {picture, advance};
}

void Readout::changeEvent(QEvent* event) {
    ReadOnlyLine::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) {
        glyphs_.clear();
    }
    if (event->type() == QEvent::PaletteChange && !colouring_) {
        colour();
    }
}

} // namespace drx9
