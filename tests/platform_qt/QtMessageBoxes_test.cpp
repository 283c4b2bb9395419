#include "platform/qt/QtMessageBoxes.h"

#include <QApplication>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <functional>

using namespace drx9;

namespace {

QList<QMessageBox*> boxes() {
    QList<QMessageBox*> found;
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (auto* box = qobject_cast<QMessageBox*>(widget); box != nullptr && box->isVisible())
            found << box;
    return found;
}

/// Calls the action with the box once it stands.
void onBox(std::function<void(QMessageBox&)> action) {
    QTimer::singleShot(20, qApp, [action] {
        ASSERT_EQ(boxes().size(), 1);
        action(*boxes().front());
    });
}

void pressEscape(QMessageBox& box) {
    QTest::keyClick(&box, Qt::Key_Escape);
}
void closeBox(QMessageBox& box) {
    box.close();
}

TEST(QtMessageBoxesTest, AnswersFollowTheButtonAndEscMeansNo) {
    QtMessageBoxes messages;
    const auto press = [](QMessageBox::StandardButton button) {
        return [button](QMessageBox& box) { QTest::mouseClick(box.button(button), Qt::LeftButton); };
    };
    const auto enter = [](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Return); };
    const struct {
        const char* name;
        bool yesNo;
        std::function<void(QMessageBox&)> answer;
        bool expected;
    } cases[] = {
        {"yes", true, press(QMessageBox::Yes), true},         {"no", true, press(QMessageBox::No), false},
        {"esc of yes/no", true, pressEscape, false},          {"close box of yes/no", true, closeBox, false},
        {"enter takes the first button", true, enter, true},  {"ok", false, press(QMessageBox::Ok), true},
        {"cancel", false, press(QMessageBox::Cancel), false}, {"esc of ok/cancel", false, pressEscape, false},
        {"close box of ok/cancel", false, closeBox, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        onBox(c.answer);
        const bool answer = c.yesNo ? messages.askYesNo("Go on?", "Title", MessageIcon::Question)
                                    : messages.askOkCancel("Go on?", "Title", MessageIcon::Question);
        EXPECT_EQ(answer, c.expected);
        EXPECT_TRUE(boxes().empty());
    }
}

TEST(QtMessageBoxesTest, ShowsTextAsItIsAndOnTopWhenSystemModal) {
    QtMessageBoxes messages;
    for (const bool systemModal : {false, true}) {
        onBox([&](QMessageBox& box) {
            EXPECT_EQ(box.text(), "<b>3 < 4</b>\nÅ");
            EXPECT_EQ(box.textFormat(), Qt::PlainText);
            EXPECT_EQ(box.icon(), QMessageBox::Warning);
            EXPECT_EQ(box.windowFlags().testFlag(Qt::WindowStaysOnTopHint), systemModal);
            pressEscape(box);
        });
        messages.show("<b>3 < 4</b>\nÅ", "Title", MessageIcon::Exclamation, systemModal);
    }
}

TEST(QtMessageBoxesTest, SurvivesTheWindowUnderTheBox) {
    QtMessageBoxes messages;
    auto* window = new QWidget;
    window->show();
    QApplication::setActiveWindow(window);
    onBox([&](QMessageBox& box) {
        EXPECT_EQ(box.parentWidget(), window);
        delete window;
    });
    EXPECT_FALSE(messages.askYesNo("Go on?", "Title", MessageIcon::Question));
}

TEST(QtMessageBoxesTest, OneNonBlockingBoxThatTakesTheNewText) {
    QtMessageBoxes messages;
    messages.closeNonBlocking();
    messages.showNonBlocking("first", "Title", MessageIcon::Critical);
    messages.showNonBlocking("second", "Title", MessageIcon::Critical);
    ASSERT_EQ(boxes().size(), 1);
    EXPECT_EQ(boxes().front()->text(), "second");
    EXPECT_FALSE(boxes().front()->isModal());
    messages.closeNonBlocking();
    EXPECT_TRUE(boxes().empty());
    // Answered by the operator: gone, and a new one can come.
    messages.showNonBlocking("third", "Title", MessageIcon::Critical);
    QTest::mouseClick(boxes().front()->button(QMessageBox::Ok), Qt::LeftButton);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(boxes().empty());
    messages.showNonBlocking("fourth", "Title", MessageIcon::Critical);
    EXPECT_EQ(boxes().size(), 1);
}

} // namespace
