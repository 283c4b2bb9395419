#pragma once

#include <QProxyStyle>

namespace drx9 {

/// Fusion under flat faces: 1 px borders with enough contrast in light and dark, radius 4, a 2 px accent
/// border on focus, square checks and round radios of 16, chevrons for arrows, group titles above their
/// frames. The same on every platform.
class Drx9Style : public QProxyStyle {
    Q_OBJECT
public:
    Drx9Style();

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                         const QWidget* widget) const override;
    QRect subElementRect(SubElement element, const QStyleOption* option,
                         const QWidget* widget) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                           const QWidget* widget) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override;

    using QProxyStyle::polish;
    /// Takes the context menu of Qt's own scroll bars, spin boxes and file lists away, wherever they are
    /// (in a list, in the colour dialog): Qt executes it, and its event loop would run above an exchange.
    void polish(QWidget* widget) override;
};

} // namespace drx9
