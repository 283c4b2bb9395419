#include "e2e/ProgramFixture.h"

#include "platform/os/OsFilePort.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QMessageBox>

namespace drx9 {

void SimulatorProcess::start(const QStringList& arguments) {
    QStringList all = arguments;
    all.replaceInStrings("PORT", QString::fromStdString(port_));
    process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process_.start(DRX9_BIN_DIR "/drx9sim", all);
    ASSERT_TRUE(process_.waitForStarted(ProgramFixture::kPatience)) << process_.errorString().toStdString();
    const std::string place = readLine(); // "tcp 127.0.0.1:40001" or "pty /dev/pts/3"
    if (place.rfind("tcp", 0) == 0) {
        port_ = place.substr(place.rfind(':') + 1);
    }
}

void SimulatorProcess::kill() {
    process_.kill();
    process_.waitForFinished(ProgramFixture::kPatience);
}

std::string SimulatorProcess::readLine() {
    while (!process_.canReadLine()) {
        if (!process_.waitForReadyRead(ProgramFixture::kPatience)) {
            ADD_FAILURE() << "the simulator says nothing";
            return {};
        }
    }
    return process_.readLine().trimmed().toStdString();
}

std::string SimulatorProcess::ask(const std::string& command) {
    process_.write((command + "\n").c_str());
    std::string answer = readLine();
    while (answer.rfind("tcp ", 0) == 0 || answer.rfind("pty ", 0) == 0) {
        answer = readLine(); // plugged in
    }
    EXPECT_EQ(answer.rfind("ok ", 0), 0U) << answer;
    return answer.substr(std::min<std::size_t>(3, answer.size()));
}

int SimulatorProcess::count(const std::string& command) {
    const std::string answer = ask("count " + command);
    return std::stoi("0" + answer.substr(answer.rfind(' ') + 1));
}

ProgramFixture::ProgramFixture(const LinkCase& link, const QStringList& faults)
    : files(makeOsFilePort())
    , link_(link) {
    arguments_ = QStringList{"--quiet", "--speed", "4"} + faults;
    arguments_ += link.commType == 0 ? QStringList{"--pty", folder.filePath("COM1")}
                                     : QStringList{"--tcp", "127.0.0.1:PORT"};
    startSimulator();
    if (link.commType == 1) {
        qputenv("DRX9SIM_USB", ("127.0.0.1:" + simulator.port()).c_str());
        const QDir libraries(DRX9_BIN_DIR);
        for (const QString& library : libraries.entryList({"libSiUSBXp.*"})) {
            EXPECT_TRUE(QFile::link(libraries.filePath(library), folder.filePath(library)));
        }
    }
    writeSettings();
    QObject::connect(&boxWatch_, &QTimer::timeout, &boxWatch_, [this] { answerBoxes(); });
    boxWatch_.start(20);
    const std::string path = folder.path().toStdString();
    program = std::make_unique<Program>(*files, Paths{path, path}, NumberLocale{});
}

ProgramFixture::~ProgramFixture() {
    if (program->window().isVisible()) {
        program->window().close();
        EXPECT_TRUE(waitForEnd());
    }
}

void ProgramFixture::startSimulator() {
    simulator.start(arguments_);
}

void ProgramFixture::writeSettings() {
    QFile ini(folder.filePath("Monitor.ini"));
    EXPECT_TRUE(ini.open(QIODevice::WriteOnly));
    const std::string text = "[CommSettings]\r\nCommType=" + std::to_string(link_.commType) +
                             "\r\nPort=1\r\nEAddress=127.0.0.1\r\nEPort=" + simulator.port() +
                             "\r\n[DataLog]\r\nType=1\r\nInterval=0\r\n";
    ini.write(text.c_str());
}

void ProgramFixture::startUp() {
    program->start();
    ASSERT_TRUE(waitFor([this] {
        return monitor().RunMode() == kIdle && find<QComboBox>("cboFilms")->count() == 99 &&
               monitor().hasReading();
    })) << program->window().windowTitle().toStdString();
    ASSERT_TRUE(boxes.isEmpty()) << boxes.join("\n").toStdString();
}

void ProgramFixture::startRun() {
    click("cmdShutter");
    ASSERT_TRUE(waitFor([this] { return textOf("cmdStartStop") == "STOP" && checkedLogLines(0) >= 2; }));
}

bool ProgramFixture::waitForEnd() {
    return waitFor([this] { return !program->window().isVisible() && monitor().RunMode() == kExiting; });
}

QByteArray ProgramFixture::contentOf(const char* file) const {
    QFile in(folder.filePath(file));
    return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray();
}

int ProgramFixture::checkedLogLines(int ends) {
    const QByteArray text = contentOf("drx9.txt");
    EXPECT_EQ(text.count("Start:   Date: "), text.isEmpty() ? 0 : 1);
    EXPECT_EQ(text.count("End:     Date: "), ends);
    EXPECT_TRUE(text.isEmpty() || text.endsWith("\r\n"));
    int lines = 0;
    double last = -1;
    for (const QString& line : QString::fromLatin1(text).split("\r\n")) {
        if (line.isEmpty() || line.contains(" Date: ") || line.startsWith("Time\t")) {
            continue;
        }
        const QStringList fields = line.split('\t');
        EXPECT_EQ(fields.size(), 21) << line.toStdString();
        for (const QString& field : fields) {
            bool number = false;
            field.toDouble(&number);
            EXPECT_TRUE(number) << line.toStdString();
        }
        EXPECT_GT(fields[0].toDouble(), last);
        last = fields[0].toDouble();
        ++lines;
    }
    return lines;
}

bool ProgramFixture::noticeBoxShown() {
    for (const QWidget* window : QApplication::topLevelWidgets()) {
        if (window->objectName() == "MsgBoxNonBlocking" && window->isVisible()) {
            return true;
        }
    }
    return false;
}

void ProgramFixture::answerBoxes() {
    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    if (box != nullptr && box->objectName() == "MsgBox") {
        boxes += box->text();
        QTest::mouseClick(box->buttons().constFirst(), Qt::LeftButton);
    }
}

} // namespace drx9
