#include "controls/ManualViewer.h"

#include "controls/TextView.h"
#include "controls/Texts.h"
#include "controls/Theme.h"

#include <QAbstractTextDocumentLayout>
#include <QApplication>
#include <QFile>
#include <QHBoxLayout>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QScrollBar>
#include <QSet>
#include <QShortcut>
#include <QSignalBlocker>
#include <QTextBlock>
#include <QTextTable>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <QWindow>

#include <algorithm>

namespace drx9 {

namespace {
constexpr int kContentsWidth = 220;
constexpr int kMeasure = 72; ///< characters in a line
constexpr int kGap = 8;
constexpr int kMargin = 16;
constexpr int kCellPadding = 4;
constexpr int kLeastSteps = -3, kMostSteps = 16; ///< points
constexpr int kPictureDensity = 2;               ///< pixels of a picture to one of the page
constexpr int kLink = Qt::UserRole;
constexpr QLatin1String kIndex("index.md");

/// Lines no longer than can be read with ease, and pictures no wider. Beside "x.png" may stand "x-dark.png",
/// which is shown on dark ground.
class Page : public TextView {
public:
    using TextView::TextView;

    void wrap() {
        const int measure = fontMetrics().averageCharWidth() * kMeasure;
        setLineWrapMode(QTextEdit::FixedPixelWidth);
        setLineWrapColumnOrWidth(std::min(measure, viewport()->width()));
        showPicturesAnew();
    }

protected:
    QVariant loadResource(int type, const QUrl& name) override {
        if (type != QTextDocument::ImageResource) {
            return TextView::loadResource(type, name);
        }
        pictures_.insert(name);
        return picture(name);
    }

    void changeEvent(QEvent* event) override {
        TextView::changeEvent(event);
        if (event->type() == QEvent::PaletteChange) {
            showPicturesAnew();
        }
    }

    void resizeEvent(QResizeEvent* event) override {
        TextView::resizeEvent(event);
        wrap();
    }

private:
    /// In full colours: Qt scales a picture with a palette into that palette, which dots even ground.
    QImage loaded(const QUrl& name) {
        return QImage::fromData(TextView::loadResource(QTextDocument::ImageResource, name).toByteArray())
            .convertToFormat(QImage::Format_RGB32);
    }

    QImage picture(const QUrl& name) {
        QImage image;
        if (palette().color(QPalette::Base).lightness() < palette().color(QPalette::Text).lightness()) {
            QUrl dark = name;
            dark.setPath(dark.path().replace(QStringLiteral(".png"), QStringLiteral("-dark.png")));
            image = loaded(dark);
        }
        image = image.isNull() ? loaded(name) : image;
        if (image.isNull()) {
            return image;
        }
        const double ratio = devicePixelRatioF();
        const double room = lineWrapColumnOrWidth() - 2 * document()->documentMargin();
        const double width = std::clamp(room, 1.0, 1.0 * image.width() / kPictureDensity);
        image = image.scaledToWidth(qRound(width * ratio), Qt::SmoothTransformation);
        image.setDevicePixelRatio(ratio);
        return image;
    }

    /// The page's width or colours have changed.
    void showPicturesAnew() {
        if (pictures_.isEmpty()) {
            return;
        }
        for (const QUrl& name : pictures_) {
            document()->addResource(QTextDocument::ImageResource, name, picture(name));
        }
        document()->markContentsDirty(0, document()->characterCount());
    }

