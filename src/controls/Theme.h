#pragma once

#include "util/Tone.h"

#include <QColor>
#include <QPalette>

#include <optional>

class QApplication;
class QPainter;

namespace drx9 {

/// The program's colours by role. Which set holds is told by a palette: ours carry `ground` as their window
/// colour, any other palette (high contrast) keeps its own colours, from which the roles are drawn.
struct Theme {
    QColor ground;     ///< windows
    QColor base;       ///< input faces
    QColor plot;       ///< chart ground
    QColor button;     ///< button faces, headers
    QColor text;       ///< text, live values, average curves
    QColor muted;      ///< labels, status bar, axis numbers
    QColor stale;      ///< old values, the dash of an empty readout
    QColor disabled;   ///< disabled captions
    QColor line;       ///< control borders, axes, gauge, tracer
    QColor hair;       ///< group frames, separators
    QColor grid;       ///< major grid lines
    QColor accent;     ///< focus, selection, default button
    QColor accentText; ///< on accent
    QColor warn;       ///< amber words and marks, plate border
    QColor warnFill;   ///< notice plate
    QColor warnText;   ///< on warnFill
    QColor alarm;      ///< off line, log not written
    QColor sensor1, sensor2, sensor3, sensor4, sensor5, sensor6;

    [[nodiscard]] const QColor& sensor(int number) const; ///< 1..6
    [[nodiscard]] const QColor& tone(Tone tone) const;    ///< muted, warn or alarm

    static const Theme& light();
    static const Theme& dark();
    /// The roles that a palette stands for.
    static Theme of(const QPalette& palette);
    /// The application palette that carries the roles.
    [[nodiscard]] QPalette palette() const;
};

/// Palette role that carries `muted`: no link of the program is ever shown as visited.
inline constexpr QPalette::ColorRole kMutedRole = QPalette::LinkVisited;

/// Gives the application its style, font size and colours after the desktop's palette. Called once before the
/// first window.
void applyDesktopTheme(QApplication& application);
/// Takes the colours again after the desktop's have changed. `dark` is what the desktop said in words; empty
/// leaves it to its palette. A high-contrast palette is kept whatever it says.
void followDesktop(QApplication& application, std::optional<bool> dark = {});

/// Warning triangle with an exclamation mark, as wide and high as `rect`.
void paintWarningMark(QPainter& painter, const QRectF& rect, const QColor& color);

/// Application font with another size.
QFont fontOfSize(const QFont& font, int pixels, bool bold = false);

} // namespace drx9
