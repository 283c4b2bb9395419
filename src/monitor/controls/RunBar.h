#pragma once

#include <QPointer>
#include <QString>
#include <QWidget>

#include <span>
#include <string>
#include <vector>

class QLabel;
class QPushButton;

namespace drx9 {

class NoticePlate;
class PickList;
class StartStopButton;
class WarnMark;
struct StepMeasures;

/// The main window's bar: film list, notice plate, Zero, shutter, START/STOP; off line a row of words in
/// their place. A press only raises a signal; the bar shows what it is told, and sets only what differs.
class RunBar : public QWidget {
    Q_OBJECT
public:
    struct Facts {
        bool started = false; ///< off line is said only once the program has looked
        bool onLine = false;
        bool running = false;                    ///< the film list is locked
        std::span<const std::string> films = {}; ///< UTF-8; read in showFacts() only
        int filmIndex = -1;                      ///< -1 none
        QString filmName = {}; ///< of the film in use, shown where the list does not hold it
        QString filmMark = {}; ///< why that film is not sure; empty: the instrument confirmed it
        bool held = false;     ///< a window has paused the polling: nothing would carry a request out
        std::string shutterCaption = {};
        // A button whose request waits stays down.
        bool zeroDown = false;
        bool shutterDown = false;
        bool startStopDown = false;
    };

    explicit RunBar(QWidget* parent);

    void showFacts(const Facts& facts);
    /// `subject` tells one notice from another; an empty text clears the plate.
    void showNotice(int subject, const QString& text, const QString& brief);
    void setStep(const StepMeasures& measures);

    // Keys and focus.

    void openFilms();
    void pressZero();
    void pressShutter();
    void pressStartStop();
    /// The first control that can be used: where a key that goes to the bar leads.
    [[nodiscard]] QWidget* entry() const;
    [[nodiscard]] QWidget* filmList() const;
    [[nodiscard]] QWidget* lastControl() const;
    /// Where Qt puts the focus when a control of the bar that had it is hidden or locked. Focus there counts
    /// as nobody's choice, and the bar takes it back.
    void setSpareFocus(const QWidget* widget) { spareFocus_ = widget; }

signals:
    void filmChosen(int index); ///< from 0; the operator's choice only
    void zeroPressed();
    void shutterPressed();
    void startStopPressed();

protected:
    void changeEvent(QEvent* event) override;

private:
    QWidget* buildRunRow();
    QWidget* buildOffLineRow();
    void showFilms(const Facts& facts);
    void placeFocus(bool comesOnLine, bool startsRun);
    void allow(const Facts& facts);
    [[nodiscard]] bool focusIsSpare() const;
    void applyTheme();

    QLabel* lblFilm_ = nullptr;
    WarnMark* mrkFilm_ = nullptr;
    PickList* cboFilms_ = nullptr;
    NoticePlate* lblNotice_ = nullptr;
    QPushButton* cmdZero_ = nullptr;
    QPushButton* cmdShutter_ = nullptr;
    StartStopButton* cmdStartStop_ = nullptr;
    QWidget* offLineRow_ = nullptr;
    QLabel* offLineHint_ = nullptr;
    const QWidget* spareFocus_ = nullptr;
    QPointer<QWidget> focusBeforeHold_;
    std::vector<std::string> shownFilms_;
    Facts shown_;
    bool wasOnLine_ = false; ///< since the program's start
};

} // namespace drx9
