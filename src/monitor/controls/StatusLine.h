#pragma once

#include "controls/MarkLabel.h"

#include <QStatusBar>
#include <QString>

#include <array>

namespace drx9 {

/// The main window's status bar. Its fields are named after their controls (staLink ...). Where the long
/// texts do not fit, the path of the log is the first to give way, then all fields take their short form.
class StatusLine : public QStatusBar {
    Q_OBJECT
public:
    /// An empty text hides its field.
    struct Text {
        QString text;
        QString brief;
        Tone tone = Tone::Plain;
        bool operator==(const Text&) const = default;
    };
    enum Field : std::size_t { Link, Reply, Run, Request, Shutter, Mode, Log, kFields };
    using Facts = std::array<Text, kFields>;

    explicit StatusLine(QWidget* parent);

    void showFacts(const Facts& facts);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void fit();
    [[nodiscard]] bool fits(bool briefLog) const;
    void showField(Field field, bool brief);

    std::array<MarkLabel*, kFields> labels_{};
    Facts facts_;
};

} // namespace drx9
