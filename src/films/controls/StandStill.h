#pragma once

#include <QApplication>
#include <QPointer>
#include <QWidget>

#include <initializer_list>
#include <vector>

namespace drx9 {

/// Parts of a window take no input as long as this lives; then the widget that had the focus gets it back.
/// The parts outlive it.
class StandStill {
public:
    StandStill(std::initializer_list<QWidget*> parts)
        : parts_(parts)
        , focus_(QApplication::focusWidget()) {
        enable(false);
    }
    StandStill(const StandStill&) = delete;
    StandStill& operator=(const StandStill&) = delete;
    ~StandStill() {
        enable(true);
        if (focus_ != nullptr) {
            focus_->setFocus();
        }
    }

private:
    void enable(bool on) {
        for (QWidget* part : parts_) {
            part->setEnabled(on);
        }
    }

    std::vector<QWidget*> parts_;
    QPointer<QWidget> focus_;
};

} // namespace drx9