    QSet<QUrl> pictures_; ///< of the pages that were shown
};

QString textOfPage(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

/// All groups 1 (and 2) of a pattern in a page's lines.
QList<QRegularExpressionMatch> matches(const QString& text, const char* pattern) {
    const QRegularExpression expression(QString::fromLatin1(pattern), QRegularExpression::MultilineOption);
    QList<QRegularExpressionMatch> all;
    for (auto it = expression.globalMatch(text); it.hasNext();) {
        all.push_back(it.next());
    }
    return all;
}

void dressTables(QTextDocument& document, const QColor& line) {
    for (QTextFrame* frame : document.rootFrame()->childFrames()) {
        if (auto* table = qobject_cast<QTextTable*>(frame); table != nullptr) {
            QTextTableFormat format = table->format();
            format.setBorderCollapse(true);
            format.setBorder(1);
            format.setBorderStyle(QTextFrameFormat::BorderStyle_Solid);
            format.setBorderBrush(line);
            format.setCellPadding(kCellPadding);
            table->setFormat(format);
        }
    }
}

QPushButton* button(QWidget* parent, const char* name, const char* caption, const char* tip) {
    auto* made = new QPushButton(QString::fromLatin1(caption), parent);
    made->setObjectName(QString::fromLatin1(name));
    made->setToolTip(QString::fromLatin1(tip));
    return made;
}
} // namespace

QString ManualViewer::fragmentOf(const QString& heading) {
    QString fragment;
    for (const QChar& c : heading.toLower()) {
        if (c.isLetterOrNumber() || c == u'-' || c == u' ') {
            fragment += c == u' ' ? u'-' : c;
        }
    }
    return fragment;
}

ManualViewer::ManualViewer(const QString& folder)
    : folder_(folder + QLatin1Char('/')) {
    setObjectName(QStringLiteral("frmManual"));
    setWindowTitle(QStringLiteral("DRX9 Comm - Manual"));
    setMinimumSize(560, 400);
    setProperty(kFollowsModal, true);
    resize(900, 680);
    build();
    buildKeys();
    fillContents();
}

void ManualViewer::build() {
    back_ = button(this, "cmdBack", "&Back", "Back (Alt+Left)");
    forward_ = button(this, "cmdForward", "&Forward", "Forward (Alt+Right)");
    contents_ = button(this, "cmdContents", "&Contents", "First page (Alt+Home)");
    find_ = new QLineEdit(this);
    find_->setObjectName(QStringLiteral("txtFind"));
    find_->setToolTip(QStringLiteral("Looks in all chapters. F3: next place"));
    auto* label = new QLabel(QStringLiteral("F&ind"), this);
    label->setBuddy(find_);
    found_ = new QLabel(this);
    found_->setObjectName(QStringLiteral("lblFound"));
    tree_ = new QTreeWidget(this);
    tree_->setObjectName(QStringLiteral("treContents"));
    tree_->setAccessibleName(QStringLiteral("Contents"));
    tree_->setHeaderHidden(true);
    tree_->setFixedWidth(kContentsWidth);
    text_ = new Page(this);
    text_->setObjectName(QStringLiteral("txtPage"));
    text_->setAccessibleName(QStringLiteral("Page"));
    text_->document()->setDocumentMargin(kMargin);

    auto* bar = new QHBoxLayout;
    bar->setSpacing(kGap);
    for (QWidget* widget :
         {static_cast<QWidget*>(back_), static_cast<QWidget*>(forward_), static_cast<QWidget*>(contents_)}) {
        bar->addWidget(widget);
    }
    bar->addStretch(1);
    bar->addWidget(found_);
    bar->addWidget(label);
    bar->addWidget(find_);
    auto* row = new QHBoxLayout;
    row->setSpacing(kGap);
    row->addWidget(tree_);
    row->addWidget(text_, 1);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    column->setSpacing(kGap);
    column->addLayout(bar);
    column->addLayout(row, 1);
}

void ManualViewer::buildKeys() {
    connect(back_, &QPushButton::clicked, text_, &QTextBrowser::backward);
    connect(forward_, &QPushButton::clicked, text_, &QTextBrowser::forward);
    connect(contents_, &QPushButton::clicked, this, [this] { goTo(kIndex); });
    connect(text_, &QTextBrowser::backwardAvailable, back_, &QWidget::setEnabled);
    connect(text_, &QTextBrowser::forwardAvailable, forward_, &QWidget::setEnabled);
    connect(text_, &QTextBrowser::sourceChanged, this, &ManualViewer::arrived);
    connect(find_, &QLineEdit::returnPressed, this, [this] { find(false); });
    connect(find_, &QLineEdit::textChanged, found_, &QLabel::clear);
    const auto open = [this](QTreeWidgetItem* item) { goTo(item->data(0, kLink).toString()); };
    connect(tree_, &QTreeWidget::itemClicked, this, open);
    connect(tree_, &QTreeWidget::itemActivated, this, open);
    const auto key = [this](const QKeySequence& keys, auto action) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, action);
    };
    key(Qt::ALT | Qt::Key_Left, [this] { text_->backward(); });
    key(Qt::ALT | Qt::Key_Right, [this] { text_->forward(); });
    key(Qt::ALT | Qt::Key_Home, [this] { goTo(kIndex); });
    key(Qt::CTRL | Qt::Key_F, [this] {
        find_->setFocus(Qt::ShortcutFocusReason);
        find_->selectAll();
    });
    key(Qt::Key_F3, [this] { find(false); });
    key(Qt::SHIFT | Qt::Key_F3, [this] { find(true); });
    key(Qt::CTRL | Qt::Key_Plus, [this] { resizeText(textSteps_ + 1); });
    key(Qt::CTRL | Qt::Key_Equal, [this] { resizeText(textSteps_ + 1); });
    key(Qt::CTRL | Qt::Key_Minus, [this] { resizeText(textSteps_ - 1); });
    key(Qt::CTRL | Qt::Key_0, [this] { resizeText(0); });
    key(Qt::Key_Escape, [this] { escape(); });
}

void ManualViewer::fillContents() {
    pages_ = QStringList{QString(kIndex)};
    for (const QRegularExpressionMatch& page :
         matches(textOfPage(folder_ + kIndex), R"(^- \[(.+)\]\((.+)\)$)")) {
        const QString link = page.captured(2);
        pages_.push_back(link);
        auto* item = new QTreeWidgetItem(tree_, {page.captured(1)});
        item->setData(0, kLink, link);
        for (const QRegularExpressionMatch& heading : matches(textOfPage(folder_ + link), "^## (.+)$")) {
            auto* child = new QTreeWidgetItem(item, {heading.captured(1)});
            child->setData(0, kLink, link + QLatin1Char('#') + fragmentOf(heading.captured(1)));
        }
    }
}

