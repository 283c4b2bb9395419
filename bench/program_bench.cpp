// The whole program against drx9sim, in figures. Prints one line a figure; asserts nothing. Under a display
// it uses it, elsewhere it runs offscreen:
//   xvfb-run -s "-screen 0 1280x800x24" program_bench [SECONDS [WHAT ...]]
// WHAT is start, rest, day, changed, click, gone or polling (all when not told), each share is taken over
// SECONDS (20). The first paint's reference is a bare window with the same menus, as many controls and four
// plots. The processor's share is that of the thread the windows run in. Its reference is a bare client,
// which sends the same commands at the same pace over a blocking socket and does nothing with the replies.

#include "BareWindow.h"
#include "app/Program.h"
#include "controls/Theme.h"
#include "link/Crc.h"
#include "platform/os/OsFilePort.h"
#include "platform/qt/EventLoopChoice.h"

#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QMouseEvent>
#include <QProcess>
#include <QPushButton>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <functional>
#include <vector>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace drx9;

namespace {

constexpr const char* kPace = "19200"; // baud

double secondsOf(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

double now() {
    return secondsOf(CLOCK_MONOTONIC);
}

/// Share (%) of a processor that this thread takes from its making on.
class Share {
public:
    double percent() const { return 100 * (secondsOf(CLOCK_THREAD_CPUTIME_ID) - cpu_) / (now() - start_); }

private:
    double start_ = now();
    double cpu_ = secondsOf(CLOCK_THREAD_CPUTIME_ID);
};

void runEvents(double seconds) {
    QEventLoop loop;
    QTimer::singleShot(static_cast<int>(seconds * 1000), &loop, &QEventLoop::quit);
    loop.exec();
}

/// Until the condition holds, a minute at most.
template<class Condition>
bool waitFor(Condition condition) {
    for (const double limit = now() + 60; !condition();) {
        if (now() > limit) {
            return false;
        }
        runEvents(0.02);
    }
    return true;
}

/// drx9sim on a free TCP port, or on a pseudo-terminal at `pty`.
class Simulator {
public:
    explicit Simulator(QStringList arguments, const QString& pty = {}) {
        arguments << "--quiet" << (pty.isEmpty() ? "--tcp" : "--pty")
                  << (pty.isEmpty() ? "127.0.0.1:0" : pty);
        process_.start(QCoreApplication::applicationDirPath() + "/drx9sim", arguments);
        process_.waitForReadyRead();
        port_ = QString(process_.readLine()).trimmed().section(':', 1).toInt();
    }
    ~Simulator() {
        process_.kill();
        process_.waitForFinished();
    }
    int port() const { return port_; }
    void say(const QByteArray& command) { process_.write(command + "\n"); }

private:
    QProcess process_;
    int port_ = 0;
};

/// Acts when the first paint of a window has been put on the screen.
class FirstPaint : public QObject {
public:
    FirstPaint(QWidget& window, std::function<void()> painted)
        : painted_(std::move(painted)) {
        window.installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* window, QEvent* event) override {
        if (event->type() == QEvent::Paint) {
            window->removeEventFilter(this);
            // A window paints and flushes all its widgets in one go: what is queued runs after that.
            QMetaObject::invokeMethod(
                this, [this] { painted_(); }, Qt::QueuedConnection);
        }
        return false;
    }

private:
    std::function<void()> painted_;
};

/// The program in a folder of its own, on line.
class Running {
public:
    explicit Running(const QStringList& arguments, bool serial = false)
        : simulator(arguments, serial ? folder_.filePath("COM1") : QString()) {
        const std::string path = folder_.path().toStdString();
        std::ofstream(path + "/Monitor.ini", std::ios::binary)
            << "[Display]\r\nView=1\r\n[Graph]\r\nView=2\r\n[CommSettings]\r\nPort=1\r\nEAddress=127.0.0."
               "1\r\n"
            << "CommType=" << (serial ? 0 : 2) << "\r\nEPort=" << simulator.port()
            << "\r\n[DataLog]\r\nType=1\r\nInterval=0\r\n";
        program = std::make_unique<Program>(*files_, Paths{path, path}, locale_);
        program->start();
        onLine =
            waitFor([&] { return monitor().RunMode() == RunState::Idle && core().answers.hasReading(); });
        if (!onLine) {
            std::puts("The program did not come on line.");
        }
    }
    ~Running() {
        program->window().close();
        waitFor([&] { return !program->window().isVisible(); });
    }
    Core& core() { return program->core(); }
    Monitor& monitor() { return core().monitor; }
    QPushButton& button(const char* name) { return *program->window().findChild<QPushButton*>(name); }

private:
    QTemporaryDir folder_;
    const std::unique_ptr<FilePort> files_ = makeOsFilePort();
    const NumberLocale locale_;

public:
    Simulator simulator;
    std::unique_ptr<Program> program;
    bool onLine = false;
};

/// The commands of one reading, and the pause after it, as the program makes them with nothing to leave out.
double bareShare(double seconds) {
    const Simulator simulator({"--baud", kPace});
    std::vector<std::string> commands = {commandPacket("M"), commandPacket("O"), commandPacket("U?")};
    for (const char sensor : {'1', '2', '3', '4', '5', '6'}) {
        for (const char kind : {'P', 'L', 'N'}) {
            commands.push_back(commandPacket(std::string(1, kind) + sensor));
        }
    }
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    const int on = 1;
    ::setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(simulator.port()));
    if (::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
        return -1;
    }
    const Share share;
    double tick = now();
    for (const double end = now() + seconds; now() < end; tick = std::max(tick + 0.25, now())) {
        for (const std::string& command : commands) {
            char reply[512];
            std::size_t have = 0;
            if (::write(fd, command.data(), command.size()) < 0) {
                return -1;
            }
            // The second byte is 35 more than the length of status letter and data; four bytes are around
            // them.
            while (have < 2 || have < static_cast<std::size_t>(reply[1]) - 35 + 4) {
                const ssize_t got = ::read(fd, reply + have, sizeof reply - have);
                if (got <= 0) {
                    return -1;
                }
                have += static_cast<std::size_t>(got);
            }
        }
        if (const double rest = tick + 0.25 - now(); rest > 0) {
            ::usleep(static_cast<useconds_t>(rest * 1e6));
        }
    }
    const double percent = share.percent();
    ::close(fd);
    return percent;
}

void polling(double seconds) {
    std::printf("polling six sensors at %s baud, share of a processor over %.0f s:\n", kPace, seconds);
    std::printf("  bare client, TCP               %6.2f %%\n", bareShare(seconds));
    for (const bool serial : {false, true}) {
        Running running({"--baud", kPace}, serial);
        running.button("cmdShutter").click();
        waitFor([&] { return running.monitor().RunMode() == RunState::Running; });
        runEvents(2);
        const Share visible;
        runEvents(seconds);
        std::printf("  in a run, visible, %s         %6.2f %%\n", serial ? "pty" : "TCP", visible.percent());
        running.program->window().showMinimized();
        running.program->window().hide();
        runEvents(1);
        const Share hidden;
        runEvents(seconds);
        std::printf("  in a run, not painting, %s    %6.2f %%\n", serial ? "pty" : "TCP", hidden.percent());
        running.program->window().show();
    }
}

/// The instrument falls silent in a run (every attempt to connect succeeds, none is answered); then its
/// address refuses.
void deviceGone(double seconds) {
    Running running({});
    running.button("cmdShutter").click();
    waitFor([&] { return running.monitor().RunMode() == RunState::Running; });
    running.simulator.say("faults silent=0s:3600s");
    runEvents(4);
    const Share silent;
    runEvents(seconds);
    std::printf(
        "device gone in a run, share of a processor:\n  silent   %6.2f %% (last reading %.0f s old)\n",
        silent.percent(), running.program->clock().monotonic() - running.core().answers.lastGoodReading());
    running.simulator.say("unplug");
    runEvents(4);
    const Share refused;
    runEvents(seconds);
    std::printf("  refuses  %6.2f %%\n", refused.percent());
    running.simulator.say("plug");
}

/// Sees when the button has been painted.
class PaintWatch : public QObject {
public:
    explicit PaintWatch(QObject& watched) { watched.installEventFilter(this); }
    double paintedAt = 0;

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint) {
            paintedAt = now();
        }
        return false;
    }
};

