#include "graphs/controls/ChartMouse.h"

#include <algorithm>
#include <cmath>

namespace drx9 {

namespace {
constexpr double kDragFrom = 4; ///< pixels
constexpr double kWheelZoom = 0.85;
constexpr double kMostNotches = 20;

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
    if (along.testFlag(Qt::Vertical)) {
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

void ChartMouse::zoom(double factor, Qt::Orientations along) {
    scale(QRectF(plot_).center(), factor, along);
}

} // namespace drx9
