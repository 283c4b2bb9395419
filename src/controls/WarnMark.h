#pragma once

#include "util/Tone.h"

#include <QWidget>

namespace drx9 {

/// A warning triangle alone. What it means is its tooltip, and what a screen reader says; with nothing to say
/// it is hidden and keeps its place.
class WarnMark : public QWidget {
    Q_OBJECT
public:
    explicit WarnMark(QWidget* parent = nullptr);

    void setExplanation(const QString& text, Tone tone = Tone::Warn);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Tone tone_ = Tone::Warn;
};

} // namespace drx9