/// Presses a button by events of its own while an exchange is unanswered, and times its painting as pressed.
void clickFeedback() {
    Running running({});
    running.simulator.say("faults late:400ms");
    QPushButton& button = running.button("cmdZero");
    PaintWatch watch(button);
    std::vector<double> waits;
    const auto post = [&](QEvent::Type type, const QPointF& at) {
        QCoreApplication::postEvent(&button, new QMouseEvent(type, at, button.mapToGlobal(at), Qt::LeftButton,
                                                             Qt::LeftButton, Qt::NoModifier));
    };
    for (int i = 0; i < 20; ++i) {
        double pressed = 0;
        QTimer moment;
        QObject::connect(&moment, &QTimer::timeout, &moment, [&] {
            if (pressed > 0 || !running.core().link.exchanging()) {
                return;
            }
            pressed = now();
            post(QEvent::MouseButtonPress, QRectF(button.rect()).center());
        });
        moment.start(7 + i);
        if (waitFor([&] { return pressed > 0 && watch.paintedAt > pressed; })) {
            waits.push_back(watch.paintedAt - pressed);
        } else {
            std::printf("press %d was not painted\n", i);
        }
        post(QEvent::MouseMove, QPointF(-50, -50)); // let go beside the button: no click
        post(QEvent::MouseButtonRelease, QPointF(-50, -50));
        runEvents(0.05);
    }
    std::sort(waits.begin(), waits.end());
    std::printf(
        "click to painted button with an exchange unanswered: median %.1f ms, longest of %zu %.1f ms\n",
        waits[waits.size() / 2] * 1000, waits.size(), waits.back() * 1000);
}

