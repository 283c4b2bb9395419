#include "graphs/controls/ChartMouse.h"

#include <algorithm>
#include <cmath>

namespace drx9 {

namespace {
constexpr double kDragFrom = 4; ///< pixels
constexpr double kWheelZoom = 0.85;
constexpr double kMostNotches = 20;
constexpr double kPanStep = 0.1;
constexpr double kZoomStep = 0.8;

ValueSpan shifted(const ValueSpan& span, double by) {
    return {span.from + by, span.to + by};
}

/// `share` of the span, from its start, stays where it is.
ValueSpan scaled(const ValueSpan& span, double factor, double share) {
    const double fixed = span.from + span.size() * share;
    return {fixed - span.size() * share * factor, fixed + span.size() * (1 - share) * factor};
}
} // namespace

Qt::Orientations ChartMouse::alongAt(const QPointF& at) const {
    if (at.y() > plot_.bottom() + 1) {
        return Qt::Horizontal;
    }
    return at.x() < plot_.left() ? Qt::Vertical : Qt::Horizontal | Qt::Vertical;
}

void ChartMouse::press(const QPointF& at) {
    pressed_ = Press{at, model_.xView(), model_.yView()};
}

bool ChartMouse::move(const QPointF& at) {
    if (!pressed_) {
        return false;
    }
    const QPointF moved = at - pressed_->at;
    pressed_->dragged = pressed_->dragged || std::hypot(moved.x(), moved.y()) >= kDragFrom;
    if (!pressed_->dragged) {
        return false;
    }
    const Qt::Orientations along = alongAt(pressed_->at);
    if (along.testFlag(Qt::Horizontal) && (moved.x() != 0 || !model_.following())) {
        model_.setXView(shifted(pressed_->x, -moved.x() / plot_.width() * pressed_->x.size()));
    }
    if (along.testFlag(Qt::Vertical) && (moved.y() != 0 || model_.yView() != pressed_->y)) {
        model_.setYView(shifted(pressed_->y, moved.y() / plot_.height() * pressed_->y.size()));
    }
    return true;
}

bool ChartMouse::release() {
    const bool clicked = pressed_ && !pressed_->dragged;
    pressed_.reset();
    return clicked;
}

void ChartMouse::wheel(const QPointF& at, double notches) {
    scale(at, std::pow(kWheelZoom, std::clamp(notches, -kMostNotches, kMostNotches)), alongAt(at));
}

void ChartMouse::scale(const QPointF& about, double factor, Qt::Orientations along) {
    if (factor == 1) {
        return;
    }
    const double x = std::clamp((about.x() - plot_.left()) / plot_.width(), 0.0, 1.0);
    const double y = std::clamp((plot_.bottom() + 1 - about.y()) / plot_.height(), 0.0, 1.0);
    if (along.testFlag(Qt::Horizontal)) {
        model_.setXView(scaled(model_.xView(), factor, x));
    }
    if (along.testFlag(Qt::Vertical)) {
        model_.setYView(scaled(model_.yView(), factor, y));
    }
}

void ChartMouse::pan(Qt::Orientation orientation, double share) {
    if (orientation == Qt::Horizontal) {
        model_.setXView(shifted(model_.xView(), model_.xView().size() * share));
    } else {
        model_.setYView(shifted(model_.yView(), model_.yView().size() * share));
    }
}

void ChartMouse::zoomIn(Qt::Orientations along) {
    scale(QRectF(plot_).center(), kZoomStep, along);
}

void ChartMouse::zoomOut(Qt::Orientations along) {
    scale(QRectF(plot_).center(), 1 / kZoomStep, along);
}

bool ChartMouse::zoomKey(int key, Qt::KeyboardModifiers modifiers) {
    // "+" needs Shift on some keyboards: there only that of the number pad means Y.
    const bool keypad = modifiers.testFlag(Qt::KeypadModifier);
    const bool plain = key == Qt::Key_Plus || key == Qt::Key_Asterisk;
    const bool onlyY = modifiers.testFlag(Qt::ShiftModifier) && (keypad || !plain);
    const Qt::Orientations along = modifiers.testFlag(Qt::ControlModifier) ? Qt::Orientations(Qt::Horizontal)
                                   : onlyY                                 ? Qt::Orientations(Qt::Vertical)
                                                                           : Qt::Horizontal | Qt::Vertical;
    if (plain || key == Qt::Key_Equal) {
        zoomIn(along);
        return true;
    }
    if (key == Qt::Key_Minus || key == Qt::Key_Underscore) {
        zoomOut(along);
        return true;
    }
    return false;
}

bool ChartMouse::key(int key, Qt::KeyboardModifiers modifiers) {
    const bool command = modifiers.testFlag(Qt::ControlModifier) || modifiers.testFlag(Qt::AltModifier) ||
                         modifiers.testFlag(Qt::MetaModifier);
    switch (key) {
    case Qt::Key_Left:
    case Qt::Key_Right:
        pan(Qt::Horizontal, key == Qt::Key_Left ? -kPanStep : kPanStep);
        return true;
    case Qt::Key_Up:
    case Qt::Key_Down:
        pan(Qt::Vertical, key == Qt::Key_Up ? kPanStep : -kPanStep);
        return true;
    case Qt::Key_F:
        if (!command) {
            model_.fitY();
        }
        return !command;
    case Qt::Key_W:
        if (!command) {
            model_.viewWholeRun();
        }
        return !command;
    default:
        return zoomKey(key, modifiers);
    }
}

} // namespace drx9
