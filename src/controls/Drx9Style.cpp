#include "controls/Drx9Style.h"

#include "controls/SpinBox.h"
#include "controls/Theme.h"

#include <QApplication>
#include <QPainter>
#include <QPainterPath>
#include <QScrollBar>
#include <QStyleFactory>
#include <QStyleOption>

namespace drx9 {

namespace {
constexpr int kIndicator = 16;
constexpr int kLeastHeight = 28;
constexpr int kLeastButtonWidth = 88;
constexpr int kSpinButtonWidth = 22;
constexpr int kComboButtonWidth = 24;
constexpr int kGroupTitleGap = 4;
constexpr double kRadius = 4;
constexpr double kGroupRadius = 6;

QFont groupTitleFont(const QFont& font) {
    QFont bold = font;
    bold.setWeight(QFont::DemiBold);
    return bold;
}

int groupTitleHeight(const QStyleOptionGroupBox& box, const QWidget* widget) {
    if (box.text.isEmpty()) {
        return 0;
    }
    const QFont font = groupTitleFont(widget != nullptr ? widget->font() : QApplication::font());
    return QFontMetrics(font).height() + kGroupTitleGap;
}

/// Rounded face with a border; `width` px of border lie inside the rectangle.
void paintBox(QPainter& painter, const QRectF& rect, const QBrush& face, const QColor& border, double width,
              double radius) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(border, width));
    painter.setBrush(face);
    const double inset = width / 2;
    painter.drawRoundedRect(rect.adjusted(inset, inset, -inset, -inset), radius, radius);
    painter.restore();
}

bool keyboardFocus(const QStyleOption& option) {
    return option.state.testFlag(QStyle::State_HasFocus) && option.state.testFlag(QStyle::State_Enabled);
}

void paintInputFrame(QPainter& painter, const QRect& rect, const QStyleOption& option, const Theme& theme) {
    const bool enabled = option.state.testFlag(QStyle::State_Enabled);
    const bool readOnly = option.state.testFlag(QStyle::State_ReadOnly);
    const QColor face = enabled && !readOnly ? theme.base : theme.ground;
    const bool focus = keyboardFocus(option);
    const QColor border = focus ? theme.accent : enabled && !readOnly ? theme.line : theme.hair;
    paintBox(painter, rect, face, border, focus ? 2 : 1, kRadius);
}

void paintChevron(QPainter& painter, const QRectF& rect, bool up, const QColor& color) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    const QPointF c = rect.center();
    const double dy = up ? -1 : 1;
    const QPointF points[3] = {c + QPointF(-4, -2 * dy), c + QPointF(0, 2 * dy), c + QPointF(4, -2 * dy)};
    painter.drawPolyline(points, 3);
    painter.restore();
}

void paintButtonFace(QPainter& painter, const QStyleOption& option, const Theme& theme) {
    const bool enabled = option.state.testFlag(QStyle::State_Enabled);
    const bool down = option.state & (QStyle::State_Sunken | QStyle::State_On);
    const auto* button = qstyleoption_cast<const QStyleOptionButton*>(&option);
    const bool isDefault = button != nullptr && (button->features & QStyleOptionButton::DefaultButton);
    const bool focus = keyboardFocus(option);
    const QColor face = down ? theme.hair : enabled ? theme.button : theme.ground;
    const QColor border = focus || (isDefault && enabled) ? theme.accent : enabled ? theme.line : theme.hair;
    paintBox(painter, option.rect, face, border, focus ? 2 : 1, kRadius);
}

