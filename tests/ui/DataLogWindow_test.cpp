// The data log window: what it shows of the settings and what its controls set.
#include "ui/UiFixture.h"

#include "monitor/frmDataLog.h"

#include <QSpinBox>

namespace drx9 {
namespace {

class DataLogWindow : public UiFixture {
protected:
    void open() {
        settings.log.Type = LogMode::Append;
        settings.log.Start = 3725;
        settings.log.End = 7384;
        settings.log.Interval = 61;
        dialog = new frmDataLog({settings.log, log, files, dialogs, shell, boxes, actions}, window.get());
        dialog->show();
    }
    int value(const char* name) { return find<QSpinBox>(name)->value(); }
    void enter(const char* name, const char* text) {
        type(name, text);
        QTest::keyClick(find(name), Qt::Key_Return);
    }

    frmDataLog* dialog = nullptr; ///< goes with the main window
};

TEST_F(DataLogWindow, EndsOfTheSpanPushEachOther) {
    open();
    EXPECT_EQ(dialog->windowTitle().toStdString(), "Data Log - [ drx9.txt ]");
    EXPECT_FALSE(find("cmdView")->isEnabled()) << "there is no file yet";
    EXPECT_EQ(textOf("spnStartMin"), "02");
    EXPECT_EQ(value("spnEndMin"), 3);
    enter("spnStartHour", "3"); // 3:02:05 is after the end
    EXPECT_EQ(settings.log.Start, 10925);
    EXPECT_EQ(settings.log.End, 10925);
    EXPECT_EQ(value("spnEndHour"), 3);
    EXPECT_EQ(value("spnEndSec"), 5);
    enter("spnEndHour", "1");
    EXPECT_EQ(settings.log.End, 3725);
    EXPECT_EQ(settings.log.Start, 3725);
    EXPECT_EQ(value("spnStartHour"), 1);
    QTest::keyClick(find<QSpinBox>("spnIntSec"), Qt::Key_Up);
    EXPECT_EQ(settings.log.Interval, 62);
}

TEST_F(DataLogWindow, NewTakesAnotherFileAndViewOpensItOrSaysWhyNot) {
    settings.log.File = "run"; // no dot: the dialog starts with ".xls" added
    open();
    click("cmdNew");
    EXPECT_EQ(dialogs.request.fileName, "run.xls");
    EXPECT_EQ(dialogs.request.title, "New Log File");
    EXPECT_EQ(settings.log.File, "run") << "cancelled";
    dialogs.answer = "/app/new.txt";
    files.append("/app/new.txt", "x");
    click("cmdNew");
    EXPECT_EQ(settings.log.File, "/app/new.txt");
    EXPECT_EQ(dialog->windowTitle().toStdString(), "Data Log - [new.txt]");
    click("cmdView");
    EXPECT_EQ(shell.opened, "/app/new.txt");
    shell.reason = "No program opens this file.";
    boxes.expectShow("No program opens this file.");
    click("cmdView");
}

} // namespace
} // namespace drx9
