#pragma once

#include "controls/TextWidths.h"
#include "util/Tone.h"

#include <QWidget>

namespace drx9 {

/// A word with a warning triangle before it, except where its tone is Plain.
class MarkLabel : public QWidget {
    Q_OBJECT
public:
    explicit MarkLabel(QWidget* parent = nullptr);

    void say(const QString& text, Tone tone);
    [[nodiscard]] const QString& text() const { return text_; }
    [[nodiscard]] Tone tone() const { return tone_; }
    void setTextPixels(int pixels, bool bold);
    /// A text that one line does not hold goes on in a second one.
    void setTwoLines();
    /// A hair line at the left edge, as between the fields of a status bar.
    void setSeparator(bool on);

    [[nodiscard]] QSize sizeHint() const override;
    /// What sizeHint() would be wide with this text.
    [[nodiscard]] int widthFor(const QString& text, Tone tone) const;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    [[nodiscard]] int markWidth() const;
    [[nodiscard]] QString fitting(int room) const;

    mutable TextWidths widths_;
    QString text_;
    Tone tone_ = Tone::Plain;
    bool separator_ = false;
    int lines_ = 1;
};

} // namespace drx9
