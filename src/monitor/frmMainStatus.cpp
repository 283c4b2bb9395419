// Ages, notices and the status bar: what changes with time alone.
#include "monitor/frmMain.h"

#include "controls/MarkLabel.h"
#include "controls/NoticePlate.h"

#include <QLabel>

#include <algorithm>

namespace drx9 {

namespace {
constexpr int kLongTextsFrom = 1100; ///< width of the window
constexpr int kStatusEdges = 24;
constexpr int kStatusSpacing = 12;

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
    const StatusFields fields{{{staLink_, ::drx9::staLink(facts)},
                               {staReply_, ::drx9::staReply(facts)},
                               {staRun_, ::drx9::staRun(facts)},
                               {staShutter_, ::drx9::staShutter(facts)},
                               {staMode_, ::drx9::staMode(facts)},
                               {staLog_, ::drx9::staLog(facts)}}};
    const auto same = [](const StatusField& a, const StatusField& b) {
        return a.text.text == b.text.text && a.text.brief == b.text.brief && a.text.tone == b.text.tone;
    };
    if (shownStatusWidth_ == width() &&
        std::equal(fields.begin(), fields.end(), shownStatus_.begin(), same)) {
        return; // measuring texts takes longer than all the rest of a beat
    }
    shownStatus_ = fields;
    shownStatusWidth_ = width();
    const bool briefLog = !fitInStatusBar(fields, false); // its path is the first to give way
    const bool brief = briefLog && !fitInStatusBar(fields, true);
    for (const StatusField& field : fields) {
        showField(field, brief || (briefLog && field.label == staLog_));
    }
}

bool frmMain::fitInStatusBar(const StatusFields& fields, bool briefLog) const {
    int wanted = kStatusEdges;
    for (const auto& [label, text] : fields) {
        const std::string& shown = briefLog && label == staLog_ ? text.brief : text.text;
        if (!shown.empty()) {
            wanted += label->widthFor(QString::fromStdString(shown), toneOf(text.tone)) + kStatusSpacing;
        }
    }
    return width() >= kLongTextsFrom && wanted <= width();
}

void frmMain::showField(const StatusField& field, bool brief) {
    const auto& [label, text] = field;
    const std::string& wanted = brief ? text.brief : text.text;
    if (label->isHidden() != wanted.empty()) {
        label->setVisible(!wanted.empty());
    }
    label->say(QString::fromStdString(wanted), toneOf(text.tone));
    const QString full = QString::fromStdString(text.text);
    if (label->toolTip() != full) {
        label->setToolTip(full);
    }
}

} // namespace drx9
