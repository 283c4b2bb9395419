#include "controls/Theme.h"

#include "controls/Drx9Style.h"

#include <QApplication>
#include <QFont>
#include <QPainter>
#include <QPainterPath>
#include <QSettings>
#include <QToolTip>

#include <cmath>

namespace drx9 {

namespace {
constexpr double kLeastPoints = 10;
constexpr const char* kAppearance = "DRX9_APPEARANCE"; ///< "dark" or "light"; docs/screenshots sets it

Theme lightTheme() {
    return {.ground = 0xE8EAEC,
            .base = 0xFFFFFF,
            .plot = 0xFCFDFD,
            .button = 0xF5F6F7,
            .text = 0x1A1E22,
            .muted = 0x4D5761,
            .stale = 0x5F6973,
            .disabled = 0x7D858E,
            .line = 0x757D86,
            .hair = 0xC7CCD1,
            .grid = 0xDDE1E5,
            .accent = 0x1B5FAA,
            .accentText = 0xFFFFFF,
            .warn = 0x7A4B00,
            .warnFill = 0xFFD27A,
            .warnText = 0x1A1E22,
            .alarm = 0xA1140F,
            .sensor1 = 0x5280F8,
            .sensor2 = 0xBB6E10,
            .sensor3 = 0x426759,
            .sensor4 = 0x6A3492,
            .sensor5 = 0x8A0500,
            .sensor6 = 0x1B1A1E};
}

Theme darkTheme() {
    return {.ground = 0x22262A,
            .base = 0x181B1E,
            .plot = 0x15181B,
            .button = 0x30353B,
            .text = 0xE3E7EA,
            .muted = 0xA9B2BA,
            .stale = 0x919BA5,
            .disabled = 0x757E87,
            .line = 0x7F8992,
            .hair = 0x3B4147,
            .grid = 0x2A2F34,
            .accent = 0x6FAEF5,
            .accentText = 0x10151A,
            .warn = 0xF3BC55,
            .warnFill = 0xF3BC55,
            .warnText = 0x1A1E22,
            .alarm = 0xFF9087,
            .sensor1 = 0x1592FF,
            .sensor2 = 0xE4AF36,
            .sensor3 = 0x97F5C8,
            .sensor4 = 0x7D6E86,
            .sensor5 = 0xBB4F1E,
            .sensor6 = 0xE5D6FE};
}

double luminance(const QColor& color) {
    const auto linear = [](double v) {
        return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

double contrast(const QColor& a, const QColor& b) {
    const double x = luminance(a) + 0.05;
    const double y = luminance(b) + 0.05;
    return x > y ? x / y : y / x;
}

bool isDark(const QPalette& palette) {
    return luminance(palette.color(QPalette::Window)) < luminance(palette.color(QPalette::WindowText));
}

/// A desktop palette whose text has a contrast of 19:1 or more is a high-contrast one, except for the plain
/// black on near-white that every desktop's ordinary light palette has.
bool isHighContrast(const QPalette& palette) {
    const QColor window = palette.color(QPalette::Window);
    const QColor text = palette.color(QPalette::WindowText);
    return contrast(window, text) > 19 && (isDark(palette) || palette.color(QPalette::Button) == window);
}

/// Roles from a palette that is not ours: its own text colours, our identifying colours by its lightness.
Theme themeFromForeign(const QPalette& palette) {
    Theme theme = isDark(palette) ? Theme::dark() : Theme::light();
    theme.ground = palette.color(QPalette::Window);
    theme.base = theme.plot = palette.color(QPalette::Base);
    theme.button = palette.color(QPalette::Button);
    theme.text = theme.muted = theme.stale = theme.line = theme.hair = palette.color(QPalette::WindowText);
    theme.disabled = palette.color(QPalette::Disabled, QPalette::WindowText);
    theme.grid = theme.disabled;
    theme.accent = palette.color(QPalette::Highlight);
    theme.accentText = palette.color(QPalette::HighlightedText);
    return theme;
}

/// The desktop's wish where Qt does not bring it into the palette.
bool desktopWantsDark(const QPalette& desktop) {
#ifdef Q_OS_WIN
    const QSettings personalize(
        QStringLiteral(
            "HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Themes\\Personalize"),
        QSettings::NativeFormat);
    return personalize.value(QStringLiteral("AppsUseLightTheme"), isDark(desktop) ? 0 : 1).toInt() == 0;
#else
    return isDark(desktop);
#endif
}

void setEnabledAndDisabled(QPalette& palette, QPalette::ColorRole role, const QColor& on, const QColor& off) {
    palette.setColor(QPalette::Active, role, on);
    palette.setColor(QPalette::Inactive, role, on);
    palette.setColor(QPalette::Disabled, role, off);
}
} // namespace

const QColor& Theme::sensor(int number) const {
    const std::array<const QColor*, 6> colors{&sensor1, &sensor2, &sensor3, &sensor4, &sensor5, &sensor6};
    return *colors[static_cast<std::size_t>(number - 1)];
}

const QColor& Theme::tone(Tone tone) const {
    return tone == Tone::Warn ? warn : tone == Tone::Alarm ? alarm : muted;
}

const Theme& Theme::light() {
    static const Theme theme = lightTheme();
    return theme;
}

const Theme& Theme::dark() {
    static const Theme theme = darkTheme();
    return theme;
}

Theme Theme::of(const QPalette& palette) {
    const QColor window = palette.color(QPalette::Window);
    if (window == light().ground) {
        return light();
    }
    return window == dark().ground ? dark() : themeFromForeign(palette);
}

QPalette Theme::palette() const {
    QPalette result;
    const auto set = [&result](QPalette::ColorRole role, const QColor& color) {
        result.setColor(role, color);
    };
    set(QPalette::Window, ground);
    set(QPalette::Base, base);
    set(QPalette::AlternateBase, ground);
    set(QPalette::Button, button);
    set(QPalette::Light, button);
    set(QPalette::Midlight, hair);
    set(QPalette::Mid, hair);
    set(QPalette::Dark, line);
    set(QPalette::Shadow, line);
    set(QPalette::PlaceholderText, stale);
    set(QPalette::ToolTipBase, base);
    set(QPalette::ToolTipText, text);
    set(QPalette::Link, accent);
    set(QPalette::BrightText, alarm);
    setEnabledAndDisabled(result, kMutedRole, muted, disabled);
    setEnabledAndDisabled(result, QPalette::WindowText, text, disabled);
    setEnabledAndDisabled(result, QPalette::Text, text, disabled);
    setEnabledAndDisabled(result, QPalette::ButtonText, text, disabled);
    setEnabledAndDisabled(result, QPalette::Highlight, accent, hair);
    setEnabledAndDisabled(result, QPalette::HighlightedText, accentText, disabled);
    return result;
}

void applyDesktopTheme(QApplication& application) {
    application.setStyle(new Drx9Style); // owned by the application
    QFont font = application.font();
    if (font.pointSizeF() > 0 && font.pointSizeF() < kLeastPoints) {
        font.setPointSizeF(kLeastPoints);
        QApplication::setFont(font);
    }
    followDesktop(application);
}

void followDesktop(QApplication& application, std::optional<bool> dark) {
    QApplication::setPalette(QPalette()); // back to the desktop's own, to look at it
    const QPalette desktop = application.palette();
    if (isHighContrast(desktop)) {
        return;
    }
    const QByteArray chosen = qgetenv(kAppearance);
    const bool wantsDark = chosen.isEmpty() ? dark.value_or(desktopWantsDark(desktop)) : chosen == "dark";
    const QPalette ours = (wantsDark ? Theme::dark() : Theme::light()).palette();
    QApplication::setPalette(ours);
    QToolTip::setPalette(ours);
}

void paintWarningMark(QPainter& painter, const QRectF& rect, const QColor& color) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color, 1.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    const QRectF r = rect.adjusted(0.7, 0.7, -0.7, -0.7);
    QPainterPath path;
    path.moveTo(r.center().x(), r.top());
    path.lineTo(r.right(), r.bottom());
    path.lineTo(r.left(), r.bottom());
    path.closeSubpath();
    painter.drawPath(path);
    const double x = r.center().x();
    painter.drawLine(QPointF(x, r.top() + r.height() * 0.38), QPointF(x, r.top() + r.height() * 0.62));
    painter.drawPoint(QPointF(x, r.top() + r.height() * 0.82));
    painter.restore();
}

QFont fontOfSize(const QFont& font, int pixels, bool bold) {
    QFont result = font;
    result.setPixelSize(pixels);
    result.setBold(bold);
    return result;
}

} // namespace drx9
