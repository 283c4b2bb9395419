#pragma once

#include "platform/EventPump.h"
#include "platform/Progress.h"

#include <QCursor>
#include <QDialog>
#include <QPointer>

#include <array>

class QLabel;
class QProgressBar;

namespace drx9 {

/// The progress window: a text over a bar, no buttons, no close box; takes no focus. The windows that own a
/// progress are told once with setOwner.
class frmStatus : public QDialog, public Progress {
    Q_OBJECT
public:
    explicit frmStatus(EventPump& pump);

    void setOwner(ProgressOwner owner, QWidget* window);

    void ProgressShow(const std::string& text, ProgressOwner owner) override;
    void setProgress(std::int16_t percent) override;
    void ProgressHide() override;

protected:
    void closeEvent(QCloseEvent* event) override;
    void reject() override {} // Esc does not take it away

private:
    void centreOnOwner();

    EventPump& pump_;
    QLabel* Label1_;
    QProgressBar* prgLoadStat_;
    std::array<QPointer<QWidget>, 2> owners_;
    QPointer<QWidget> owner_;
    QCursor savedPointer_;
};

} // namespace drx9
