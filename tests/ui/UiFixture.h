#pragma once

#include "app/OtherWindows.h"
#include "fakes/FakeFileDialogs.h"
#include "fakes/FakeInputBox.h"
#include "monitor/MonitorFixture.h"
#include "ui/Controls.h"

#include <QApplication>
#include <QTest>

#include <memory>

namespace drx9 {

struct FakeShell : Shell {
    std::string opened;
    std::string reason;
    std::string openDocument(const std::string& path) override {
        opened = path;
        return reason;
    }
    std::string startProgram(const std::string&) override { return reason; }
};

struct FakeHelp : HelpViewer {
    void showIndex() override {}
    void showChapter(const std::string&) override {}
};

/// The main window on the monitor of the scripted instrument. Controls are found by their names.
class UiFixture : public MonitorFixture, protected Controls {
protected:
    UiFixture() {
        window = std::make_unique<frmMain>(
            mainWindowParts(core, pump, charts,
                            {files, boxes, dialogs, nullptr, input, shell, help, progress, nullptr, clock,
                             [] { return QStringList(); }}));
        core.window.set(*window);
        window->show();
        window->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }

    ~UiFixture() override { core.window.clear(); }

    [[nodiscard]] QWidget& top() const override { return *window; }
    using Controls::click;
    void choose(const char* name) { find<QAction>(name)->trigger(); }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QWidget* focus = QApplication::focusWidget();
        QTest::keyClick(focus != nullptr ? focus : window.get(), key, modifiers);
    }
    ChartSet charts;
    FakeFileDialogs dialogs;
    FakeInput input;
    FakeShell shell;
    FakeHelp help;
    std::unique_ptr<frmMain> window;
};

} // namespace drx9
