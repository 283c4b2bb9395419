#include "platform/qt/LocaleFromSystem.h"
#include "platform/qt/QtFileDialogs.h"
#include "platform/qt/QtShell.h"
#include "platform/qt/SingleInstance.h"

#include <QApplication>
#include <QDesktopServices>
#include <QElapsedTimer>
#include <QFile>
#include <QFileDialog>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

using namespace drx9;

namespace {

TEST(LocaleFromSystemTest, NumbersAndDatesOfLocales) {
    const struct {
        const char* name;
        const char* marks; ///< decimal, group
        const char* date;
    } cases[] = {
        {"C", ".,", "M/d/yyyy"},       {"en_US", ".,", "M/d/yyyy"},      {"en_GB", ".,", "dd/MM/yyyy"},
        {"de_DE", ",.", "dd.MM.yyyy"}, {"fr_FR", ", ", "dd/MM/yyyy"},    {"ja_JP", ".,", "yyyy/MM/dd"},
        {"sv_SE", ", ", "yyyy-MM-dd"}, {"de_CH", ".,", "dd.MM.yyyy"},    {"bg_BG", ", ", "d.MM.yyyy"},
        {"cs_CZ", ", ", "dd.MM.yyyy"}, {"hu_HU", ", ", "yyyy. MM. dd."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const NumberLocale locale =
            numberLocaleOf(c.name == std::string("C") ? QLocale::c() : QLocale(c.name));
        EXPECT_EQ((std::string{locale.decimal, locale.group}), c.marks);
        EXPECT_EQ(locale.shortDate, c.date);
    }
}

/// Whatever the locale: two different plain marks, and a date of day, month and a year of four digits.
TEST(LocaleFromSystemTest, EveryLocaleIsUsable) {
    for (const QLocale& each :
         QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyCountry)) {
        SCOPED_TRACE(each.name().toStdString());
        const NumberLocale locale = numberLocaleOf(each);
        EXPECT_TRUE(locale.decimal == '.' || locale.decimal == ',');
        EXPECT_NE(locale.decimal, locale.group);
        const QString date = QString::fromStdString(locale.shortDate);
        EXPECT_EQ(date.count('y'), 4) << locale.shortDate;
        EXPECT_TRUE(date.contains("yyyy") && date.contains('M') && date.contains('d')) << locale.shortDate;
        for (const QChar c : date)
            EXPECT_TRUE(QString("yMd./- ,").contains(c)) << locale.shortDate;
    }
}

TEST(SingleInstanceTest, SecondStartOnTheSameFolderIsTold) {
    QTemporaryDir folder;
    QTemporaryDir other;
    const std::string path = folder.path().toStdString();
    auto first = std::make_unique<SingleInstance>(path);
    EXPECT_TRUE(first->isFirst());
    EXPECT_FALSE(SingleInstance(path).isFirst());
    EXPECT_TRUE(SingleInstance(other.path().toStdString()).isFirst());
    first.reset();
    EXPECT_TRUE(SingleInstance(path).isFirst());

    // Left behind by a process that ended without a word.
    QFile stale(folder.filePath("Monitor.lock"));
    ASSERT_TRUE(stale.open(QIODevice::WriteOnly));
    stale.write("2147483646\ndrx9comm\n\n\n\n");
    stale.close();
    EXPECT_TRUE(SingleInstance(path).isFirst());
    EXPECT_TRUE(SingleInstance("/nowhere").isFirst());
}

class Opener : public QObject {
    Q_OBJECT
public:
    QList<QUrl> opened;
public slots:
    void open(const QUrl& url) { opened << url; }
};

TEST(QtShellTest, OpensDocumentsAndSaysWhyNot) {
    QTemporaryDir folder;
    QtShell shell;
    const QString name = folder.filePath("log 50%#1 Å.txt");
    QFile file(name);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    Opener opener;
    QDesktopServices::setUrlHandler("file", &opener, "open");
    EXPECT_EQ(shell.openDocument(name.toStdString()), "");
    const std::string missing = folder.filePath("missing.txt").toStdString();
    EXPECT_EQ(shell.openDocument(missing), missing + ": there is no such file.");
    QDesktopServices::unsetUrlHandler("file");
    ASSERT_EQ(opener.opened.size(), 1);
    EXPECT_EQ(opener.opened.front().toLocalFile(), name);
}

#ifndef _WIN32
TEST(QtShellTest, StartsProgramsAndSaysWhyNot) {
    QTemporaryDir folder;
    const auto script = [&](const char* name, const char* text, bool executable) {
        QFile file(folder.filePath(name));
        file.open(QIODevice::WriteOnly);
        file.write(text);
        file.close();
        if (executable)
            file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return file.fileName().toStdString();
    };
    QtShell shell;
    const std::string started = folder.filePath("started").toStdString();
    EXPECT_EQ(shell.startProgram(script("tool", ("#!/bin/sh\ntouch '" + started + "'\n").c_str(), true)), "");
    QElapsedTimer timer;
    timer.start();
    while (!QFile::exists(QString::fromStdString(started)) && timer.elapsed() < 5000)
        QApplication::processEvents(QEventLoop::AllEvents, 20);
    EXPECT_TRUE(QFile::exists(QString::fromStdString(started)));
    const std::string text = script("text", "no program", false);
    EXPECT_EQ(shell.startProgram(text), text + " is not a program that can be run.");
    EXPECT_EQ(shell.startProgram("no-such-program.exe"), "no-such-program.exe was not found.");
}
#endif

TEST(QtFileDialogsTest, FiltersInQtsWords) {
    const struct {
        const char* filter;
        QStringList filters;
    } cases[] = {
        {"DB Files (*.mdb)|*.mdb", {"DB Files (*.mdb)"}},
        {"Text|*.txt;*.xls|All Files (*.*)|*.*", {"Text (*.txt *.xls)", "All Files (*)"}},
        {"half a pair", {}},
        {"", {}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(nameFilters(c.filter), c.filters) << c.filter;
}

/// Calls the action with the file dialog once it stands.
void onDialog(std::function<void(QFileDialog&)> action) {
    QTimer::singleShot(50, qApp, [action] {
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (auto* dialog = qobject_cast<QFileDialog*>(widget); dialog != nullptr && dialog->isVisible())
                return action(*dialog);
        FAIL() << "no dialog";
    });
}

TEST(QtFileDialogsTest, PresetsTheNameAndReturnsTheFullPath) {
    QTemporaryDir folder;
    const QString existing = folder.filePath("old.mdb");
    QFile(existing).open(QIODevice::WriteOnly);
    const std::string inFolder = folder.path().toStdString();
    const auto press = [](QFileDialog& dialog) { QMetaObject::invokeMethod(&dialog, "accept"); };
    const auto cancel = [](QFileDialog& dialog) { dialog.reject(); };
    const struct {
        const char* name;
        bool save;
        FileDialogRequest request;
        std::function<void(QFileDialog&)> answer;
        QString path;
    } cases[] = {
        {"save, extension added",
         true,
         {"", "DB Files (*.mdb)|*.mdb", "mdb", inFolder, "new", false},
         press,
         folder.filePath("new.mdb")},
        {"save over, no question asked",
         true,
         {"", "DB Files (*.mdb)|*.mdb", "mdb", inFolder, "old.mdb", false},
         press,
         existing},
        {"the name is a path", true, {"", "", "mdb", "", existing.toStdString(), false}, press, existing},
        {"open",
         false,
         {"Open it", "DB Files (*.mdb)|*.mdb", "mdb", inFolder, "old.mdb", false},
         press,
         existing},
        {"cancelled", false, {"", "", "mdb", inFolder, "old.mdb", false}, cancel, ""},
    };
    QtFileDialogs dialogs;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        onDialog(c.answer);
        const std::string path = c.save ? dialogs.saveFile(c.request) : dialogs.openFile(c.request);
        EXPECT_EQ(path, c.path.toStdString());
    }
}

} // namespace

#include "Desktop_test.moc"
