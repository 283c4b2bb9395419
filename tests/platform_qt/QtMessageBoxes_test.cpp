#include "platform/qt/QtMessageBoxes.h"

#include <QApplication>
#include <QDialog>
#include <QInputDialog>
#include <QLineEdit>
#include <QMainWindow>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <functional>

using namespace drx9;

namespace {

using Answer = std::function<void(QMessageBox&)>;

QList<QMessageBox*> boxes() {
    QList<QMessageBox*> found;
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (auto* box = qobject_cast<QMessageBox*>(widget); box != nullptr && box->isVisible()) {
            found << box;
        }
    }
    return found;
}

/// Gives the answer to the box once it is open.
void onBox(const Answer& answer) {
    QTimer::singleShot(0, qApp, [answer] {
        ASSERT_EQ(boxes().size(), 1);
        answer(*boxes().front());
    });
}

Answer press(QMessageBox::StandardButton button) {
    return [button](QMessageBox& box) { QTest::mouseClick(box.button(button), Qt::LeftButton); };
}

TEST(QtMessageBoxesTest, AnswersFollowTheButtonAndEscMeansNo) {
    const Answer escape = [](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Escape); };
    const Answer close = [](QMessageBox& box) { box.close(); };
    const Answer underneath = [](QMessageBox& box) { delete box.parentWidget(); };
    const std::tuple<const char*, bool, Answer, bool> cases[] = {
        {"yes", true, press(QMessageBox::Yes), true},
        {"esc of yes/no", true, escape, false},
        {"the window under it goes", true, underneath, false},
        {"ok", false, press(QMessageBox::Ok), true},
        {"cancel", false, press(QMessageBox::Cancel), false},
        {"close box of ok/cancel", false, close, false},
    };
    QtMessageBoxes messages;
    for (const auto& [name, yesNo, given, expected] : cases) {
        SCOPED_TRACE(name);
        const QPointer<QWidget> window = new QWidget;
        window->show();
        QApplication::setActiveWindow(window);
        onBox(given);
        const bool answer = yesNo ? messages.askYesNo("Go on?", "Title", MessageIcon::Question)
                                  : messages.askOkCancel("Go on?", "Title", MessageIcon::Question);
        EXPECT_EQ(answer, expected);
        EXPECT_TRUE(boxes().empty());
        delete window;
    }
}

TEST(QtMessageBoxesTest, BelongToTheWindowThatHadTheFocusAlsoBehindAnotherBoxOrDialog) {
    QtMessageBoxes messages;
    QMainWindow main;
    main.show();
    auto* front = new QDialog(&main);
    auto* field = new QLineEdit(front);
    front->show();
    front->activateWindow();
    field->setFocus();
    ASSERT_TRUE(QTest::qWaitForWindowActive(front));
    {
        QInputDialog asks(front);
        asks.show();
        asks.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&asks));
    }
    for (int box = 0; box < 2; ++box) {
        QApplication::setActiveWindow(nullptr); // as between a dialog that has closed and the window under it
        onBox([&](QMessageBox& shown) {
            EXPECT_EQ(shown.parentWidget(), front);
            press(QMessageBox::Ok)(shown);
        });
        messages.show("Text", "Title", MessageIcon::Critical);
    }
}

TEST(QtMessageBoxesTest, OneNonBlockingBoxThatTakesTheNewText) {
    QtMessageBoxes messages;
    messages.closeNonBlocking();
    messages.showNonBlocking("first", "Title", MessageIcon::Critical);
    press(QMessageBox::Ok)(*boxes().front()); // answered by the operator: a new one can come
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(boxes().empty());
    messages.showNonBlocking("second", "Title", MessageIcon::Critical);
    messages.showNonBlocking("<b>third</b>", "Title", MessageIcon::Critical);
    ASSERT_EQ(boxes().size(), 1);
    EXPECT_EQ(boxes().front()->text(), "<b>third</b>");
    EXPECT_EQ(boxes().front()->textFormat(), Qt::PlainText);
    EXPECT_FALSE(boxes().front()->isModal());
    messages.closeNonBlocking();
    EXPECT_TRUE(boxes().empty());
    onBox([](QMessageBox& box) {
        EXPECT_TRUE(box.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
        press(QMessageBox::Ok)(box);
    });
    messages.show("over everything", "Title", MessageIcon::Exclamation, true);
}

} // namespace
