#include "films/frmStatus.h"

#include <QCloseEvent>
#include <QLabel>
#include <QProgressBar>
#include <QVBoxLayout>
#include <QWindow>

namespace drx9 {

namespace {
constexpr int kWidth = 360;
constexpr int kBarHeight = 14;
} // namespace

frmStatus::frmStatus(EventPump& pump)
    : QDialog(nullptr,
              Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowDoesNotAcceptFocus)
    , pump_(pump)
    , Label1_(new QLabel(this))
    , prgLoadStat_(new QProgressBar(this)) {
    setObjectName(QStringLiteral("frmStatus"));
    setWindowTitle(QStringLiteral("Loading"));
    setAttribute(Qt::WA_ShowWithoutActivating);
    Label1_->setObjectName(QStringLiteral("Label1"));
    prgLoadStat_->setObjectName(QStringLiteral("prgLoadStat"));
    prgLoadStat_->setAccessibleName(windowTitle());
    prgLoadStat_->setRange(0, 100);
    prgLoadStat_->setTextVisible(false);
    prgLoadStat_->setFixedHeight(kBarHeight);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(16, 16, 16, 16);
    column->setSpacing(12);
    column->addWidget(Label1_);
    column->addWidget(prgLoadStat_);
    setFixedWidth(kWidth);
    column->setSizeConstraint(QLayout::SetFixedSize);
    Label1_->setMinimumWidth(kWidth - 32);
}

void frmStatus::setOwner(ProgressOwner owner, QWidget* window) {
    owners_[owner == ProgressOwner::MainWindow ? 0 : 1] = window;
}

void frmStatus::ProgressShow(const std::string& text, ProgressOwner owner) {
    owner_ = owners_[owner == ProgressOwner::MainWindow ? 0 : 1];
    if (owner_ != nullptr) {
        savedPointer_ = owner_->cursor();
        owner_->setCursor(Qt::WaitCursor);
    }
    pump_.processPending();
    prgLoadStat_->setValue(0);
    Label1_->setText(QString::fromStdString(text));
    centreOnOwner();
    show();
}

void frmStatus::centreOnOwner() {
    if (owner_ == nullptr) {
        return;
    }
    winId();
    windowHandle()->setTransientParent(owner_->windowHandle());
    adjustSize();
    move(owner_->frameGeometry().center() - rect().center());
}

void frmStatus::setProgress(std::int16_t percent) {
    if (percent >= 0 && percent <= 100) {
        prgLoadStat_->setValue(percent);
    }
}

void frmStatus::ProgressHide() {
    if (owner_ != nullptr) {
        owner_->setCursor(savedPointer_);
    }
    hide();
}

void frmStatus::closeEvent(QCloseEvent* event) {
    event->ignore();
}

} // namespace drx9
