#include "films/frmFilm.h"

#include "controls/MarkLabel.h"
#include "controls/SpinBox.h"
#include "films/Texts.h"
#include "films/controls/FilmList.h"
#include "films/controls/StandStill.h"
#include "util/ProgramName.h"
#include "util/Text.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPointer>
#include <QPushButton>
#include <QSignalBlocker>

#include <utility>

namespace drx9 {

namespace {
constexpr std::size_t kFirstOfMany = 2; ///< index of the third sensor's box
constexpr int kHeartbeatMs = 500;

QString shown(const std::string& text) {
    return QString::fromStdString(text);
}

MarkLabel::Tone toneOf(NoticeTone tone) {
    return tone == NoticeTone::Plain  ? MarkLabel::Tone::Plain
           : tone == NoticeTone::Warn ? MarkLabel::Tone::Warn
                                      : MarkLabel::Tone::Alarm;
}
} // namespace

frmFilm::frmFilm(FilmWindowParts parts, QWidget* owner)
    : QDialog(owner,
              Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint | Qt::WindowMinMaxButtonsHint)
    , parts_(std::move(parts))
    , library_({parts_.engine, parts_.files, parts_.paths, parts_.dialogs, parts_.DBFileName})
    , editor_({library_, parts_.boxes, parts_.input, parts_.locale})
    , transfer_({library_, parts_.films, parts_.instrument, parts_.boxes, parts_.progress, parts_.clock,
                 parts_.actions, parts_.memory, parts_.locale, *this,
                 [&actions = parts_.actions] { return actions.closing(); }}) {
    buildControls();
    Form_Load();
}

frmFilm::~frmFilm() {
    // Hidden by QDialog's destructor, a field still tells that it was left: this is no film window any more
    // then.
    const QList<QWidget*> fields = findChildren<QWidget*>();
    for (QWidget* field : fields) {
        field->disconnect(this);
    }
}

// ---- Load and unload ----

void frmFilm::Form_Load() {
    timerHold_ = parts_.polling.holdTimer(filmText::kHoldReason);
    closeRound_ = parts_.round.beforeClose([this] { beforeProgramCloses(); });
    wasOnline_ = parts_.instrument.online();
    for (QPushButton* transfer : instrumentButtons_) {
        transfer->setEnabled(wasOnline_);
    }
    manySensors_ = !wasOnline_ || parts_.instrument.sensorCount() > static_cast<int>(kFirstOfMany);
    for (std::size_t k = kFirstOfMany; k < kFilmSensors; ++k) {
        chkSensAvg_[k]->setEnabled(manySensors_);
    }
    library_.DBOpen();
    showInstrument();
    showLibrary();
    list_->setFocus();
    // Nothing is read while the window is open: a link that goes has to be looked for.
    connect(&heartbeat_, &QTimer::timeout, this, [this] {
        if (!transfer_.running() && shownLost_ != (wasOnline_ && parts_.instrument.lost())) {
            showInstrument();
            showState();
        }
    });
    heartbeat_.start(kHeartbeatMs);
}

void frmFilm::closeEvent(QCloseEvent* event) {
    if (transfer_.running()) {
        closeWanted_ = true;
    } else if (!closed_ && !closeAsked_) {
        closeAsked_ = true;
        closeAsked_ = finishEditing();
        inCloseEvent_ = true;
        if (closeAsked_) {
            whenIdle([this] { Form_QueryUnload(); });
        }
        inCloseEvent_ = false;
    }
    event->setAccepted(closed_);
}

void frmFilm::Form_QueryUnload() {
    askUnsaved();
    closed_ = true;
    if (parts_.instrument.reached()) {
        hide();
        parts_.memory.filmMemoryChanged();
    }
    timerHold_.reset();
    if (!inCloseEvent_) {
        close();
    }
}

void frmFilm::askUnsaved() {
    library_.forgetNotice();
    // The bottom line goes with the window, which closes either way.
    if (!transfer_.askUnsaved() && !library_.notice().text.empty()) {
        parts_.boxes.show(library_.notice().text, kProgramName, MessageIcon::Exclamation);
    }
}

void frmFilm::beforeProgramCloses() {
    if (!closed_ && !parts_.round.sessionEnds()) {
        if (!finishEditing() && !library_.notice().text.empty()) {
            parts_.boxes.show(library_.notice().text, kProgramName, MessageIcon::Exclamation);
        }
        askUnsaved();
    }
    closed_ = true;
}

bool frmFilm::event(QEvent* event) {
    if (event->type() == QEvent::WindowActivate && state_ != nullptr) {
        showState(); // who else has the file open may have changed
        showInstrument();
    }
    return QDialog::event(event);
}

/// The wheel over the closed combo would give the film another material.
bool frmFilm::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Wheel) {
        event->ignore();
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

/// Runs the action when nothing of ours is on the stack, unless the window has gone by then.
void frmFilm::whenIdle(std::function<void()> action) {
    parts_.actions.runWhenIdle([self = QPointer<frmFilm>(this), action = std::move(action)] {
        if (self != nullptr) {
            action();
        }
    });
}

// ---- The operator's doings ----

void frmFilm::mnuFileOpen_Click() {
    afterEditing([this] {
        library_.forgetNotice();
        if (library_.openDatabase()) {
            showLibrary();
        }
    });
}

void frmFilm::mnuFileSave_Click() {
    afterEditing([this] {
        if (library_.saveDatabaseAs()) {
            refreshLists(); // the file that is shown may have been replaced
        }
        showFilm();
    });
}

void frmFilm::lstDBFilms_Click(int row) {
    library_.forgetNotice();
    list_->setCurrentRow(row);
    ShowDBFilm();
}

void frmFilm::cmdNewMat_Click() {
    afterEditing([this] {
        library_.forgetNotice();
        const std::string added = editor_.addMaterial();
        if (!added.empty()) {
            editor_.changeMaterial(added);
            showMaterials(shown(added));
        }
        showFilm();
        if (!added.empty()) {
            dbcMaterial_->setEditText(shown(added));
        }
    });
}

void frmFilm::cmdAddFilm_Click() {
    afterEditing([this] {
        library_.forgetNotice();
        if (editor_.addFilm(dbcMaterial_->currentText().toStdString())) {
            showList();
            list_->selectFilm(editor_.shown().boxes[static_cast<std::size_t>(FilmBox::FilmName)]);
        }
        showFilm();
    });
}

void frmFilm::transferClick(std::function<void()> transfer) {
    afterEditing([this, transfer = std::move(transfer)] {
        list_->moveToSelectedRow();
        {
            const StandStill still({content_, menu_});
            transfer();
        }
        showInstrument();
        showFilm();
        if (closeWanted_) {
            closeWanted_ = false;
            close();
        }
    });
}

// ---- What is shown ----

void frmFilm::showLibrary() {
    list_->clearSelection();
    showList();
    showMaterials({});
    showFilm();
}

void frmFilm::showList() {
    setWindowTitle(shown(library_.caption()));
    list_->setFilms(editor_.films());
}

void frmFilm::showMaterials(const QString& chosen) {
    const QSignalBlocker blocker(dbcMaterial_);
    dbcMaterial_->clear();
    for (const std::string& material : editor_.materials()) {
        dbcMaterial_->addItem(shown(material));
    }
    dbcMaterial_->setCurrentIndex(dbcMaterial_->findText(chosen, Qt::MatchFixedString));
    dbcMaterial_->setEditText(chosen);
}

void frmFilm::showFilm() {
    filling_ = true;
    const ShownFilm now = editor_.shown();
    film_->setEnabled(now.film);
    sensors_->setEnabled(now.film);
    for (std::size_t i = 0; i < kFilmBoxes; ++i) {
        const bool ofMaterial = i == static_cast<std::size_t>(FilmBox::Density) ||
                                i == static_cast<std::size_t>(FilmBox::ZFactor);
        txtParam_[i]->setText(shown(now.boxes[i]));
        txtParam_[i]->setEnabled(ofMaterial ? now.material : now.film);
    }
    if (now.film) {
        dbcMaterial_->setCurrentIndex(dbcMaterial_->findText(shown(now.materialName), Qt::MatchFixedString));
        dbcMaterial_->setEditText(shown(now.materialName));
        dbcMaterial_->lineEdit()->setCursorPosition(0);
    }
    spnMinutes_->setValue(now.minutes);
    spnSeconds_->setValue(now.seconds);
    for (std::size_t k = 0; k < kFilmSensors; ++k) {
        chkSensAvg_[k]->setChecked(now.sensors[k]);
    }
    filling_ = false;
    showState();
}

void frmFilm::showInstrument() {
    const FilmInstrument& now = parts_.instrument;
    version_->setText(shown(
        !now.lost() ? filled(filmText::kInstrument, {now.versionText(), std::to_string(now.FilmCount())})
                    : filmText::kOffLine));
}

/// What came of the last operation goes before what lasts; but a library that cannot be read goes before all.
void frmFilm::showState() {
    shownLost_ = wasOnline_ && parts_.instrument.lost();
    const LibraryNotice standing = library_.standing();
    LibraryNotice said = library_.notice();
    if (standing.tone == NoticeTone::Alarm) {
        said = {standing.text + (said.text.empty() ? "" : ". ") + said.text, NoticeTone::Alarm};
    }
    for (const LibraryNotice& line :
         {transfer_.lasting(), LibraryNotice{shownLost_ ? filmText::kLinkLost : "", NoticeTone::Alarm},
          standing}) {
        said = said.text.empty() ? line : said;
    }
    state_->say(shown(said.text), toneOf(said.tone));
    state_->setToolTip(shown(said.text));
}

// ---- For the transfer ----

int frmFilm::rowCount() const {
    return list_->rowCount();
}

void frmFilm::setCurrentRow(int row) {
    list_->setCurrentRow(row);
}

bool frmFilm::isSelected(int row) const {
    return list_->isSelected(row);
}

std::string frmFilm::filmName() const {
    return list_->filmName();
}

void frmFilm::ShowDBFilm() {
    list_->noteShown();
    editor_.ShowDBFilm(list_->filmName());
    if (!library_.found(Dat::DBSelected)) {
        dbcMaterial_->setCurrentIndex(-1); // not that of the film before
        dbcMaterial_->setEditText({});
    }
    showFilm();
}

void frmFilm::refreshLists() {
    library_.refresh(Dat::DBFilms);
    library_.refresh(Dat::MatAll);
    showList();
    showMaterials(dbcMaterial_->currentText());
}

void frmFilm::selectFirstRow() {
    list_->selectFirstRow();
    if (list_->rowCount() > 0) {
        ShowDBFilm();
    }
}

void frmFilm::setHourglass(bool on) {
    if (on) {
        setCursor(Qt::WaitCursor);
    } else {
        unsetCursor();
    }
}

} // namespace drx9
