#include "platform/qt/QtMessageBoxes.h"

#include <QApplication>
#include <QLabel>

#include <algorithm>
#include <utility>

namespace drx9 {

namespace {

constexpr int kLeastWidth = 240;

QMessageBox::Icon iconOf(MessageIcon icon) {
    switch (icon) {
    case MessageIcon::Information:
        return QMessageBox::Information;
    case MessageIcon::Question:
        return QMessageBox::Question;
    case MessageIcon::Exclamation:
        return QMessageBox::Warning;
    case MessageIcon::Critical:
        return QMessageBox::Critical;
    case MessageIcon::None:
        break;
    }
    return QMessageBox::NoIcon;
}

void fill(QMessageBox& box, const std::string& text, const std::string& title, MessageIcon icon) {
    box.setTextFormat(Qt::PlainText);
    box.setText(QString::fromStdString(text));
    box.setWindowTitle(QString::fromStdString(title));
    box.setIcon(iconOf(icon));
    if (auto* label = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"))) { // Qt's name for it
        // A short text would cut the title.
        label->setMinimumWidth(label->sizeHint().width() < kLeastWidth ? kLeastWidth : 0);
    }
}

/// Help never owns a box: it follows what is modal, so that each would belong to the other.
bool mayOwn(const QWidget* window) {
    return window != nullptr && !window->property("followsModal").toBool();
}

/// A dialog that is there for one answer only.
bool isPassing(const QWidget& window) {
    return window.inherits("QMessageBox") || window.inherits("QInputDialog") ||
           window.inherits("QFileDialog") || window.inherits("QPrintDialog");
}

/// The window that a box belongs to: what is modal goes before what is active. Where none is (another program
/// is, or the box before has just closed) the window takes it that had the focus `last`, else the main one.
QWidget* ownerOfBox(QWidget* last) {
    if (QWidget* modal = QApplication::activeModalWidget()) {
        return modal;
    }
    if (QWidget* active = QApplication::activeWindow(); mayOwn(active)) {
        return active;
    }
    if (last != nullptr && last->isVisible()) {
        return last;
    }
    const QWidgetList windows = QApplication::topLevelWidgets();
    const auto main = std::find_if(windows.begin(), windows.end(), [](const QWidget* window) {
        return window->isVisible() && window->inherits("QMainWindow");
    });
    return main == windows.end() ? nullptr : *main;
}

/// On the heap and guarded: the window under it may go while it is open.
QPointer<QMessageBox> makeBox(QWidget* owner, const std::string& text, const std::string& title,
                              MessageIcon icon) {
    QPointer<QMessageBox> box = new QMessageBox(owner);
    fill(*box, text, title, icon);
    return box;
}

/// A box that nobody asked for: it stops nothing and takes no focus.
QPointer<QMessageBox> makeUnattended(QWidget* owner, const std::string& text, const std::string& title,
                                     MessageIcon icon, const char* name) {
    QPointer<QMessageBox> box = makeBox(owner, text, title, icon);
    box->setObjectName(name);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setAttribute(Qt::WA_ShowWithoutActivating);
    box->setModal(false);
    return box;
}

/// The button pressed; `escape` also for Esc, the close box and a window that went away under the box.
QMessageBox::StandardButton ask(const QPointer<QMessageBox>& box, QMessageBox::StandardButtons buttons,
                                QMessageBox::StandardButton escape) {
    box->setObjectName("MsgBox");
    box->setStandardButtons(buttons);
    box->setEscapeButton(escape);
    box->exec();
    if (!box) {
        return escape;
    }
    const QMessageBox::StandardButton pressed = box->standardButton(box->clickedButton());
    delete box.data();
    return pressed == QMessageBox::NoButton ? escape : pressed;
}

} // namespace

QtMessageBoxes::QtMessageBoxes() {
    QObject::connect(qApp, &QApplication::focusChanged, &context_, [this](QWidget*, QWidget* now) {
        QWidget* window = now == nullptr ? nullptr : now->window();
        if (window != nullptr && isPassing(*window)) {
            window = window->parentWidget() == nullptr ? nullptr : window->parentWidget()->window();
        }
        if (mayOwn(window)) {
            lastActive_ = window;
        }
    });
}

QtMessageBoxes::~QtMessageBoxes() {
    delete nonBlocking_.data();
    delete question_.data();
}

void QtMessageBoxes::show(const std::string& text, const std::string& title, MessageIcon icon,
                          bool systemModal) {
    if (ending_) {
        return;
    }
    const QPointer<QMessageBox> box = makeBox(ownerOfBox(lastActive_), text, title, icon);
    box->setWindowModality(Qt::ApplicationModal);
    if (systemModal) {
        box->setWindowFlag(Qt::WindowStaysOnTopHint);
    }
    ask(box, QMessageBox::Ok, QMessageBox::Ok);
}

bool QtMessageBoxes::askYesNo(const std::string& text, const std::string& title, MessageIcon icon) {
    return !ending_ && ask(makeBox(ownerOfBox(lastActive_), text, title, icon),
                           QMessageBox::Yes | QMessageBox::No, QMessageBox::No) == QMessageBox::Yes;
}

bool QtMessageBoxes::askOkCancel(const std::string& text, const std::string& title, MessageIcon icon) {
    return !ending_ && ask(makeBox(ownerOfBox(lastActive_), text, title, icon),
                           QMessageBox::Ok | QMessageBox::Cancel, QMessageBox::Cancel) == QMessageBox::Ok;
}

void QtMessageBoxes::showNonBlocking(const std::string& text, const std::string& title, MessageIcon icon) {
    if (ending_) {
        return;
    }
    if (!nonBlocking_) {
        nonBlocking_ = makeUnattended(ownerOfBox(lastActive_), text, title, icon, "MsgBoxNonBlocking");
        nonBlocking_->setStandardButtons(QMessageBox::Ok);
    }
    fill(*nonBlocking_, text, title, icon);
    nonBlocking_->show();
}

void QtMessageBoxes::closeNonBlocking() {
    delete nonBlocking_.data();
}

void QtMessageBoxes::askYesNoLater(const std::string& text, const std::string& title, MessageIcon icon,
                                   std::function<void(bool)> answered) {
    dropQuestion();
    if (ending_) {
        return;
    }
    question_ = makeUnattended(ownerOfBox(lastActive_), text, title, icon, "MsgBoxQuestion");
    question_->setStandardButtons(QMessageBox::Yes | QMessageBox::No);
    question_->setEscapeButton(QMessageBox::No);
    // Enter must not answer Yes: nobody asked for the box.
    question_->setDefaultButton(QMessageBox::No);
    QMessageBox* box = question_;
    QObject::connect(box, &QMessageBox::finished, box, [box, answered = std::move(answered)] {
        answered(box->standardButton(box->clickedButton()) == QMessageBox::Yes);
    });
    question_->show();
}

void QtMessageBoxes::dropQuestion() {
    delete question_.data();
}

void QtMessageBoxes::endSession() {
    ending_ = true;
    closeNonBlocking();
    dropQuestion();
}

} // namespace drx9
