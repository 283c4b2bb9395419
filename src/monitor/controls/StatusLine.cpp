#include "monitor/controls/StatusLine.h"

#include <QHBoxLayout>

namespace drx9 {

namespace {
constexpr int kHeight = 28;
constexpr int kLongTextsFrom = 1100; ///< width of the window
constexpr int kEdges = 24;
constexpr int kSpacing = 12;

struct FieldDesign {
    const char* name;
    bool separator;
};
constexpr std::array<FieldDesign, StatusLine::kFields> kDesigns{{{"staLink", false},
                                                                 {"staReply", true},
                                                                 {"staRun", true},
                                                                 {"staRequest", true},
                                                                 {"staShutter", true},
                                                                 {"staMode", true},
                                                                 {"staLog", false}}};
} // namespace

StatusLine::StatusLine(QWidget* parent)
    : QStatusBar(parent) {
    setSizeGripEnabled(false);
    setFixedHeight(kHeight);
    auto* rowWidget = new QWidget(this);
    auto* row = new QHBoxLayout(rowWidget);
    row->setContentsMargins(10, 0, 9, 3);
    row->setSpacing(kSpacing);
    for (std::size_t field = 0; field < kFields; ++field) {
        auto* label = new MarkLabel(rowWidget);
        label->setObjectName(QString::fromLatin1(kDesigns[field].name));
        label->setSeparator(kDesigns[field].separator);
        if (field == Log) {
            row->addStretch(1);
        } else {
            label->setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Preferred);
        }
        row->addWidget(label);
        labels_[field] = label;
    }
    addWidget(rowWidget, 1);
}

/// Measuring texts takes longer than all the rest of a beat: only when one differs.
void StatusLine::showFacts(const Facts& facts) {
    if (facts_ != facts) {
        facts_ = facts;
        fit();
    }
}

void StatusLine::resizeEvent(QResizeEvent* event) {
    QStatusBar::resizeEvent(event);
    fit();
}

void StatusLine::fit() {
    const bool briefLog = !fits(false);
    const bool brief = briefLog && !fits(true);
    for (std::size_t field = 0; field < kFields; ++field) {
        showField(static_cast<Field>(field), brief || (briefLog && field == Log));
    }
}

bool StatusLine::fits(bool briefLog) const {
    int wanted = kEdges;
    for (std::size_t field = 0; field < kFields; ++field) {
        const Text& text = facts_[field];
        const QString& shown = briefLog && field == Log ? text.brief : text.text;
        if (!shown.isEmpty()) {
            wanted += labels_[field]->widthFor(shown, text.tone) + kSpacing;
        }
    }
    return width() >= kLongTextsFrom && wanted <= width();
}

void StatusLine::showField(Field field, bool brief) {
    const Text& text = facts_[field];
    MarkLabel* label = labels_[field];
    const QString& wanted = brief ? text.brief : text.text;
    if (label->isHidden() != wanted.isEmpty()) {
        label->setVisible(!wanted.isEmpty());
    }
    label->say(wanted, text.tone);
    if (label->toolTip() != text.text) {
        label->setToolTip(text.text);
    }
}

} // namespace drx9
