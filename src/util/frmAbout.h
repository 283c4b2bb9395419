#pragma once

#include "controls/Window.h"

#include <QStringList>

class QPushButton;

namespace drx9 {

class TextView;

/// The About box: name, version, date, licences; on a press, what to add to a report.
class frmAbout : public Window {
    Q_OBJECT
public:
    /// `facts` are lines on this start of the program: where its files lie, which drivers it uses.
    frmAbout(const QStringList& facts, QWidget* owner);

private:
    void cmdSysInfo_Click();
    void showLicences();

    QStringList facts_;
    TextView* text_ = nullptr;
    QPushButton* cmdSysInfo_ = nullptr;
    bool showsSystem_ = false;
};

} // namespace drx9