void ManualViewer::openAt(const QString& link) {
    winId(); // X11 is told whose the window is when it is shown
    comeBeforeModal();
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
    goTo(link);
    text_->setFocus();
}

void ManualViewer::goTo(const QString& link) {
    const QString path = folder_ + link;
    text_->setSource(folder_.startsWith(QLatin1Char(':')) ? QUrl(QStringLiteral("qrc") + path)
                                                          : QUrl(QStringLiteral("file:") + path));
}

void ManualViewer::arrived(const QUrl& url) {
    dressTables(*text_->document(), Theme::of(palette()).line);
    showHeading(url.fragment());
    // source() still tells the page before.
    markContents(url.fileName() + (url.hasFragment() ? QLatin1Char('#') + url.fragment() : QString()));
}

void ManualViewer::showHeading(const QString& fragment) {
    const QTextDocument& document = *text_->document();
    for (QTextBlock block = document.begin(); block.isValid() && !fragment.isEmpty(); block = block.next()) {
        if (block.blockFormat().headingLevel() > 0 && fragmentOf(block.text()) == fragment) {
            text_->setTextCursor(QTextCursor(block));
            const QRectF place = document.documentLayout()->blockBoundingRect(block);
            text_->verticalScrollBar()->setValue(static_cast<int>(place.top()));
            return;
        }
    }
}

void ManualViewer::markContents(const QString& link) {
    const QSignalBlocker blocker(tree_);
    tree_->setCurrentItem(nullptr);
    for (QTreeWidgetItemIterator it(tree_); *it != nullptr; ++it) {
        if ((*it)->data(0, kLink).toString() == link) {
            tree_->setCurrentItem(*it);
            (*it)->setExpanded(true);
        }
    }
}

void ManualViewer::resizeText(int steps) {
    textSteps_ = std::clamp(steps, kLeastSteps, kMostSteps);
    QFont font = this->font();
    font.setPointSizeF(font.pointSizeF() + textSteps_);
    text_->setFont(font);
    static_cast<Page*>(text_)->wrap();
}

QString ManualViewer::pageShown() const {
    return text_->source().fileName();
}

/// The next place on this page, then on those behind it, round to this one again.
void ManualViewer::find(bool backward) {
    const QString wanted = find_->text();
    const QTextDocument::FindFlags flags =
        backward ? QTextDocument::FindBackward : QTextDocument::FindFlags();
    found_->clear();
    if (wanted.isEmpty() || text_->find(wanted, flags)) {
        return;
    }
    const qsizetype count = pages_.size();
    const qsizetype first = std::max<qsizetype>(0, pages_.indexOf(pageShown()));
    for (qsizetype step = 1; step <= count; ++step) {
        const QString& page = pages_[(first + (backward ? count - step : step)) % count];
        QTextDocument document;
        document.setMarkdown(textOfPage(folder_ + page));
        if (document.toPlainText().contains(wanted, Qt::CaseInsensitive)) {
            goTo(page);
            text_->moveCursor(backward ? QTextCursor::End : QTextCursor::Start);
            text_->find(wanted, flags);
            return;
        }
    }
    found_->setText(QString::fromLatin1(controlsText::kNotFound));
}

void ManualViewer::escape() {
    if (find_->text().isEmpty()) {
        close();
        return;
    }
    find_->clear();
    text_->setFocus();
}

bool ManualViewer::event(QEvent* event) {
    if (event->type() == QEvent::WindowBlocked) { // not while the modal window is still being shown
        QTimer::singleShot(0, this, &ManualViewer::comeBeforeModal);
    }
    return QWidget::event(event);
}

/// What belongs to a modal window is not blocked by it.
void ManualViewer::comeBeforeModal() {
    const QWidget* modal = QApplication::activeModalWidget();
    QWindow* owner = modal == nullptr ? nullptr : modal->windowHandle();
    if (windowHandle() == nullptr || windowHandle()->transientParent() == owner) {
        return;
    }
    for (const QWindow* above = owner; above != nullptr; above = above->transientParent()) {
        if (above == windowHandle()) {
            return; // it belongs to this window already
        }
    }
    const bool shown = isVisible();
    if (shown) {
        hide(); // X11 is told when the window is shown
    }
    windowHandle()->setTransientParent(owner);
    // X11 does not keep a window of this kind above its owner where that one stays on top.
    const bool onTop = owner != nullptr && owner->flags().testFlag(Qt::WindowStaysOnTopHint);
    windowHandle()->setFlag(Qt::WindowStaysOnTopHint, onTop);
    if (owner != nullptr) { // and comes back from there when that one closes
        connect(owner, &QWindow::visibleChanged, this, &ManualViewer::comeBeforeModal, Qt::QueuedConnection);
    }
    if (shown) {
        show();
    }
}

} // namespace drx9
