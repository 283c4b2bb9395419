#pragma once

#include <QDialog>

namespace drx9 {

/// The About box: name, version, date, licences.
class frmAbout : public QDialog {
    Q_OBJECT
public:
    explicit frmAbout(QWidget* owner);
};

} // namespace drx9
