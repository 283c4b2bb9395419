#pragma once

#include "platform/MessageBoxes.h"

#include <QMessageBox>
#include <QObject>
#include <QPointer>

namespace drx9 {

/// Message boxes with the object names "MsgBox" (the blocking ones) and "MsgBoxNonBlocking".
class QtMessageBoxes : public MessageBoxes {
public:
    QtMessageBoxes();
    ~QtMessageBoxes() override;
    QtMessageBoxes(const QtMessageBoxes&) = delete;
    QtMessageBoxes& operator=(const QtMessageBoxes&) = delete;

    void show(const std::string& text, const std::string& title, MessageIcon icon,
              bool systemModal = false) override;
    bool askYesNo(const std::string& text, const std::string& title, MessageIcon icon) override;
    bool askOkCancel(const std::string& text, const std::string& title, MessageIcon icon) override;
    /// Does not take the focus: a key meant for the window must not answer it.
    void showNonBlocking(const std::string& text, const std::string& title, MessageIcon icon) override;
    void closeNonBlocking() override;
    /// "MsgBoxQuestion"; takes no focus either.
    void askYesNoLater(const std::string& text, const std::string& title, MessageIcon icon,
                       std::function<void(bool)> answered) override;
    void dropQuestion() override;
    /// The session ends: from now on no box is shown, and a question is answered No or Cancel at once.
    void endSession();

private:
    bool ending_ = false;
    QPointer<QWidget>
        lastActive_; ///< the window that had the focus last; boxes, passing dialogs and help do not count
    QPointer<QMessageBox> nonBlocking_;
    QPointer<QMessageBox> question_;
    QObject context_; ///< ends what is connected
};

} // namespace drx9
