#include "platform/qt/QtShell.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QUrl>

namespace drx9 {

std::string QtShell::openDocument(const std::string& path) {
    const QFileInfo file(QString::fromStdString(path));
    if (!file.exists())
        return path + ": there is no such file.";
    if (!file.isReadable())
        return path + ": no permission to read it.";
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(file.absoluteFilePath())))
        return path + ": no program is associated with this kind of file.";
    return {};
}

std::string QtShell::startProgram(const std::string& program) {
    const QString name = QString::fromStdString(program);
    QString found = QStandardPaths::findExecutable(name, {QCoreApplication::applicationDirPath()});
    if (found.isEmpty())
        found = QStandardPaths::findExecutable(name);
    if (found.isEmpty()) {
        return QFileInfo(name).isFile() ? program + " is not a program that can be run."
                                        : program + " was not found.";
    }
    if (!QProcess::startDetached(found, {}, QFileInfo(found).absolutePath()))
        return program + " could not be started.";
    return {};
}

} // namespace drx9
