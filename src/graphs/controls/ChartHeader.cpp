#include "graphs/controls/ChartHeader.h"

#include "graphs/controls/ChartTickers.h"
#include "controls/Theme.h"

#include <QMouseEvent>
#include <QPainter>

namespace drx9 {

namespace {
constexpr int kLeft = 14;
constexpr int kTop = 6;
constexpr int kLine = 21;
constexpr int kSwatch = 21;
constexpr int kSwatchGap = 7;
constexpr int kEntryGap = 15;
constexpr int kNoteGap = 20;

QFont boldFont(const QWidget& widget) {
    QFont font = widget.font();
    font.setBold(true);
    return font;
}
} // namespace

ChartHeader::ChartHeader(const QString& title, QWidget* parent)
    : QWidget(parent)
    , title_(title) {
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    fitHeight();
}

void ChartHeader::setEntries(std::vector<Entry> entries) {
    entries_ = std::move(entries);
    fitHeight();
    update();
}

void ChartHeader::setNote(const QString& note) {
    if (note_ == note) {
        return;
    }
    note_ = note;
    fitHeight();
    update();
}

int ChartHeader::legendWidth() const {
    int width = -kEntryGap;
    for (const Entry& entry : entries_) {
        width += entry.present
                     ? kSwatch + kSwatchGap + fontMetrics().horizontalAdvance(entry.label) + kEntryGap
                     : 0;
    }
    return width;
}

int ChartHeader::titleWidth() const {
    const int title = QFontMetrics(boldFont(*this)).horizontalAdvance(title_);
    return note_.isEmpty() ? title : title + kNoteGap + fontMetrics().horizontalAdvance(note_);
}

bool ChartHeader::secondLine() const {
    return kLeft + titleWidth() + kNoteGap + legendWidth() + lastLabelRoom(fontMetrics()) > width();
}

void ChartHeader::fitHeight() {
    const int wanted = kTop + kLine + (secondLine() ? kLine : 0);
    if (wanted != height()) {
        setFixedHeight(wanted);
    }
}

QSize ChartHeader::sizeHint() const {
    return {kLeft + titleWidth() + lastLabelRoom(fontMetrics()), height()};
}

QSize ChartHeader::minimumSizeHint() const {
    return {0, height()};
}

std::vector<QRect> ChartHeader::entryRects() const {
    std::vector<QRect> rects;
    int x = width() - lastLabelRoom(fontMetrics()) - legendWidth();
    const int y = kTop + (secondLine() ? kLine : 0);
    for (const Entry& entry : entries_) {
        const int w = entry.present ? kSwatch + kSwatchGap + fontMetrics().horizontalAdvance(entry.label) : 0;
        rects.emplace_back(x, y, w, kLine);
        x += entry.present ? w + kEntryGap : 0;
    }
    return rects;
}

void ChartHeader::paintEvent(QPaintEvent*) {
    const Theme theme = Theme::of(palette());
    QPainter painter(this);
    painter.fillRect(rect(), theme.plot);
    painter.setFont(boldFont(*this));
    painter.setPen(theme.text);
    painter.drawText(QRect(kLeft, kTop, width(), kLine), Qt::AlignLeft | Qt::AlignVCenter, title_);
    const int noteX = kLeft + painter.fontMetrics().horizontalAdvance(title_) + kNoteGap;
    painter.setFont(font());
    if (!note_.isEmpty()) {
        painter.setPen(theme.warn);
        painter.drawText(QRect(noteX, kTop, width() - noteX, kLine), Qt::AlignLeft | Qt::AlignVCenter, note_);
    }
    const std::vector<QRect> rects = entryRects();
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        const Entry& entry = entries_[i];
        if (!entry.present) {
            continue;
        }
        const QRect& r = rects[i];
        painter.fillRect(QRect(r.left(), r.center().y(), kSwatch, 3), entry.shown ? entry.color : theme.hair);
        painter.setPen(entry.shown ? theme.text : theme.disabled);
        QFont labelFont = font();
        labelFont.setStrikeOut(!entry.shown);
        painter.setFont(labelFont);
        painter.drawText(r.adjusted(kSwatch + kSwatchGap, 0, 4, 0), Qt::AlignLeft | Qt::AlignVCenter,
                         entry.label);
    }
}

void ChartHeader::mousePressEvent(QMouseEvent* event) {
    const std::vector<QRect> rects = entryRects();
    for (std::size_t i = 0; i < rects.size(); ++i) {
        if (entries_[i].present && rects[i].contains(event->pos())) {
            emit entryClicked(static_cast<int>(i));
        }
    }
    event->ignore();
}

void ChartHeader::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    fitHeight();
}

} // namespace drx9
