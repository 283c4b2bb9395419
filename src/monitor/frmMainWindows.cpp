// The main window's keys, and the windows that open from it.
#include "monitor/frmMain.h"

#include "controls/Readout.h"
#include "controls/WindowPlaces.h"

#include <QApplication>
#include <QDialog>
#include <QShortcut>
#include <QStackedLayout>

#include <array>

namespace drx9 {

void frmMain::openWindow(std::size_t index) {
    const WindowEntry& entry = parts_.windows[index];
    QPointer<QWidget>& window = windows_[index];
    // One that has closed may live on for a moment.
    const bool isOpen = window != nullptr && !window->isHidden();
    if (!isOpen && entry.holdsTimer) {
        if (!parts_.run.carryOutBeforeWindow()) {
            return;
        }
        parts_.boxes.closeNonBlocking(); // a modal window would make it dead
    }
    if (!isOpen) {
        makeWindow(index);
    }
    if (auto* dialog = qobject_cast<QDialog*>(window.data()); dialog != nullptr && entry.modal) {
        dialog->open();
    }
    window->show();
    window->raise();
    window->activateWindow();
}

void frmMain::makeWindow(std::size_t index) {
    windows_[index] = parts_.windows[index].make(this);
    if (parts_.places != nullptr) {
        parts_.places->follow(*windows_[index]);
    }
}

void frmMain::showHelp() {
    setHourglass(true);
    parts_.help.showIndex();
    setHourglass(false);
}

void frmMain::addKey(const QKeySequence& key, std::function<void()> action) {
    auto* shortcut = new QShortcut(key, this);
    shortcut->setAutoRepeat(false);
    connect(shortcut, &QShortcut::activated, this, std::move(action));
}

void frmMain::buildKeys() {
    addKey(Qt::Key_F4, [this] { bar_->openFilms(); });
    addKey(Qt::Key_F6, [this] { nextRegion(1); });
    addKey(Qt::SHIFT | Qt::Key_F6, [this] { nextRegion(-1); });
    addKey(Qt::SHIFT | Qt::Key_F7, [this] { bar_->pressZero(); });
    addKey(Qt::SHIFT | Qt::Key_F8, [this] { bar_->pressShutter(); });
    addKey(Qt::SHIFT | Qt::Key_F9, [this] { bar_->pressStartStop(); });
}

/// Regions in their order: bar, readouts, chart.
void frmMain::nextRegion(int direction) {
    const QWidget* focus = QApplication::focusWidget();
    int region = 0;
    if (qobject_cast<const Readout*>(focus) != nullptr) {
        region = 1;
    } else if (focus != nullptr && focus == charts_->currentWidget()) {
        region = 2;
    }
    const std::array<QWidget*, 3> entries{bar_->entry(), readoutPanel_->entry(), charts_->currentWidget()};
    for (int step = 1; step <= 3; ++step) {
        QWidget* next = entries[static_cast<std::size_t>((region + direction * step + 6) % 3)];
        if (next->isVisible()) {
            next->setFocus(Qt::TabFocusReason);
            return;
        }
    }
}

} // namespace drx9
