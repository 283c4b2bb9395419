// Ages, notices and the status bar: what changes with time alone.
#include "monitor/frmMain.h"

#include "util/controls/MarkLabel.h"
#include "util/controls/NoticePlate.h"

#include <QLabel>

namespace drx9 {

namespace {
constexpr int kLongTextsFrom = 1100; ///< width of the window

MarkLabel::Tone toneOf(StatusText::Tone tone) {
    switch (tone) {
    case StatusText::Tone::Warn:
        return MarkLabel::Tone::Warn;
    case StatusText::Tone::Alarm:
        return MarkLabel::Tone::Alarm;
    default:
        return MarkLabel::Tone::Plain;
    }
}
} // namespace

void frmMain::beat() {
    const StatusFacts facts = statusFacts(monitor_, monitor_.parts().clock.monotonic());
    showLooks(facts);
    showStatus(facts);
    const QString silence = QString::fromStdString(silenceNote(facts));
    for (int number = 1; number <= 4; ++number) {
        parts_.charts.chart(number).setSilence(silence);
    }
}

void frmMain::showStatus(const StatusFacts& facts) {
    const Notice notice = gravestNotice(facts);
    lblNotice_->showNotice(static_cast<int>(notice.subject), QString::fromStdString(notice.text),
                           QString::fromStdString(notice.brief));
    offLineHint_->setVisible(notice.text.empty());
    showField(staLink_, ::drx9::staLink(facts));
    showField(staReply_, ::drx9::staReply(facts));
    showField(staRun_, ::drx9::staRun(facts));
    showField(staShutter_, ::drx9::staShutter(facts));
    showField(staMode_, ::drx9::staMode(facts));
    showField(staLog_, ::drx9::staLog(facts));
}

void frmMain::showField(MarkLabel* field, const StatusText& text) {
    const std::string& wanted = width() >= kLongTextsFrom ? text.text : text.brief;
    const QString shown = QString::fromStdString(wanted);
    if (field->isHidden() != wanted.empty()) {
        field->setVisible(!wanted.empty());
    }
    field->say(shown, toneOf(text.tone));
    const QString full = QString::fromStdString(text.text);
    if (field->toolTip() != full) {
        field->setToolTip(full);
    }
}

} // namespace drx9
