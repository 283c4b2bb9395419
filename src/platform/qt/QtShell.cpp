#include "platform/qt/QtShell.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QUrl>

namespace drx9 {

namespace {

/// Why a name that findExecutable() does not find is no program, for people.
std::string whyNotAProgram(const QString& name, const QString& folder) {
    const std::string program = name.toStdString();
    if (QFileInfo(name).isFile() || QFileInfo(folder + '/' + name).isFile()) {
        return program + " is not a program that can be run here.";
    }
    if (QFileInfo(name).isAbsolute()) {
        return program + " was not found.";
    }
    return program + " was not found, neither in " + folder.toStdString() + " nor where programs are kept.";
}

} // namespace

std::string QtShell::openDocument(const std::string& path) {
    const QFileInfo file(QString::fromStdString(path));
    if (!file.exists()) {
        return path + ": there is no such file.";
    }
    if (!file.isReadable()) {
        return path + ": no permission to read it.";
    }
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(file.absoluteFilePath()))) {
        return path + ": no program is associated with this kind of file.";
    }
    return {};
}

std::string QtShell::startProgram(const std::string& program) {
    const QString name = QString::fromStdString(program);
    const QString folder = QCoreApplication::applicationDirPath();
    QString found = QStandardPaths::findExecutable(name, {folder});
    if (found.isEmpty()) {
        found = QStandardPaths::findExecutable(name);
    }
    if (found.isEmpty()) {
        return whyNotAProgram(name, folder);
    }
    QProcess process;
    process.setProgram(found);
    process.setWorkingDirectory(QFileInfo(found).absolutePath());
    if (!process.startDetached()) {
        return program + " could not be started: " + process.errorString().toStdString() + '.';
    }
    return {};
}

} // namespace drx9
