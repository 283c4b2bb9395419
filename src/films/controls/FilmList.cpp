#include "films/controls/FilmList.h"

#include "controls/Theme.h"
#include "util/Text.h"

#include <QEvent>
#include <QHeaderView>
#include <QPainter>
#include <QStandardItemModel>
#include <QTreeView>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace drx9 {

namespace {
constexpr int kWidth = 252;
constexpr int kNumberColumn = 92;
constexpr int kRowHeight = 28;
constexpr int kBorder = 2; // its width with the focus
} // namespace

FilmList::FilmList(QWidget* parent)
    : QFrame(parent)
    , view_(new QTreeView(this))
    , model_(new QStandardItemModel(0, 2, view_)) {
    auto* room = new QVBoxLayout(this);
    room->setContentsMargins(kBorder, kBorder, kBorder, kBorder);
    room->addWidget(view_);
    setFixedWidth(kWidth);
    setFocusProxy(view_);
    setUpView();
    // The current row alone, which a list that gets the focus finds itself, chooses no film.
    connect(view_->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
        const int row = view_->currentIndex().row();
        if (!filling_ && row >= 0 && isSelected(row)) {
            choose(row);
        }
    });
    connect(view_, &QTreeView::clicked, this, [this](const QModelIndex& clicked) { choose(clicked.row()); });
}

void FilmList::setUpView() {
    view_->setObjectName(QStringLiteral("lstDBFilms"));
    view_->setToolTip(QStringLiteral("Select a film to edit."));
    view_->setAccessibleName(QStringLiteral("Films"));
    view_->setAccessibleDescription(view_->toolTip()); // Qt's tables do not take it from there
    view_->setFrameShape(QFrame::NoFrame);
    view_->setAllColumnsShowFocus(true);
    view_->setRootIsDecorated(false);
    view_->setUniformRowHeights(true);
    view_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    view_->setSelectionBehavior(QAbstractItemView::SelectRows);
    view_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    view_->installEventFilter(this);
    model_->setHorizontalHeaderLabels({QStringLiteral("FilmNum"), QStringLiteral("FilmName")});
    model_->horizontalHeaderItem(0)->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
    model_->horizontalHeaderItem(1)->setTextAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    view_->setModel(model_);
    QHeaderView* header = view_->header();
    header->setSectionResizeMode(QHeaderView::Fixed);
    header->resizeSection(0, kNumberColumn);
    header->setStretchLastSection(true);
    header->setSectionsMovable(false);
    QFont bold = header->font();
    bold.setWeight(QFont::DemiBold);
    header->setFont(bold);
    header->setFixedHeight(kRowHeight);
}

void FilmList::choose(int row) {
    if (row != shownRow_) {
        emit chosen(row);
    }
}

// ---- Rows ----

void FilmList::setFilms(const std::vector<FilmRow>& films) {
    const bool before = std::exchange(filling_, true);
    films_ = films;
    model_->setRowCount(rowCount());
    for (int row = 0; row < rowCount(); ++row) {
        const FilmRow& film = films_[static_cast<std::size_t>(row)];
        for (const auto& [column, text] : {std::pair{0, film.number}, {1, film.name}}) {
            if (model_->item(row, column) == nullptr) {
                model_->setItem(row, column, new QStandardItem);
                model_->item(row, column)->setSizeHint(QSize(0, kRowHeight));
            }
            model_->item(row, column)->setText(QString::fromStdString(text));
        }
        model_->item(row, 0)->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
    }
    filling_ = before;
}

void FilmList::clearSelection() {
    view_->selectionModel()->clear();
    shownRow_ = -1;
}

bool FilmList::isSelected(int row) const {
    return view_->selectionModel()->isRowSelected(row);
}

std::string FilmList::filmName() const {
    const int row = view_->currentIndex().row();
    return row >= 0 && row < rowCount() ? films_[static_cast<std::size_t>(row)].name : std::string();
}

void FilmList::setCurrentRow(int row) {
    const bool before = std::exchange(filling_, true);
    view_->selectionModel()->setCurrentIndex(model_->index(row, 0), QItemSelectionModel::NoUpdate);
    filling_ = before;
}

void FilmList::moveToFirstRow() {
    view_->setAutoScroll(false);
    if (rowCount() > 0) {
        setCurrentRow(0);
    }
    view_->setAutoScroll(true);
}

void FilmList::selectFirstRow() {
    const bool before = std::exchange(filling_, true);
    view_->setCurrentIndex(model_->index(0, 0));
    filling_ = before;
}

void FilmList::moveToSelectedRow() {
    const QModelIndexList selected = view_->selectionModel()->selectedRows();
    if (selected.isEmpty()) {
        setCurrentRow(-1); // where the focus is, is nobody's choice
    } else if (!isSelected(view_->currentIndex().row())) {
        setCurrentRow(selected.first().row());
    }
}

void FilmList::selectFilm(const std::string& name) {
    const bool before = std::exchange(filling_, true);
    clearSelection();
    const auto film = std::find_if(films_.begin(), films_.end(), [&](const FilmRow& row) {
        return trimmed(row.name) == trimmed(name); // the box shows no blanks behind it
    });
    if (!name.empty() && film != films_.end()) {
        view_->setCurrentIndex(model_->index(static_cast<int>(film - films_.begin()), 0));
        noteShown();
    }
    filling_ = before;
}

void FilmList::noteShown() {
    shownRow_ = view_->currentIndex().row();
}

// ---- The border of an input face, accented while the list has the focus ----

bool FilmList::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) {
        update();
    }
    return QFrame::eventFilter(watched, event);
}

void FilmList::paintEvent(QPaintEvent* /*event*/) {
    const Theme theme = Theme::of(palette());
    const bool focused = view_->hasFocus();
    const double width = focused ? kBorder : 1;
    const double inset = width / 2;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(focused ? theme.accent : theme.line, width));
    painter.setBrush(theme.base);
    painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), 4, 4);
}

} // namespace drx9
