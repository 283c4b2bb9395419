#pragma once

#include <QWidget>

namespace drx9 {

/// The amber plate of the main bar. Its place is reserved: empty, it is hidden and keeps it. It shows the
/// long text where there is room for it, else the short one; the long one is its tooltip. Announced to screen
/// readers when its subject changes, not each time a count in it does: its accessible name is the text as the
/// notice came, the description the text as it is now.
class NoticePlate : public QWidget {
    Q_OBJECT
public:
    explicit NoticePlate(QWidget* parent = nullptr);

    /// `subject` tells one notice from another; an empty text clears the plate.
    void showNotice(int subject, const QString& text, const QString& brief);
    [[nodiscard]] const QString& text() const { return text_; }
    [[nodiscard]] QString shownText() const;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] int plateWidth(const QString& text) const;
    void announce();

    int subject_ = 0;
    QString text_;
    QString brief_;
};

} // namespace drx9
