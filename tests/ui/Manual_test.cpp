// The manual: every link leads somewhere, every message has an entry, F1 opens the right chapter.
#include "app/Manual.h"

#include <QApplication>
#include <QDialog>
#include <QDirIterator>
#include <QFile>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QRegularExpression>
#include <QTest>
#include <QTextBrowser>
#include <QTimer>
#include <QWindow>

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

namespace drx9 {
namespace {

const QString kRoot = QStringLiteral(DRX9_SOURCE_DIR "/");

QString read(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return QString::fromUtf8(file.readAll());
}

QStringList captured(const QString& text, const QString& pattern) {
    QStringList all;
    QRegularExpressionMatchIterator it =
        QRegularExpression(pattern, QRegularExpression::MultilineOption).globalMatch(text);
    while (it.hasNext()) {
        all.push_back(it.next().captured(1));
    }
    return all;
}

struct ManualTest : testing::Test {
    WindowPlaces places{QString()};
    Manual manual{places};

    static ManualViewer* viewer() {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (auto* found = qobject_cast<ManualViewer*>(window); found != nullptr && found->isVisible()) {
                return found;
            }
        }
        ADD_FAILURE() << "no manual";
        return nullptr;
    }
    static QTextBrowser* page() { return viewer()->findChild<QTextBrowser*>(); }
    /// As the window system does it, so that a window that is blocked gets nothing.
    static void clickContents() {
        const auto* button = viewer()->findChild<QPushButton*>("cmdContents");
        QTest::mouseClick(viewer()->windowHandle(), Qt::LeftButton, Qt::NoModifier,
                          button->mapTo(viewer(), button->rect().center()));
    }
    static std::string link() {
        const QUrl url = page()->source();
        return (url.fileName() + (url.hasFragment() ? "#" + url.fragment() : QString())).toStdString();
    }
};

TEST_F(ManualTest, EveryLinkLeadsToAPageAndItsHeading) {
    const QStringList files = QDir(kRoot + "docs/manual").entryList({"*.md"});
    ASSERT_GE(files.size(), 12);
    const QString index = read(":/manual/index.md");
    for (const QString& file : files) {
        EXPECT_TRUE(file == "index.md" || index.contains("](" + file + ")")) << file.toStdString();
        for (const QString& link : captured(read(":/manual/" + file), R"(\]\(([^)]*)\))")) {
            const QString target =
                read(":/manual/" + (link.startsWith('#') ? file : link.section('#', 0, 0)));
            const QStringList headings = captured(target, "^#+ (.*)$");
            const bool leads = !link.contains('#') ||
                               std::any_of(headings.begin(), headings.end(), [&link](const QString& heading) {
                                   return ManualViewer::fragmentOf(heading) == link.section('#', 1);
                               });
            EXPECT_TRUE(leads) << file.toStdString() << ": " << link.toStdString();
        }
    }
}

/// The pieces of a text that stand in a source one behind the other are one text.
QStringList literals(QString source) {
    source.remove(QRegularExpression("//.*")).remove(QRegularExpression(R"("\s*\n\s*")"));
    return captured(source, R"re("((?:[^"\\\n]|\\.)*)")re");
}

/// As the manual writes it: "..." for what changes, and without what only joins it to another.
QString entryOf(QString text) {
    text.replace("\\n", " ").replace("\\\"", "\"").replace("{}", "...");
    return text.remove(QRegularExpression("^[.,]? ")).simplified();
}

QStringList sources(const QStringList& names) {
    QStringList files;
    for (const char* folder : {"src", "app"}) {
        for (QDirIterator it(kRoot + folder, names, QDir::Files, QDirIterator::Subdirectories);
             it.hasNext();) {
            files.push_back(it.next());
        }
    }
    return files;
}

TEST_F(ManualTest, EveryMessageHasAnEntry) {
    QString entries;
    for (const QString& row : read(":/manual/messages.md").split('\n').filter(QRegularExpression("^\\| "))) {
        QTextDocument cells;
        cells.setMarkdown(row.section('|', 1));
        entries += cells.toPlainText().simplified() + '\n';
    }
    const QStringList files = sources({"Texts.h"});
    EXPECT_GE(files.size(), 8);
    for (const QString& file : files) {
        QString source = read(file);
        for (const QString& text : literals(source.remove(QRegularExpression("#include.*")))) {
            EXPECT_TRUE(entries.contains(entryOf(text))) << file.toStdString() << ": " << text.toStdString();
        }
    }
}

TEST_F(ManualTest, NoMessageStandsElsewhere) {
    const QString call =
        R"re(\b(?:tell|show|showNonBlocking|ask\w*|fail|failure|noteFailure|holdTimer|say)\()re"
        R"re(\s*\{?(?:QStringLiteral\()?("[^"]*\w [^"]*"))re";
    for (const QString& file : sources({"*.cpp"})) {
        if (!file.contains(QRegularExpression("/jet/|/mdbtool/"))) { // reasons of the file engine
            EXPECT_EQ(captured(read(file), call).join(", ").toStdString(), "") << file.toStdString();
        }
    }
}

TEST_F(ManualTest, HelpKeyOpensTheChapterOfTheWindowAlsoAModalOne) {
    const std::pair<const char*, const char*> windows[] = {
        {"frmMain", "main-window.md"}, {"frmFilm", "films.md"}, {"frmGraphSet", "charts.md#configure-graph"}};
    QWidget owner;
    owner.show();
    for (const auto& [name, chapter] : windows) {
        QDialog window(&owner);
        window.setObjectName(QString::fromLatin1(name));
        auto* field = new QLineEdit(&window);
        window.setWindowModality(Qt::ApplicationModal); // the hardest
        window.open();
        QTest::keyClick(field, Qt::Key_F1);
        EXPECT_EQ(link(), chapter);
        clickContents();
        EXPECT_EQ(link(), "index.md") << name;
        manual.showChapter(name);
        EXPECT_EQ(link(), chapter);
        viewer()->close();
    }
}

TEST_F(ManualTest, StaysUsableUnderABoxThatComesLater) {
    manual.showIndex();
    QTimer::singleShot(200, [] {
        clickContents();
        QApplication::activeModalWidget()->close();
    });
    manual.showChapter("frmFilm");
    QMessageBox box;
    box.exec();
    EXPECT_EQ(link(), "index.md");
}

TEST_F(ManualTest, FindGoesOnThroughAllPagesAndEscapeClosesAtLast) {
    manual.showIndex();
    ASSERT_TRUE(QTest::qWaitForWindowActive(viewer()));
    auto* field = viewer()->findChild<QLineEdit*>("txtFind");
    QTest::keyClick(viewer(), Qt::Key_F, Qt::ControlModifier);
    QTest::keyClicks(field, "Checksum Error");
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_EQ(link(), "messages.md");
    EXPECT_EQ(page()->textCursor().selectedText(), "Checksum Error");
    QTest::keyClick(field, Qt::Key_Left, Qt::AltModifier);
    EXPECT_EQ(link(), "index.md");
    QPointer<ManualViewer> window = viewer();
    QTest::keyClick(field, Qt::Key_Escape);
    EXPECT_TRUE(field->text().isEmpty() && window->isVisible());
    QTest::keyClick(page(), Qt::Key_Escape);
    EXPECT_FALSE(window->isVisible());
}

} // namespace
} // namespace drx9