/// One start in a process of its own, which ends with its first paint: prints the seconds since `begun`. No
/// instrument is needed, since the window is painted before the link is opened.
[[noreturn]] void startOnce(bool bare, double begun) {
    const QTemporaryDir folder;
    const std::string path = folder.path().toStdString();
    std::ofstream(path + "/Monitor.ini", std::ios::binary)
        << "[Graph]\r\nView=2\r\n[CommSettings]\r\nEAddress=127.0.0.1\r\nCommType=2\r\nEPort=1\r\n";
    const std::unique_ptr<FilePort> files = makeOsFilePort();
    std::unique_ptr<BareWindow> bareWindow;
    std::unique_ptr<Program> program;
    if (bare) {
        bareWindow = std::make_unique<BareWindow>();
    } else {
        program = std::make_unique<Program>(*files, Paths{path, path}, NumberLocale{});
    }
    QWidget& window = bare ? static_cast<QWidget&>(*bareWindow) : program->window();
    FirstPaint paint(window, [begun, path] {
        std::printf("%.6f\n", now() - begun);
        std::fflush(stdout);
        QDir(QString::fromStdString(path)).removeRecursively();
        std::_Exit(0);
    });
    if (bare) {
        window.show();
    } else {
        program->start();
    }
    QApplication::exec();
    std::_Exit(1);
}

double timeOfStart(const char* kind) {
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(), {kind, QString::number(now(), 'f', 6)});
    process.waitForFinished();
    return process.readAllStandardOutput().trimmed().toDouble();
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// From the start of a process to its painted window, in turn; the first of each only warms up the files.
void firstPaint() {
    std::vector<double> bare;
    std::vector<double> program;
    for (int i = 0; i <= 10; ++i) {
        bare.push_back(timeOfStart("start-bare"));
        program.push_back(timeOfStart("start-program"));
    }
    const double ofBare = median({bare.begin() + 1, bare.end()});
    const double ofProgram = median({program.begin() + 1, program.end()});
    std::printf("start to first paint, median of 10: program %.0f ms, bare window %.0f ms, ratio %.2f\n",
                ofProgram * 1000, ofBare * 1000, ofProgram / ofBare);
}

double residentMegabytes() {
    std::ifstream statm("/proc/self/statm");
    double total = 0;
    double resident = 0;
    statm >> total >> resident;
    return resident * static_cast<double>(::sysconf(_SC_PAGESIZE)) / 1e6;
}

void atRest() {
    Running running({});
    runEvents(2);
    std::printf("resident at rest: %.1f MB (this measuring program)\n", residentMegabytes());
}

/// Telling the main window that something changed, when nothing differs.
void changed() {
    Running running({});
    runEvents(1);
    constexpr int kCalls = 5000;
    const double before = now();
    for (int i = 0; i < kCalls; ++i) {
        running.program->window().changed();
    }
    std::printf("changed(), nothing differs: %.0f us\n", (now() - before) / kCalls * 1e6);
}

/// With the readings of a day's run of six sensors in all charts, each of which is painted once whole.
void afterADay() {
    Running running({});
    runEvents(1);
    ChartSet& charts = running.program->charts();
    constexpr int kReadings = 24 * 3600 * 4;
    for (int i = 0; i < kReadings; ++i) {
        const double time = i / 4.0;
        const double value = 10 + std::sin(time / 60);
        charts.graph(1).append(1, time, value);
        charts.graph(3).append(1, time, time / 20000);
        for (int sensor = 1; sensor <= 6; ++sensor) {
            charts.graph(2).append(sensor, time, value + sensor / 10.0);
            charts.graph(4).append(sensor, time, time / 20000 + sensor / 100.0);
        }
    }
    for (int number = 1; number <= 4; ++number) {
        charts.graph(number).setXwide(kReadings / 4.0F);
        static_cast<void>(charts.chart(number).grab());
    }
    runEvents(2);
    std::printf("resident with a day's run of six sensors: %.1f MB (this measuring program)\n",
                residentMegabytes());
}

} // namespace

int main(int argc, char** argv) {
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    if (!qEnvironmentVariableIsSet("DISPLAY") && !qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    const EventLoopChoice choice; // as the program does
    QApplication app(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    applyDesktopTheme(app);
    if (argc > 2 && std::string(argv[1]).rfind("start-", 0) == 0) {
        startOnce(std::string(argv[1]) == "start-bare", std::atof(argv[2]));
    }
    const double seconds = argc > 1 ? std::atof(argv[1]) : 20;
    const QStringList what = QCoreApplication::arguments().mid(2);
    const auto wanted = [&](const char* name) { return what.isEmpty() || what.contains(name); };
    QTimer::singleShot(0, &app, [&] {
        if (wanted("start")) {
            firstPaint();
        }
        if (wanted("rest")) {
            atRest();
        }
        if (wanted("day")) {
            afterADay();
        }
        if (wanted("changed")) {
            changed();
        }
        if (wanted("click")) {
            clickFeedback();
        }
        if (wanted("gone")) {
            deviceGone(seconds);
        }
        if (wanted("polling")) {
            polling(seconds);
        }
        QApplication::quit();
    });
    return QApplication::exec();
}
