// Transfers of 99 films by the whole program, through the buttons of its film window. Prints one line a
// transfer; asserts nothing. Under a display it uses it, elsewhere it runs offscreen:
//   xvfb-run film_bench [FOLDER ...]
// Each FOLDER (the temporary one when none is told) takes the program's files in turn: give one on a disk and
// one in memory. "wire" is the time that the bytes of the transfer need at that baud rate, ten bits each; in
// the loopback's lines it is the same bytes at 19200, to compare.

#include "app/Program.h"
#include "controls/Theme.h"
#include "platform/os/OsFilePort.h"
#include "platform/qt/EventLoopChoice.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QLabel>
#include <QProcess>
#include <QPushButton>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdio>
#include <fstream>

using namespace drx9;

namespace {

constexpr int kBaud = 19200;
constexpr double kBitsPerByte = 10;
constexpr int kCommandFrame = 4; // bytes round a command's text
constexpr int kReplyFrame = 5;   // round a reply's data

template<class Condition>
bool waitFor(Condition condition) {
    for (int i = 0; i < 3000 && !condition(); ++i) {
        QEventLoop loop;
        QTimer::singleShot(20, &loop, &QEventLoop::quit);
        loop.exec();
    }
    return condition();
}

/// The program with its film window, in a folder of its own below the given one.
class Bench {
public:
    Bench(const QString& folder, bool serial)
        : folder_(folder + "/film_bench")
        , title_((serial ? "19200 baud, " : "loopback, ") + folder) {
        startSimulator(serial);
        QFile::copy(QCoreApplication::applicationDirPath() + "/../packaging/Monitor.mdb",
                    folder_.filePath("Monitor.mdb"));
        const std::string path = folder_.path().toStdString();
        std::ofstream(path + "/Monitor.ini", std::ios::binary)
            << "[CommSettings]\r\nPort=1\r\nEAddress=127.0.0.1\r\nCommType=" << (serial ? 0 : 2)
            << "\r\nEPort=" << port_ << "\r\n";
        program_ = std::make_unique<Program>(*files_, Paths{path, path}, locale_);
        program_->start();
        const bool onLine = waitFor([&] {
            const Core& core = program_->core();
            return core.monitor.RunMode() == RunState::Idle && core.answers.hasReading();
        });
        find<QAction>("mnuSetupFilms")->trigger();
        if (!onLine || !waitFor([&] { return find<QPushButton>("cmdUpload") != nullptr; })) {
            std::puts("The program did not come on line.");
        }
    }
    ~Bench() {
        program_->endSession(); // asks nothing
        waitFor([&] { return !program_->window().isVisible(); });
        simulator_.kill();
        simulator_.waitForFinished();
    }
    Bench(const Bench&) = delete;
    Bench& operator=(const Bench&) = delete;

    void transfer(const char* what, const char* button) {
        const qint64 before = traced().size();
        const double start = program_->clock().monotonic();
        find<QPushButton>(button)->click();
        const double measured = program_->clock().monotonic() - start;
        const double wire = wireSeconds(traced().mid(before));
        std::printf("%-34s %-22s %6.3f s   wire %6.3f s   ratio %5.3f   %s\n", qPrintable(title_), what,
                    measured, wire, measured / wire, qPrintable(find<QWidget>("lblState")->accessibleName()));
    }

private:
    void startSimulator(bool serial) {
        QStringList arguments{"--quiet", "--trace", traceFile()};
        arguments += serial ? QStringList{"--baud", QString::number(kBaud), "--pty", folder_.filePath("COM1")}
                            : QStringList{"--tcp", "127.0.0.1:0"};
        simulator_.start(QCoreApplication::applicationDirPath() + "/drx9sim", arguments);
        simulator_.waitForReadyRead();
        port_ = QString(simulator_.readLine()).trimmed().section(':', 1).toInt();
    }
    QString traceFile() const { return folder_.filePath("trace"); }
    QByteArray traced() const {
        QFile file(traceFile());
        (void)file.open(QIODevice::ReadOnly);
        return file.readAll();
    }
    static double wireSeconds(const QString& trace) {
        static const QRegularExpression escaped("\\\\(x..|.)");
        qsizetype bytes = 0;
        for (QString line : trace.split('\n', Qt::SkipEmptyParts)) {
            const QStringList fields = line.replace(escaped, "?").split('\t');
            bytes += fields.value(1).size() + kCommandFrame + fields.value(3).size() + kReplyFrame;
        }
        return static_cast<double>(bytes) * kBitsPerByte / kBaud;
    }
    template<class Object>
    Object* find(const char* name) {
        return program_->window().findChild<Object*>(name);
    }

    QTemporaryDir folder_;
    QString title_;
    QProcess simulator_;
    int port_ = 0;
    const std::unique_ptr<FilePort> files_ = makeOsFilePort();
    const NumberLocale locale_;
    std::unique_ptr<Program> program_;
};

void measure(const QString& folder) {
    for (const bool serial : {false, true}) {
        Bench bench(folder, serial);
        bench.transfer("upload, 99 new films", "cmdUpload");
        bench.transfer("upload, none changed", "cmdUpload");
        bench.transfer("download and verify", "cmdDownload_1");
    }
}

} // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("DISPLAY")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    const EventLoopChoice choice;
    QApplication app(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    applyDesktopTheme(app);
    QStringList folders = QCoreApplication::arguments().mid(1);
    if (folders.isEmpty()) {
        folders << QDir::tempPath();
    }
    QTimer::singleShot(0, &app, [&] {
        for (const QString& folder : folders) {
            measure(folder);
        }
        QCoreApplication::exit();
    });
    return QApplication::exec();
}
