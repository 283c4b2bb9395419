#include "app/Manual.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMessageBox>

#include <array>
#include <utility>

// Must be outside of any namespace.
static void initManualPages() {
    Q_INIT_RESOURCE(manual);
}

namespace drx9 {

namespace {
constexpr std::array<std::pair<const char*, const char*>, 7> kChapters{{
    {"frmMain", "main-window.md"},
    {"frmDataLog", "data-log.md"},
    {"frmSystem", "parameters.md"},
    {"frmComm", "communications.md"},
    {"frmFilm", "films.md"},
    {"frmGraphSet", "charts.md#configure-graph"},
    {"frmAbout", "files.md#about-the-program"},
}};

QString chapterOf(const QString& window) {
    for (const auto& [name, link] : kChapters) {
        if (window == QLatin1String(name)) {
            return QString::fromLatin1(link);
        }
    }
    return {};
}

/// A window without a chapter has that of the window it belongs to.
QString chapterOf(const QWidget* window) {
    if (qobject_cast<const QMessageBox*>(window) != nullptr) {
        return QStringLiteral("messages.md");
    }
    QString chapter;
    for (; window != nullptr && chapter.isEmpty(); window = window->parentWidget()) {
        chapter = chapterOf(window->objectName());
    }
    return chapter.isEmpty() ? QStringLiteral("index.md") : chapter;
}

bool isHelpKey(const QEvent& event) {
    if (event.type() != QEvent::KeyPress && event.type() != QEvent::ShortcutOverride) {
        return false;
    }
    const auto& key = static_cast<const QKeyEvent&>(event);
    return key.key() == Qt::Key_F1 && key.modifiers() == Qt::NoModifier;
}
} // namespace

Manual::Manual(WindowPlaces& places)
    : places_(places) {
    initManualPages();
    qApp->installEventFilter(this);
}

void Manual::showIndex() {
    openAt(QStringLiteral("index.md"));
}

void Manual::showChapter(const std::string& window) {
    const QString chapter = chapterOf(QString::fromStdString(window));
    openAt(chapter.isEmpty() ? QStringLiteral("index.md") : chapter);
}

/// The key is taken before the menu's shortcut for the index sees it: first it asks whether it may be one.
bool Manual::eventFilter(QObject* watched, QEvent* event) {
    if (!isHelpKey(*event) || !watched->isWidgetType()) {
        return false;
    }
    event->accept();
    if (event->type() == QEvent::KeyPress && !static_cast<QKeyEvent*>(event)->isAutoRepeat()) {
        openAt(chapterOf(static_cast<QWidget*>(watched)->window()));
    }
    return true;
}

void Manual::openAt(const QString& link) {
    if (viewer_ == nullptr) {
        viewer_ = std::make_unique<ManualViewer>(QStringLiteral(":/manual"));
        places_.follow(*viewer_);
    }
    viewer_->openAt(link);
}

} // namespace drx9