void paintCheck(QPainter& painter, const QStyleOption& option, const Theme& theme) {
    const bool on = option.state & (QStyle::State_On | QStyle::State_NoChange);
    const bool enabled = option.state.testFlag(QStyle::State_Enabled);
    const QColor border = !enabled ? theme.disabled : on ? theme.accent : theme.line;
    paintBox(painter, option.rect,
             on && enabled ? theme.accent
             : enabled     ? theme.base
                           : theme.ground,
             border, 1, 3);
    if (!on) {
        return;
    }
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(
        QPen(enabled ? theme.accentText : theme.disabled, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    const QPointF o = option.rect.topLeft();
    const QPointF tick[3] = {o + QPointF(4, 8.5), o + QPointF(7, 11.5), o + QPointF(12, 5)};
    painter.drawPolyline(tick, 3);
    painter.restore();
}

void paintRadio(QPainter& painter, const QStyleOption& option, const Theme& theme) {
    const bool on = option.state.testFlag(QStyle::State_On);
    const bool enabled = option.state.testFlag(QStyle::State_Enabled);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor accent = enabled ? theme.accent : theme.disabled;
    painter.setPen(QPen(on ? accent : enabled ? theme.line : theme.disabled, 1));
    painter.setBrush(on && enabled ? accent : enabled ? theme.base : theme.ground);
    const QRectF r = QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.drawEllipse(r);
    if (on) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(enabled ? theme.accentText : theme.disabled);
        painter.drawEllipse(r.center(), 3, 3);
    }
    painter.restore();
}

void paintProgressBar(QPainter& painter, const QStyleOptionProgressBar& bar, const Theme& theme) {
    paintBox(painter, bar.rect, theme.base, theme.line, 1, kRadius);
    const double share =
        bar.maximum > bar.minimum ? double(bar.progress - bar.minimum) / (bar.maximum - bar.minimum) : 0;
    if (share <= 0) {
        return;
    }
    QRectF fill = QRectF(bar.rect).adjusted(1, 1, -1, -1);
    fill.setWidth(fill.width() * share);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath clip;
    clip.addRoundedRect(QRectF(bar.rect).adjusted(1, 1, -1, -1), kRadius - 1, kRadius - 1);
    painter.setClipPath(clip, Qt::IntersectClip);
    painter.fillRect(fill, theme.accent);
    painter.restore();
}

void paintSpinBox(const QStyle& style, const QStyleOptionSpinBox& box, QPainter& painter,
                  const QWidget* widget, const Theme& theme) {
    paintInputFrame(painter, box.rect, box, theme);
    const QRect up = style.subControlRect(QStyle::CC_SpinBox, &box, QStyle::SC_SpinBoxUp, widget);
    const QRect down = style.subControlRect(QStyle::CC_SpinBox, &box, QStyle::SC_SpinBoxDown, widget);
    if (up.isEmpty()) {
        return;
    }
    painter.fillRect(QRect(up.left(), box.rect.top() + 4, 1, box.rect.height() - 8), theme.hair);
    const bool enabled = box.state.testFlag(QStyle::State_Enabled);
    const auto arrow = [&](const QRect& rect, QAbstractSpinBox::StepEnabledFlag step,
                           QStyle::SubControl part) {
        const bool live = enabled && box.stepEnabled.testFlag(step);
        if (live && box.activeSubControls == part && box.state.testFlag(QStyle::State_Sunken)) {
            painter.fillRect(rect.adjusted(1, 0, 0, 0), theme.hair);
        }
        paintChevron(painter, rect, part == QStyle::SC_SpinBoxUp, live ? theme.muted : theme.hair);
    };
    arrow(up, QAbstractSpinBox::StepUpEnabled, QStyle::SC_SpinBoxUp);
    arrow(down, QAbstractSpinBox::StepDownEnabled, QStyle::SC_SpinBoxDown);
}

QRect spinBoxPart(const QStyleOptionSpinBox& box, QStyle::SubControl part) {
    const QRect r = box.rect.adjusted(2, 2, -2, -2);
    const bool buttons = box.buttonSymbols != QAbstractSpinBox::NoButtons;
    const int edge = buttons ? r.right() + 1 - kSpinButtonWidth : r.right() + 1;
    const int middle = r.top() + r.height() / 2;
    switch (part) {
    case QStyle::SC_SpinBoxUp:
        return buttons ? QRect(edge, r.top(), kSpinButtonWidth, middle - r.top()) : QRect();
    case QStyle::SC_SpinBoxDown:
        return buttons ? QRect(edge, middle, kSpinButtonWidth, r.bottom() + 1 - middle) : QRect();
    case QStyle::SC_SpinBoxEditField:
        return QRect(r.left() + 4, r.top(), edge - r.left() - 8, r.height());
    default:
        return box.rect;
    }
}

void paintComboBox(const QStyleOptionComboBox& combo, QPainter& painter, const Theme& theme) {
    paintInputFrame(painter, combo.rect, combo, theme);
    const bool enabled = combo.state.testFlag(QStyle::State_Enabled);
    const QRectF arrow(combo.rect.right() - kComboButtonWidth, combo.rect.top(), kComboButtonWidth,
                       combo.rect.height());
    paintChevron(painter, arrow, false, enabled ? theme.muted : theme.disabled);
}

void paintGroupBox(const QStyle& style, const QStyleOptionGroupBox& box, QPainter& painter,
                   const QWidget* widget, const Theme& theme) {
    const QRect frame = style.subControlRect(QStyle::CC_GroupBox, &box, QStyle::SC_GroupBoxFrame, widget);
    paintBox(painter, frame, Qt::NoBrush, theme.hair, 1, kGroupRadius);
    if (box.text.isEmpty()) {
        return;
    }
    painter.save();
    painter.setFont(groupTitleFont(painter.font()));
    const QRect title = style.subControlRect(QStyle::CC_GroupBox, &box, QStyle::SC_GroupBoxLabel, widget);
    const bool enabled = box.state.testFlag(QStyle::State_Enabled);
    painter.setPen(enabled ? theme.text : theme.disabled);
    painter.drawText(title, Qt::AlignLeft | Qt::AlignTop | Qt::TextShowMnemonic, box.text);
    painter.restore();
}
} // namespace

