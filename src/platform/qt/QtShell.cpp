#include "platform/qt/QtShell.h"

#include "platform/Texts.h"
#include "util/Text.h"

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
        return filled(platformText::kNotAProgram, {program});
    }
    if (QFileInfo(name).isAbsolute()) {
        return filled(platformText::kProgramNotFound, {program});
    }
    return filled(platformText::kProgramNowhere, {program, folder.toStdString()});
}

} // namespace

std::string QtShell::openDocument(const std::string& path) {
    const QFileInfo file(QString::fromStdString(path));
    if (!file.exists()) {
        return filled(platformText::kNoSuchFile, {path});
    }
    if (!file.isReadable()) {
        return filled(platformText::kNotReadable, {path});
    }
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(file.absoluteFilePath()))) {
        return filled(platformText::kNoProgramForIt, {path});
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
        return filled(platformText::kProgramNotStarted, {program, process.errorString().toStdString()});
    }
    return {};
}

} // namespace drx9
