#pragma once

#include "controls/Window.h"
#include "films/FilmEditor.h"
#include "films/FilmInstrument.h"
#include "films/FilmLibrary.h"
#include "films/FilmTransfer.h"
#include "link/MonitorAccess.h"

#include <QTimer>

#include <array>
#include <functional>
#include <memory>

class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QMenuBar;
class QPushButton;

namespace drx9 {

class FilmList;
class MarkLabel;
class SpinBox;

struct FilmWindowParts {
    jet::DBEngine& engine;
    FilePort& files;
    const Paths& paths;
    std::string& DBFileName;
    Films& films;
    FilmInstrument instrument;
    FileDialogs& dialogs;
    InputBox& input;
    MessageBoxes& boxes;
    Progress& progress;
    ActionQueue& actions;
    const Clock& clock;
    const NumberLocale& locale;
    PollingAccess& polling;
    FilmMemoryAccess& memory;
    CloseRound& round;
};

/// The film window: the library's films and materials, and their transfer to and from the instrument. Not
/// modal, but the update timer does not run while it is open. It is made when nothing of ours is on the
/// stack: its load may ask for a file. A transfer that runs puts off its closing; what is unsaved is asked
/// about before it closes, also when the program does. A typed value that is refused or not stored keeps
/// the window open, and what was to begin with it does not begin.
class frmFilm : public Window, private FilmListView {
    Q_OBJECT
public:
    frmFilm(FilmWindowParts parts, QWidget* owner);

    /// Esc: a field that is being typed gets its stored value again; otherwise the window closes.
    void reject() override;

protected:
    void closeEvent(QCloseEvent* event) override;
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // Controls
    void buildControls();
    QWidget* buildBody();
    void fitScreen(const QSize& least);
    QMenuBar* buildMenu();
    QLayout* buildList();
    QGroupBox* buildFilm();
    QGroupBox* buildMaterial();
    QGroupBox* buildSensors();
    QGroupBox* buildInstrument();
    QLayout* buildTime();
    QLayout* buildBottom();
    QLineEdit* buildBox(FilmBox box, const char* accessible, const char* toolTip);
    QPushButton* button(const char* name, const char* caption, const char* toolTip);
    SpinBox* spinner(const char* name, const char* text, const char* accessible, int most);
    void setTabOrders();

    // Events
    void Form_Load();
    void Form_QueryUnload();
    void lstDBFilms_Click(int row);
    void dbcMaterial_Change();
    void chkSensAvg_Click(std::size_t sensor);
    void spnTime_Change();
    void txtParam_Change(FilmBox box);
    void txtParam_Finished(FilmBox box);
    void cmdNewMat_Click();
    void cmdAddFilm_Click();
    void transferClick(std::function<void()> transfer);
    void mnuFileOpen_Click();
    void mnuFileSave_Click();
    void afterEditing(std::function<void()> action);
    bool finishEditing();
    void noteRefusal(bool refused);
    [[nodiscard]] QLineEdit* typedField() const;
    void askUnsaved();
    void beforeProgramCloses();

    // What is shown
    void showLibrary();
    void showFilm();
    void showList();
    void showMaterials(const QString& chosen);
    void showState();
    void showInstrument();

    // For the transfer
    [[nodiscard]] int rowCount() const override;
    void setCurrentRow(int row) override;
    [[nodiscard]] bool isSelected(int row) const override;
    [[nodiscard]] std::string filmName() const override;
    void ShowDBFilm() override;
    void refreshLists() override;
    void selectFirstRow() override;
    [[nodiscard]] bool manySensors() const override { return manySensors_; }
    void setHourglass(bool on) override;

    FilmWindowParts parts_;
    FilmLibrary library_;
    FilmEditor editor_;
    FilmTransfer transfer_;
    std::unique_ptr<Tenure> timerHold_;
    std::unique_ptr<Tenure> closeRound_;
    bool filling_ = true; ///< changes of the controls are the program's own
    bool manySensors_ = true;
    QTimer heartbeat_;
    bool shownLost_ = false; ///< the link, as the window says
    bool wasOnline_ = false;
    bool closeWanted_ = false; ///< asked for in mid-transfer
    bool closeAsked_ = false;
    bool closed_ = false;
    bool inCloseEvent_ = false;
    bool refused_ = false;      ///< a typed value, just now
    bool pressRefused_ = false; ///< a typed value that the press of a button had finished

    QMenuBar* menu_ = nullptr;
    QWidget* content_ = nullptr;
    FilmList* list_ = nullptr;
    QGroupBox* film_ = nullptr;
    QGroupBox* sensors_ = nullptr;
    std::array<QLineEdit*, kFilmBoxes> txtParam_{};
    QComboBox* dbcMaterial_ = nullptr;
    SpinBox* spnMinutes_ = nullptr;
    SpinBox* spnSeconds_ = nullptr;
    std::array<QCheckBox*, kFilmSensors> chkSensAvg_{};
    QLabel* version_ = nullptr;
    std::array<QPushButton*, 4> instrumentButtons_{};
    MarkLabel* state_ = nullptr;
};

} // namespace drx9
