#include "platform/qt/QtFileDialogs.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QPointer>
#include <QRegularExpression>

namespace drx9 {

namespace {

/// A folder and a name of its own, whatever way the initial name is given.
void preset(QFileDialog& dialog, const FileDialogRequest& request) {
    const QString name = QDir::fromNativeSeparators(QString::fromStdString(request.fileName));
    const QString folder = QDir::fromNativeSeparators(QString::fromStdString(request.initialFolder));
    if (!folder.isEmpty()) {
        dialog.setDirectory(folder);
    }
    if (name.isEmpty()) {
        return;
    }
    const QFileInfo file(folder.isEmpty() ? QDir() : QDir(folder), name);
    if (file.dir().exists()) {
        dialog.setDirectory(file.dir());
    }
    dialog.selectFile(file.fileName());
}

std::string run(const FileDialogRequest& request, bool save) {
    const QPointer<QFileDialog> dialog = new QFileDialog(QApplication::activeWindow());
    dialog->setObjectName("FileDialog");
    dialog->setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog->setFileMode(save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    dialog->setOption(QFileDialog::DontConfirmOverwrite, !request.overwritePrompt);
    if (!request.title.empty()) {
        dialog->setWindowTitle(QString::fromStdString(request.title));
    }
    if (!request.filter.empty()) {
        dialog->setNameFilters(nameFilters(request.filter));
    }
    dialog->setDefaultSuffix(QString::fromStdString(request.defaultExtension));
    if (request.suffixByFilter) {
        QObject::connect(dialog, &QFileDialog::filterSelected, dialog, [dialog](const QString& filter) {
            const QRegularExpressionMatch ending =
                QRegularExpression(QStringLiteral(R"(\*\.(\w+))")).match(filter);
            dialog->setDefaultSuffix(ending.captured(1));
        });
    }
    preset(*dialog, request);
    const bool accepted = dialog->exec() == QDialog::Accepted;
    if (!dialog) { // went away with the window it was open over
        return {};
    }
    const QStringList files = dialog->selectedFiles();
    delete dialog.data();
    return accepted && !files.isEmpty() ? QDir::toNativeSeparators(files.front()).toStdString()
                                        : std::string();
}

} // namespace

QStringList nameFilters(const std::string& filter) {
    const QStringList parts = QString::fromStdString(filter).split('|');
    QStringList filters;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        QString title = parts[i];
        if (const qsizetype bracket = title.lastIndexOf(" ("); bracket > 0 && title.endsWith(')')) {
            title.truncate(bracket);
        }
        QString patterns = parts[i + 1];
        // "*.*" means every file, also one without a dot.
        patterns = patterns.replace(';', ' ').replace("*.*", "*");
        filters << title + " (" + patterns + ")";
    }
    return filters;
}

std::string QtFileDialogs::openFile(const FileDialogRequest& request) {
    return run(request, false);
}

std::string QtFileDialogs::saveFile(const FileDialogRequest& request) {
    return run(request, true);
}

} // namespace drx9
