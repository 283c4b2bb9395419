// The film window's fields: what is typed in them, and when it is stored.
#include "controls/SpinBox.h"
#include "films/controls/FilmList.h"
#include "films/frmFilm.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QTimer>

#include <utility>

namespace drx9 {

// ---- The field that is being typed ----

/// The text box that has the window's focus, the combo's too; null where it is none.
QLineEdit* frmFilm::typedField() const {
    QWidget* focus = focusWidget();
    const auto* combo = qobject_cast<QComboBox*>(focus);
    return combo != nullptr ? combo->lineEdit() : qobject_cast<QLineEdit*>(focus);
}

/// What is typed is finished as if the field had been left, also where another window is in front. False
/// when it was refused or not stored, here or because a button was pressed: the bottom line says it.
bool frmFilm::finishEditing() {
    refused_ = false;
    SpinBox::finishTyping(*this);
    if (QLineEdit* field = typedField()) {
        emit field->editingFinished();
    }
    return !std::exchange(pressRefused_, false) && !refused_;
}

/// `refused_` holds for the event in hand: the press that takes the focus from a field also begins a click.
void frmFilm::noteRefusal(bool refused) {
    if (refused || library_.notice().tone != Tone::Plain) {
        refused_ = true;
        QTimer::singleShot(0, this, [this] { refused_ = false; });
    }
}

void frmFilm::reject() {
    QLineEdit* field = typedField();
    const auto* spinner = qobject_cast<SpinBox*>(focusWidget());
    if (spinner != nullptr ? !spinner->isTyping() : field == nullptr || !field->isModified()) {
        close();
        return;
    }
    if (field != nullptr) {
        field->setModified(false);
    }
    showFilm();
}

void frmFilm::afterEditing(std::function<void()> action) {
    if (finishEditing()) {
        parts_.actions.runWhenIdle(ifAlive(std::move(action)));
    }
}

// ---- Their changes ----

/// A text that nobody typed, as a screen reader gives it, counts as typed; it is stored at once where the
/// field is not the one in hand.
void frmFilm::txtParam_Change(FilmBox box) {
    const auto index = static_cast<std::size_t>(box);
    QLineEdit* field = txtParam_[index];
    if (filling_ || field->isModified() || field->text().toStdString() == editor_.shown().boxes[index]) {
        return;
    }
    field->setModified(true);
    if (!field->hasFocus()) {
        txtParam_Finished(box);
    }
}

void frmFilm::txtParam_Finished(FilmBox box) {
    QLineEdit* field = txtParam_[static_cast<std::size_t>(box)];
    if (filling_ || !field->isModified()) {
        return;
    }
    field->setModified(false); // a message box takes the focus: once is enough
    library_.forgetNotice();
    const std::string typed = field->text().toStdString();
    bool taken = true;
    if (box != FilmBox::FilmName) {
        editor_.editBox(box, typed);
    } else if (taken = editor_.EditFilmName(typed); taken) {
        showList();
        list_->moveToFirstRow(); // the renamed film stays shown and selected
    }
    noteRefusal(!taken);
    showFilm();
}

void frmFilm::dbcMaterial_Change() {
    if (filling_) {
        return;
    }
    dbcMaterial_->lineEdit()->setModified(false);
    library_.forgetNotice();
    editor_.changeMaterial(dbcMaterial_->currentText().toStdString());
    noteRefusal(false);
    const QString typed = dbcMaterial_->currentText();
    showFilm();
    if (!library_.found(Dat::DBSelected) || !library_.found(Dat::Material)) {
        dbcMaterial_->setEditText(typed);
    }
}

void frmFilm::chkSensAvg_Click(std::size_t sensor) {
    if (filling_) {
        return;
    }
    library_.forgetNotice();
    editor_.clickSensor(sensor, chkSensAvg_[sensor]->isChecked());
    showFilm();
}

void frmFilm::spnTime_Change() {
    if (filling_ || !library_.found(Dat::DBSelected)) {
        return;
    }
    library_.forgetNotice();
    editor_.setTime(spnMinutes_->value(), spnSeconds_->value());
    noteRefusal(false);
    showFilm(); // the stored time where the new one was not stored
}

} // namespace drx9
