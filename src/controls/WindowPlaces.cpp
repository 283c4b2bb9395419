#include "controls/WindowPlaces.h"

#include <QApplication>
#include <QEvent>
#include <QLayout>
#include <QScreen>
#include <QSettings>
#include <QWidget>

#include <algorithm>
#include <utility>

namespace drx9 {

namespace {
int area(const QRect& rect) {
    return rect.isValid() ? rect.width() * rect.height() : 0;
}

bool isFixed(const QWidget& window) {
    const QLayout* layout = window.layout();
    return layout != nullptr && layout->sizeConstraint() == QLayout::SetFixedSize;
}

QList<QRect> presentScreens() {
    QList<QRect> rects;
    for (const QScreen* screen : QGuiApplication::screens()) { // the main one comes first
        rects.push_back(screen->availableGeometry());
    }
    return rects;
}

/// What the desktop puts around a window: title bar and edges.
QSize frameOf(const QWidget& window) {
    return window.isMaximized() ? QSize(0, 0) : window.frameSize() - window.size();
}

/// Qt puts only what has an owner over that.
void putOverActive(QWidget& window) {
    const QWidget* active = QApplication::activeWindow();
    if (active == nullptr || window.parentWidget() != nullptr) {
        return;
    }
    QRect place(QPoint(), window.size());
    place.moveCenter(active->frameGeometry().center());
    window.move(WindowPlaces::onScreen(place, presentScreens()).topLeft());
}

QString key(const QWidget& window, const char* what) {
    return window.objectName() + QLatin1Char('/') + QLatin1String(what);
}
} // namespace

WindowPlaces::WindowPlaces(QString file)
    : file_(std::move(file)) {}

QRect WindowPlaces::onScreen(const QRect& wanted, const QList<QRect>& screens) {
    if (screens.isEmpty()) {
        return wanted;
    }
    const QRect* best = &screens.front();
    for (const QRect& screen : screens) {
        if (area(screen & wanted) > area(*best & wanted)) {
            best = &screen;
        }
    }
    const QSize size = wanted.size().boundedTo(best->size());
    const int x = std::clamp(wanted.x(), best->left(), best->right() + 1 - size.width());
    const int y = std::clamp(wanted.y(), best->top(), best->bottom() + 1 - size.height());
    return {QPoint(x, y), size};
}

bool WindowPlaces::follow(QWidget& window) {
    if (file_.isEmpty()) {
        return false;
    }
    window.installEventFilter(this);
    const QSettings places(file_, QSettings::IniFormat);
    const QRect kept = places.value(key(window, "place")).toRect();
    if (!kept.isValid()) {
        putOverActive(window);
        return false;
    }
    const QSize frame = places.value(key(window, "frame")).toSize().expandedTo(QSize(0, 0));
    const QSize size = isFixed(window) ? window.sizeHint() : kept.size().expandedTo(window.minimumSize());
    const QRect place = onScreen(QRect(kept.topLeft(), size + frame), presentScreens());
    if (!isFixed(window)) {
        window.resize(place.size() - frame);
    }
    window.move(place.topLeft());
    if (places.value(key(window, "maximized")).toBool()) {
        window.setWindowState(window.windowState() | Qt::WindowMaximized);
    }
    return true;
}

bool WindowPlaces::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Hide && !event->spontaneous()) {
        keep(*static_cast<QWidget*>(watched)); // only windows are followed
    }
    return false;
}

void WindowPlaces::keep(const QWidget& window) const {
    QRect place(window.pos(), window.size());
    if (window.isMaximized()) {
        place = window.normalGeometry();
    }
    QSettings places(file_, QSettings::IniFormat);
    places.setValue(key(window, "place"), place);
    places.setValue(key(window, "frame"), frameOf(window));
    places.setValue(key(window, "maximized"), window.isMaximized());
}

} // namespace drx9
