#pragma once

#include "link/Records.h"
#include "monitor/Readouts.h"

#include <QString>
#include <QWidget>

#include <array>
#include <bitset>
#include <string>

class QLabel;

namespace drx9 {

class Gauge;
class MarkLabel;
class Readout;
class SensorLabel;
struct StepMeasures;

/// The main window's numbers: a band with averages, gauge and clocks above, the sensors at the left, and what
/// it is given (the charts) in the room between. Sets only what differs.
class ReadoutPanel : public QWidget {
    Q_OBJECT
public:
    /// Values and labels; read in showFacts() only.
    struct Facts {
        const Readouts::Texts& texts;
        const Readouts::Texts& labels;
        int sensorCount = kMaxSensors; ///< labels beyond it have no swatch
        /// Why a crystal looks failed, UTF-8; empty: it does not.
        const std::array<std::string, kMaxSensors>& crystalMarks;
        double gaugeShare = 0; ///< 0 to 1
    };
    /// What changes with time alone.
    struct Looks {
        bool running = false; ///< else the clocks show a former run
        bool stale = false;
        std::bitset<Readouts::kFields> failed; ///< fields whose own exchange failed
        QString age;                           ///< "14 s old" beside the primary labels
        bool finalReached = false;             ///< said in the place of the thickness's age
    };

    ReadoutPanel(QWidget* between, QWidget* parent);

    void showFacts(const Facts& facts);
    void showLooks(const Looks& looks);
    void setStep(const StepMeasures& measures);
    /// The one stop of the Tab key; arrows walk the other readouts.
    [[nodiscard]] QWidget* entry() const;

private:
    void buildReadout(std::size_t field);
    QWidget* buildBand();
    QWidget* buildSensors();
    void walk(std::size_t from, int direction);

    std::array<Readout*, Readouts::kFields> TxtData_{}; ///< from 1
    std::array<QLabel*, Readouts::kFields> LblData_{};
    std::array<SensorLabel*, kMaxSensors> sensorLabels_{};
    std::array<MarkLabel*, 2> ages_{}; ///< left of the labels of average rate and thickness
    Gauge* gauge_ = nullptr;
    QWidget* band_ = nullptr;
    QWidget* sensors_ = nullptr;
    Readouts::Texts shownTexts_;
    Readouts::Texts shownLabels_;
};

} // namespace drx9
