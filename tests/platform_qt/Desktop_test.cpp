#include "platform/qt/LocaleFromSystem.h"
#include "platform/qt/QtFileDialogs.h"
#include "platform/qt/QtPrintDialog.h"
#include "platform/qt/QtShell.h"
#include "platform/qt/SessionEnd.h"
#include "platform/qt/SingleInstance.h"

#include <QApplication>
#include <QBuffer>
#include <QDesktopServices>
#include <QFile>
#include <QPrintDialog>
#include <QPrinter>
#include <QTemporaryDir>
#include <QTimer>
#include <QUrl>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <memory>

using namespace drx9;

namespace {

TEST(LocaleFromSystemTest, NumbersAndDates) {
    // Decimal and group mark, and the short date.
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"C", ".,", "M/d/yyyy"},
        {"de_DE", ",.", "dd.MM.yyyy"},
        {"fr_FR", ", ", "dd/MM/yyyy"},
        {"hu_HU", ", ", "yyyy. MM. dd."},
    };
    for (const auto& [name, marks, date] : cases) {
        SCOPED_TRACE(name);
        const NumberLocale locale = numberLocaleOf(QLocale(name));
        EXPECT_EQ((std::string{locale.decimal, locale.group}), marks);
        EXPECT_EQ(locale.shortDate, date);
    }
    for (const QLocale& any :
         QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyCountry)) {
        SCOPED_TRACE(any.name().toStdString());
        const NumberLocale locale = numberLocaleOf(any);
        const QString date = QString::fromStdString(locale.shortDate);
        EXPECT_NE(locale.decimal, locale.group);
        EXPECT_TRUE(date.count('y') == 4 && date.contains("yyyy") && date.contains('M') &&
                    date.contains('d'));
        EXPECT_TRUE(
            std::all_of(date.begin(), date.end(), [](QChar c) { return QString("yMd./- ,").contains(c); }));
    }
}

TEST(QtPrintDialogTest, PrintsThePictureOnOnePage) {
    const QTemporaryDir folder;
    const QString file = folder.filePath("chart.pdf");
    QImage picture(400, 200, QImage::Format_RGB32);
    picture.fill(Qt::red);
    QBuffer png;
    png.open(QIODevice::WriteOnly);
    picture.save(&png, "PNG");
    for (const bool accept : {false, true}) {
        QTimer::singleShot(50, [&] {
            auto* dialog = qobject_cast<QPrintDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            accept ? dialog->accept() : dialog->reject();
            dialog->printer()->setOutputFileName(file);
        });
        const auto result = QtPrintDialog().printPicture(
            "Chart", {png.data().constData(), static_cast<std::size_t>(png.data().size())});
        EXPECT_EQ(result.printed, accept);
        EXPECT_EQ(result.reason, "");
        EXPECT_EQ(QFile(file).size() > 500, accept);
    }
}

TEST(SingleInstanceTest, SecondStartOnTheSameFolderIsTold) {
    const QTemporaryDir folder;
    const std::string path = folder.path().toStdString();
    auto first = std::make_unique<SingleInstance>(path);
    EXPECT_TRUE(first->isFirst());
    EXPECT_FALSE(SingleInstance(path).isFirst());
    first.reset();
    QFile stale(folder.filePath("Monitor.lock")); // left behind by a process that ended without a word
    ASSERT_TRUE(stale.open(QIODevice::WriteOnly));
    stale.write("2147483646\ndrx9comm\n\n\n\n");
    stale.close();
    EXPECT_TRUE(SingleInstance(path).isFirst());
    EXPECT_TRUE(SingleInstance("/nowhere").isFirst());
}

class Opener : public QObject {
    Q_OBJECT
public:
    QUrl opened;
public slots:
    void open(const QUrl& url) { opened = url; }
};

TEST(QtShellTest, OpensAndStartsOrSaysWhyNot) {
    const QTemporaryDir folder;
    const QString name = folder.filePath("log 50%#1 Å.txt");
    ASSERT_TRUE(QFile(name).open(QIODevice::WriteOnly));
    Opener opener;
    QDesktopServices::setUrlHandler("file", &opener, "open");
    QtShell shell;
    EXPECT_EQ(shell.openDocument(name.toStdString()), "");
    EXPECT_EQ(opener.opened.toLocalFile(), name);
    EXPECT_EQ(shell.openDocument("/missing.txt"), "/missing.txt: there is no such file.");
    EXPECT_EQ(shell.startProgram(name.toStdString()),
              name.toStdString() + " is not a program that can be run here.");
    EXPECT_EQ(shell.startProgram("no-such-program.exe").rfind("no-such-program.exe was not found", 0), 0U);
    const QString tool = folder.filePath("tool.exe"); // another system's: marked as a program, and none here
    QFile::copy(name, tool);
    QFile(tool).setPermissions(QFile::ReadOwner | QFile::ExeOwner);
    EXPECT_NE(shell.startProgram(tool.toStdString()), "");
    EXPECT_EQ(shell.startProgram("true"), "");
    QDesktopServices::unsetUrlHandler("file");
}

TEST(QtFileDialogsTest, PresetsTheNameAndReturnsTheFullPath) {
    EXPECT_EQ(nameFilters("Text (*.txt)|*.txt;*.xls|All|*.*|half"),
              QStringList({"Text (*.txt *.xls)", "All (*)"}));
    const QTemporaryDir folder;
    const std::string in = folder.path().toStdString();
    const std::string old = in + "/old.mdb";
    const std::string filter = "DB Files (*.mdb)|*.mdb";
    ASSERT_TRUE(QFile(QString::fromStdString(old)).open(QIODevice::WriteOnly));
    const struct {
        bool save;
        FileDialogRequest request;
        std::string path; ///< empty: cancelled
    } cases[] = {
        {true, {"", filter, "mdb", in, "new", false}, in + "/new.mdb"},
        {true, {"", filter, "mdb", in, "old.mdb", false}, old}, // no question asked
        {true, {"", "", "mdb", "", old, false}, old},           // the name is a path
        {false, {"Open it", filter, "mdb", in, "old.mdb", false}, old},
        {false, {"", "", "mdb", in, "old.mdb", false}, ""},
    };
    QtFileDialogs dialogs;
    for (const auto& [save, request, path] : cases) {
        QTimer::singleShot(0, qApp, [accept = !path.empty()] {
            QWidget* dialog = QApplication::activeModalWidget();
            ASSERT_TRUE(dialog != nullptr && dialog->inherits("QFileDialog"));
            QMetaObject::invokeMethod(dialog, accept ? "accept" : "reject");
        });
        EXPECT_EQ(save ? dialogs.saveFile(request) : dialogs.openFile(request), path) << request.fileName;
    }
}

/// Qt calls exit(3) where the X server dies.
TEST(SessionEndDeathTest, LastWordsAreWrittenWhereTheWindowSystemGoes) {
    const auto lose = [] {
        const SessionEnd end([] {}, [] { std::cerr << "end block" << std::endl; });
        std::exit(1);
    };
    EXPECT_EXIT(lose(), testing::ExitedWithCode(1), "end block");
}

} // namespace

#include "Desktop_test.moc"
