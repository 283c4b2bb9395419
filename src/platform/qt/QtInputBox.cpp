#include "platform/qt/QtInputBox.h"

#include <QApplication>
#include <QInputDialog>
#include <QPointer>

namespace drx9 {

std::string QtInputBox::ask(const std::string& prompt, const std::string& title) {
    // On the heap and guarded: the window under it may go while it is open.
    const QPointer<QInputDialog> dialog = new QInputDialog(QApplication::activeWindow());
    dialog->setObjectName(QStringLiteral("InputBox"));
    dialog->setInputMode(QInputDialog::TextInput);
    dialog->setLabelText(QString::fromStdString(prompt));
    dialog->setWindowTitle(QString::fromStdString(title));
    const bool accepted = dialog->exec() == QDialog::Accepted;
    if (dialog == nullptr) {
        return {};
    }
    std::string answer = accepted ? dialog->textValue().toStdString() : std::string();
    delete dialog.data();
    return answer;
}

} // namespace drx9