Drx9Style::Drx9Style()
    : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))) {}

void Drx9Style::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                              const QWidget* widget) const {
    const auto theme = [option] { return Theme::of(option->palette); };
    switch (element) {
    case PE_PanelButtonCommand:
        paintButtonFace(*painter, *option, theme());
        return;
    case PE_PanelLineEdit: {
        const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
        if (frame != nullptr && frame->lineWidth > 0) {
            paintInputFrame(*painter, option->rect, *option, theme());
        } else if (keyboardFocus(*option) && option->state.testFlag(State_ReadOnly)) {
            paintBox(*painter, option->rect, Qt::NoBrush, theme().accent, 2, kRadius);
        }
        return;
    }
    case PE_FrameLineEdit:
        return; // part of the panel
    case PE_IndicatorCheckBox:
        paintCheck(*painter, *option, theme());
        return;
    case PE_IndicatorRadioButton:
        paintRadio(*painter, *option, theme());
        return;
    case PE_FrameFocusRect:
        paintBox(*painter, option->rect, Qt::NoBrush, theme().accent, 2, kRadius);
        return;
    case PE_FrameStatusBarItem:
    case PE_PanelStatusBar:
        return;
    case PE_FrameMenu:
        painter->setPen(theme().line);
        painter->setBrush(Qt::NoBrush);
        painter->drawRect(option->rect.adjusted(0, 0, -1, -1));
        return;
    default:
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
}

void Drx9Style::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                            const QWidget* widget) const {
    switch (element) {
    case CE_PushButtonBevel:
        paintButtonFace(*painter, *option, Theme::of(option->palette));
        return;
    case CE_ProgressBarGroove:
    case CE_ProgressBarLabel:
        return;
    case CE_ProgressBarContents:
        if (const auto* bar = qstyleoption_cast<const QStyleOptionProgressBar*>(option)) {
            paintProgressBar(*painter, *bar, Theme::of(option->palette));
        }
        return;
    case CE_MenuBarEmptyArea:
        painter->fillRect(option->rect, option->palette.window());
        return;
    case CE_MenuBarItem:
        if (const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option)) {
            const bool open = item->state.testFlag(State_Selected);
            painter->fillRect(item->rect, open ? item->palette.highlight() : item->palette.window());
            const int flags = Qt::AlignCenter | Qt::TextShowMnemonic | Qt::TextDontClip | Qt::TextSingleLine;
            drawItemText(painter, item->rect, flags, item->palette, item->state.testFlag(State_Enabled),
                         item->text, open ? QPalette::HighlightedText : QPalette::WindowText);
        }
        return;
    default:
        QProxyStyle::drawControl(element, option, painter, widget);
    }
}

void Drx9Style::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                   QPainter* painter, const QWidget* widget) const {
    const Theme theme = Theme::of(option->palette);
    if (const auto* spin = qstyleoption_cast<const QStyleOptionSpinBox*>(option);
        spin && control == CC_SpinBox) {
        paintSpinBox(*this, *spin, *painter, widget, theme);
    } else if (const auto* combo = qstyleoption_cast<const QStyleOptionComboBox*>(option);
               combo && control == CC_ComboBox) {
        paintComboBox(*combo, *painter, theme);
    } else if (const auto* group = qstyleoption_cast<const QStyleOptionGroupBox*>(option);
               group && control == CC_GroupBox) {
        paintGroupBox(*this, *group, *painter, widget, theme);
    } else {
        QProxyStyle::drawComplexControl(control, option, painter, widget);
    }
}

