#include "app/Program.h"
#include "app/Texts.h"
#include "controls/Theme.h"
#include "platform/DataFolder.h"
#include "platform/os/OsFilePort.h"
#include "platform/qt/EventLoopChoice.h"
#include "platform/qt/LocaleFromSystem.h"
#include "platform/qt/SessionEnd.h"
#include "platform/qt/SingleInstance.h"
#include "util/ProgramName.h"
#include "util/Text.h"

#include <QApplication>
#include <QStandardPaths>

#include <exception>
#include <functional>
#include <optional>

using namespace drx9;

namespace {
/// A fault in one event handler ends that handler and is reported; a run of hours goes on.
class Application : public QApplication {
public:
    using QApplication::QApplication;
    std::function<void(const std::exception&)> report;

    bool notify(QObject* receiver, QEvent* event) override {
        try {
            return QApplication::notify(receiver, event);
        } catch (const std::exception& error) {
            if (report) {
                report(error);
            }
            return false;
        }
    }
};
} // namespace

int main(int argc, char* argv[]) {
    std::optional<EventLoopChoice> choice(std::in_place);
    Application application(argc, argv);
    choice.reset();
    QApplication::setApplicationName(kProgramName);
    QApplication::setApplicationVersion(DRX9_VERSION);
    applyDesktopTheme(application);

    const std::unique_ptr<FilePort> files = makeOsFilePort();
    const Paths paths = chooseDataFolder(
        *files, QApplication::applicationDirPath().toStdString(),
        QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation).toStdString());
    const SingleInstance instance(paths.dataFolder);
    if (!instance.isFirst()) {
        QtMessageBoxes().show(filled(appText::kRunningAlready, {paths.dataFolder}), kProgramName,
                              MessageIcon::Information);
        return 1;
    }
    const QString places =
        QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation) + QStringLiteral("/windows.ini");
    Program program(*files, paths, localeFromSystem(), places);
    application.report = [&program](const std::exception& error) { program.reportError(error); };
    const SessionEnd sessionEnd([&program] { program.endSession(); }, [&program] { program.lastWords(); });
    program.start();
    return QApplication::exec();
}
