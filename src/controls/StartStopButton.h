#pragma once

#include <QPushButton>

namespace drx9 {

/// START on pure green, STOP on pure red, black on both whatever the theme; the face is never tinted. A
/// triangle or a square is left of the caption. The focus ring lies 3 px outside the face, inside the
/// widget.
class StartStopButton : public QPushButton {
    Q_OBJECT
public:
    explicit StartStopButton(QWidget* parent = nullptr);

    void setRunning(bool running);
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

    static constexpr int kFaceWidth = 168;
    static constexpr int kRing = 5; ///< ring and gap around the face
    void setFaceHeight(int height);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool running_ = false;
    int faceHeight_ = 52;
};

} // namespace drx9