QRect Drx9Style::subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                                const QWidget* widget) const {
    if (const auto* spin = qstyleoption_cast<const QStyleOptionSpinBox*>(option);
        spin && control == CC_SpinBox) {
        return visualRect(spin->direction, spin->rect, spinBoxPart(*spin, part));
    }
    if (const auto* combo = qstyleoption_cast<const QStyleOptionComboBox*>(option);
        combo && control == CC_ComboBox && part == SC_ComboBoxEditField) {
        return combo->rect.adjusted(6, 2, -kComboButtonWidth - 2, -2);
    }
    if (const auto* group = qstyleoption_cast<const QStyleOptionGroupBox*>(option);
        group && control == CC_GroupBox) {
        const int title = groupTitleHeight(*group, widget);
        switch (part) {
        case SC_GroupBoxLabel:
            return {group->rect.left(), group->rect.top(), group->rect.width(), title};
        case SC_GroupBoxFrame:
        case SC_GroupBoxContents:
            return group->rect.adjusted(0, title, 0, 0);
        default:
            return {};
        }
    }
    return QProxyStyle::subControlRect(control, option, part, widget);
}

QRect Drx9Style::subElementRect(SubElement element, const QStyleOption* option, const QWidget* widget) const {
    if (element == SE_ProgressBarContents || element == SE_ProgressBarGroove) {
        return option->rect;
    }
    if (element == SE_LineEditContents) {
        const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
        return frame != nullptr && frame->lineWidth > 0 ? option->rect.adjusted(6, 2, -6, -2) : option->rect;
    }
    return QProxyStyle::subElementRect(element, option, widget);
}

QSize Drx9Style::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                                  const QWidget* widget) const {
    QSize result = QProxyStyle::sizeFromContents(type, option, size, widget);
    switch (type) {
    case CT_PushButton:
        return {std::max(kLeastButtonWidth, size.width() + 32), std::max(kLeastHeight, size.height() + 10)};
    case CT_LineEdit:
        return result.expandedTo({0, kLeastHeight});
    case CT_SpinBox:
        return {size.width() + kSpinButtonWidth + 12,
                std::max(kLeastHeight, size.height())}; // of its line edit
    case CT_ComboBox:
        return {size.width() + kComboButtonWidth + 12, std::max(kLeastHeight, size.height() + 8)};
    case CT_GroupBox:
        if (const auto* box = qstyleoption_cast<const QStyleOptionGroupBox*>(option)) {
            return size + QSize(0, groupTitleHeight(*box, widget));
        }
        return result;
    case CT_MenuBarItem:
        return {size.width() + 8, size.height() + 4};
    default:
        return result;
    }
}

int Drx9Style::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
    switch (metric) {
    case PM_IndicatorWidth:
    case PM_IndicatorHeight:
    case PM_ExclusiveIndicatorWidth:
    case PM_ExclusiveIndicatorHeight:
        return kIndicator;
    case PM_ButtonShiftHorizontal:
    case PM_ButtonShiftVertical:
        return 0;
    case PM_MenuBarVMargin:
    case PM_MenuBarHMargin:
        return metric == PM_MenuBarHMargin ? 2 : 0;
    case PM_LayoutHorizontalSpacing:
    case PM_LayoutVerticalSpacing:
        return 8;
    case PM_LayoutLeftMargin:
    case PM_LayoutTopMargin:
    case PM_LayoutRightMargin:
    case PM_LayoutBottomMargin:
        return 16;
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

int Drx9Style::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                         QStyleHintReturn* data) const {
    switch (hint) {
    case SH_DialogButtonBox_ButtonsHaveIcons:
    case SH_EtchDisabledText:
    case SH_DitherDisabledText:
    case SH_Widget_Animate:
    case SH_Widget_Animation_Duration:
    case SH_ComboBox_Popup: // a list below the box, not a menu over it
        return 0;
    case SH_UnderlineShortcut:
        return 1;
    default:
        return QProxyStyle::styleHint(hint, option, widget, data);
    }
}

void Drx9Style::polish(QWidget* widget) {
    QProxyStyle::polish(widget);
    const bool executed =
        qobject_cast<QScrollBar*>(widget) != nullptr ||
        (qobject_cast<QAbstractSpinBox*>(widget) != nullptr && qobject_cast<SpinBox*>(widget) == nullptr);
    if (executed) {
        widget->setContextMenuPolicy(Qt::NoContextMenu);
    }
}

} // namespace drx9
