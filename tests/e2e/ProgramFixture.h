#pragma once

#include "app/Program.h"

#include <QApplication>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

namespace drx9 {

/// A drx9sim process. Its waits stop the program under test meanwhile.
class SimulatorProcess {
public:
    ~SimulatorProcess() { kill(); }
    /// Starts it, and again under the same names after kill().
    void start(const QStringList& arguments);
    void kill();
    /// Gives a control command; the answer without "ok ".
    std::string ask(const std::string& command);
    int count(const std::string& command);
    [[nodiscard]] std::string port() const { return port_; }

private:
    std::string readLine();

    QProcess process_;
    std::string port_ = "0"; ///< of TCP, once it is known
};

struct LinkCase {
    const char* name;
    int commType;
};

/// The whole program in a folder of its own, with an instrument on the given link. Controls are found by
/// their names and worked by events; what they lead to is waited for.
class ProgramFixture {
public:
    static constexpr int kPatience = 60000; ///< ms, for conditions that come at once on a fast machine

    explicit ProgramFixture(const LinkCase& link, const QStringList& faults = {});
    ~ProgramFixture();

    void startSimulator();
    /// Returns when the program is on line and its film list is whole.
    void startUp();
    void startRun();
    /// False when the program did not end within the patience.
    bool waitForEnd();

    [[nodiscard]] static bool waitFor(const std::function<bool()>& condition) {
        return QTest::qWaitFor(condition, kPatience);
    }
    template<class Control>
    Control* find(const char* name) {
        Control* control = program->window().findChild<Control*>(QString::fromLatin1(name));
        EXPECT_NE(control, nullptr) << name;
        return control;
    }
    void click(const char* name) { QTest::mouseClick(find<QWidget>(name), Qt::LeftButton); }
    void choose(const char* name) { find<QAction>(name)->trigger(); }
    std::string textOf(const char* name) {
        return find<QWidget>(name)->property("text").toString().toStdString();
    }
    double numberOf(const char* name) { return std::stod("0" + textOf(name)); }

    [[nodiscard]] Monitor& monitor() { return program->monitor(); }
    [[nodiscard]] double now() { return monitor().parts().clock.monotonic(); }
    [[nodiscard]] QByteArray contentOf(const char* file) const;
    /// Lines of readings in the log. Every line of it must be whole: a mark, the header, or all numbers.
    int checkedLogLines(int ends);
    [[nodiscard]] static bool noticeBoxShown();

    QTemporaryDir folder;
    SimulatorProcess simulator;
    std::unique_ptr<FilePort> files;
    std::unique_ptr<Program> program;
    QStringList boxes; ///< texts of the blocking boxes, each of which is answered at once

private:
    void writeSettings();
    void answerBoxes();

    LinkCase link_;
    QStringList arguments_;
    QTimer boxWatch_;
};

} // namespace drx9
