#pragma once

#include "app/OtherWindows.h"
#include "fakes/FakeInputBox.h"
#include "monitor/MonitorFixture.h"

#include <QApplication>
#include <QTest>

#include <memory>

namespace drx9 {

struct FakeFileDialogs : FileDialogs {
    FileDialogRequest request;
    std::string answer;
    std::string openFile(const FileDialogRequest& asked) override { return saveFile(asked); }
    std::string saveFile(const FileDialogRequest& asked) override {
        request = asked;
        return answer;
    }
};

struct FakeShell : Shell {
    std::string opened;
    std::string reason;
    std::string openDocument(const std::string& path) override {
        opened = path;
        return reason;
    }
    std::string startProgram(const std::string&) override { return reason; }
};

/// The main window on the monitor of the scripted instrument. Controls are found by their names.
class UiFixture : public MonitorFixture {
protected:
    UiFixture() {
        window = std::make_unique<frmMain>(mainWindowParts(
            core, pump, charts, {files, boxes, dialogs, input, shell, progress, nullptr, clock}));
        monitor.setWindow(*window);
        window->show();
        window->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }

    template<class Control>
    Control* find(const char* name) {
        Control* control = window->findChild<Control*>(QString::fromLatin1(name));
        if (control == nullptr) {
            ADD_FAILURE() << "no control " << name;
        }
        return control;
    }
    void click(const char* name) { QTest::mouseClick(find<QWidget>(name), Qt::LeftButton); }
    void choose(const char* name) { find<QAction>(name)->trigger(); }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QWidget* focus = QApplication::focusWidget();
        QTest::keyClick(focus != nullptr ? focus : window.get(), key, modifiers);
    }
    std::string textOf(const char* name) {
        const QWidget* control = find<QWidget>(name);
        return control == nullptr ? "" : control->property("text").toString().toStdString();
    }

    ChartSet charts;
    FakeFileDialogs dialogs;
    FakeInput input;
    FakeShell shell;
    std::unique_ptr<frmMain> window;
};

} // namespace drx9
