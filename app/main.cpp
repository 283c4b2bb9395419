#include "app/Program.h"
#include "platform/DataFolder.h"
#include "platform/os/OsFilePort.h"
#include "platform/qt/EventLoopChoice.h"
#include "platform/qt/LocaleFromSystem.h"
#include "platform/qt/SingleInstance.h"
#include "util/controls/Theme.h"

#include <QApplication>
#include <QStandardPaths>

#include <optional>

using namespace drx9;

int main(int argc, char* argv[]) {
    std::optional<EventLoopChoice> choice(std::in_place);
    QApplication application(argc, argv);
    choice.reset();
    QApplication::setApplicationName("DRX9 Comm");
    QApplication::setApplicationVersion(DRX9_VERSION);
    applyDesktopTheme(application);

    const std::unique_ptr<FilePort> files = makeOsFilePort();
    const Paths paths = chooseDataFolder(
        *files, QApplication::applicationDirPath().toStdString(),
        QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation).toStdString());
    const SingleInstance instance(paths.dataFolder);
    if (!instance.isFirst()) {
        QtMessageBoxes().show("DRX9 Comm is already running with the files in " + paths.dataFolder + ".",
                              "DRX9 Comm", MessageIcon::Information);
        return 1;
    }
    const QString places =
        QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation) + QStringLiteral("/windows.ini");
    Program program(*files, paths, localeFromSystem(), places);
    program.start();
    return QApplication::exec();
}
