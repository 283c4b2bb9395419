#include "films/frmFilm.h"

#include "controls/Build.h"
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
#include <QPushButton>
#include <QScopeGuard>
#include <QSignalBlocker>

#include <algorithm>
#include <utility>

namespace drx9 {

namespace {
constexpr std::size_t kFirstOfMany = 2; ///< index of the third sensor's box
constexpr int kHeartbeatMs = 500;
} // namespace

frmFilm::frmFilm(FilmWindowParts parts, QWidget* owner)
    : Window(owner, Qt::WindowMinMaxButtonsHint)
    , parts_(std::move(parts))
    , library_({parts_.engine, parts_.files, parts_.paths, parts_.dialogs, parts_.DBFileName})
    , editor_({library_, parts_.boxes, parts_.input, parts_.locale})
    , transfer_({library_, parts_.films, parts_.instrument, parts_.boxes, parts_.progress, parts_.clock,
                 parts_.actions, parts_.memory, parts_.locale, *this,
                 [&actions = parts_.actions] { return actions.closing(); }}) {
    buildControls();
    Form_Load();
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
            parts_.actions.runWhenIdle(ifAlive([this] { Form_QueryUnload(); }));
        }
        inCloseEvent_ = false;
    }
    event->setAccepted(closed_);
}

void frmFilm::Form_QueryUnload() {
    const auto gone = qScopeGuard([this] { // also when the question or the refresh throws: polling goes on
        closed_ = true;
        timerHold_.reset();
        if (!inCloseEvent_) {
            close();
        }
    });
    askUnsaved();
    closed_ = true;
    if (parts_.instrument.reached()) {
        hide();
        parts_.memory.filmMemoryChanged();
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
    return Window::event(event);
}

/// The wheel over the closed combo would give the film another material.
bool frmFilm::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Wheel) {
        event->ignore();
        return true;
    }
    return Window::eventFilter(watched, event);
}

// ---- What the operator does ----

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

/// What is wrong with the library or the link goes before what came of the last operation, and that before
/// what lasts.
void frmFilm::showState() {
    shownLost_ = wasOnline_ && parts_.instrument.lost();
    LibraryNotice said;
    const auto add = [&said](const LibraryNotice& line) {
        const bool repeats = line.text.rfind(said.text, 0) == 0;
        said.text = repeats ? line.text : said.text + (line.text.empty() ? "" : ". ") + line.text;
        said.tone = std::max(said.tone, line.tone);
    };
    const LibraryNotice standing = library_.standing();
    add(standing.tone == Tone::Alarm ? standing : LibraryNotice{});
    add(shownLost_ ? LibraryNotice{filmText::kLinkLost, Tone::Alarm} : LibraryNotice{});
    add(!library_.notice().text.empty() ? library_.notice() : transfer_.lasting());
    if (said.text.empty()) {
        said = standing;
    }
    state_->say(shown(said.text), said.tone);
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
