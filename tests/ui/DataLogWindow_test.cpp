// The data log window: what it shows of the settings and what its controls set.
#include "ui/UiFixture.h"

#include "monitor/frmDataLog.h"

#include <QPushButton>
#include <QRadioButton>
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
    void type(const char* name, const char* text) {
        auto* box = find<QSpinBox>(name);
        box->setFocus();
        box->selectAll();
        QTest::keyClicks(box, QString::fromLatin1(text));
        QTest::keyClick(box, Qt::Key_Return);
    }

    frmDataLog* dialog = nullptr; ///< goes with the main window
};

TEST_F(DataLogWindow, ShowsTheSettings) {
    open();
    EXPECT_EQ(dialog->windowTitle().toStdString(), "Data Log - [ drx9.txt ]");
    EXPECT_TRUE(find<QRadioButton>("optLog_2")->isChecked());
    const std::pair<const char*, int> values[] = {{"spnStartHour", 1}, {"spnStartMin", 2}, {"spnStartSec", 5},
                                                  {"spnEndHour", 2},   {"spnEndMin", 3},   {"spnEndSec", 4},
                                                  {"spnIntMin", 1},    {"spnIntSec", 1}};
    for (const auto& [name, wanted] : values) {
        EXPECT_EQ(value(name), wanted) << name;
    }
    EXPECT_EQ(find<QSpinBox>("spnStartMin")->text().toStdString(), "02");
    EXPECT_FALSE(find<QPushButton>("cmdView")->isEnabled()) << "there is no file yet";
}

TEST_F(DataLogWindow, EndsOfTheSpanPushEachOther) {
    open();
    type("spnStartHour", "3"); // 3:02:05 is after the end
    EXPECT_EQ(settings.log.Start, 10925);
    EXPECT_EQ(settings.log.End, 10925);
    EXPECT_EQ(value("spnEndHour"), 3);
    EXPECT_EQ(value("spnEndSec"), 5);
    type("spnEndHour", "1");
    EXPECT_EQ(settings.log.End, 3725);
    EXPECT_EQ(settings.log.Start, 3725);
    EXPECT_EQ(value("spnStartHour"), 1);
    QTest::keyClick(find<QSpinBox>("spnIntSec"), Qt::Key_Up);
    EXPECT_EQ(settings.log.Interval, 62);
}

TEST_F(DataLogWindow, NewTakesAnotherFile) {
    settings.log.File = "run"; // no dot: the dialog starts with ".xls" added
    open();
    click("cmdNew");
    EXPECT_EQ(dialogs.request.fileName, "run.xls");
    EXPECT_EQ(dialogs.request.title, "New Log File");
    EXPECT_EQ(settings.log.File, "run") << "cancelled";
    dialogs.answer = "/app/new.txt";
    click("cmdNew");
    EXPECT_EQ(settings.log.File, "/app/new.txt");
    EXPECT_EQ(dialog->windowTitle().toStdString(), "Data Log - [new.txt]");
}

TEST_F(DataLogWindow, ViewOpensTheFileOrSaysWhyNot) {
    files.append("/app/drx9.txt", "x");
    open();
    click("cmdView");
    EXPECT_EQ(shell.opened, "/app/drx9.txt");
    shell.reason = "No program opens this file.";
    boxes.expectShow("No program opens this file.");
    click("cmdView");
}

} // namespace
} // namespace drx9
