// The film window by real events: what it shows, what its boxes write, transfers, and how it closes.
#include "fakes/FakePolling.h"
#include "films/FilmBench.h"
#include "ui/Controls.h"

#include "films/frmFilm.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>
#include <QTreeView>

namespace drx9 {
namespace {

using Rows = std::vector<std::string>;

class FilmWindow : public testing::Test, protected Controls, public CloseRound, public FilmMemoryAccess {
protected:
    std::unique_ptr<Tenure> beforeClose(Question asked) override {
        question = std::move(asked);
        return nullptr;
    }
    bool sessionEnds() const override { return ends; }
    void filmMemoryChanged() override { told.emplace_back("refresh"); }
    void filmUnconfirmed() override { told.emplace_back("unconfirmed"); }

    void open(const std::vector<TestFilm>& rows, int sensors = 6) {
        bench = std::make_unique<FilmBench>(9, sensors);
        bench->make(rows);
        show();
    }
    void show() {
        polling.released = [this] { told.emplace_back("timer runs"); };
        window = new frmFilm({bench->engine, bench->files, bench->paths, bench->DBFileName, bench->films,
                              bench->seen, bench->dialogs, bench->input, bench->boxes, bench->progress,
                              bench->actions, bench->clock, bench->locale, polling, *this, *this},
                             nullptr);
        window->show();
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    }
    void TearDown() override { delete window.data(); }
    QWidget& top() const override { return *window; }

    void clickRow(int row, Qt::KeyboardModifiers keys = {}) {
        auto* list = find<QTreeView>("lstDBFilms");
        const QRect place = list->visualRect(list->model()->index(row, 1));
        QTest::mouseClick(list->viewport(), Qt::LeftButton, keys, place.center());
    }
    /// And leaves the field.
    void enter(const char* name, const char* text, Qt::Key end = Qt::Key_Tab) {
        type(name, text);
        QTest::keyClick(find(name), end);
    }
    std::string state() { return find("lblState")->accessibleName().toStdString(); }
    std::string listed(int row, int column) {
        auto* model = find<QTreeView>("lstDBFilms")->model();
        return model->index(row, column).data().toString().toStdString();
    }
    bool enabled(const char* name) { return find(name)->isEnabled(); }

    std::vector<std::string> told;
    FakePolling polling;
    Question question;
    bool ends = false;
    std::unique_ptr<FilmBench> bench;
    QPointer<frmFilm> window;
};

TEST_F(FilmWindow, ShowsTheChosenFilmAndNoneBefore) {
    open({{"ONE", "Gold", 100, 1, 0.5, 125, 37}, {"TWO", "Silver"}});
    EXPECT_EQ(window->windowTitle().toStdString(), "Films - [Monitor.mdb]");
    EXPECT_EQ(listed(1, 0) + listed(1, 1), "2TWO");
    EXPECT_EQ(textOf("txtParam_5"), "");
    EXPECT_FALSE(enabled("txtParam_0"));
    EXPECT_FALSE(enabled("chkSensAvg_0"));
    clickRow(0);
    const std::pair<const char*, const char*> boxes[] = {
        {"txtParam_5", "ONE"},  {"txtParam_0", "100"},   {"txtParam_3", "1"},  {"txtParam_4", "0.5"},
        {"txtParam_1", "19.3"}, {"txtParam_2", "0.381"}, {"txtMinutes", "02"}, {"txtSeconds", "05"}};
    for (const auto& [name, wanted] : boxes) {
        EXPECT_EQ(textOf(name), wanted) << name;
    }
    EXPECT_EQ(find<QComboBox>("dbcMaterial")->currentText().toStdString(), "Gold");
    EXPECT_TRUE(find<QCheckBox>("chkSensAvg_5")->isChecked());
    EXPECT_FALSE(find<QCheckBox>("chkSensAvg_1")->isChecked());
    QTest::keyClick(find<QTreeView>("lstDBFilms"), Qt::Key_Down);
    EXPECT_EQ(textOf("txtParam_5"), "TWO");
    EXPECT_EQ(textOf("lblVersion"), "Ver. 4.08, 9 films");
    EXPECT_EQ(state(), "");
}

TEST_F(FilmWindow, WritesThrough) {
    open({{"ONE"}, {"TWO"}});
    clickRow(1);
    enter("txtParam_3", "2,5", Qt::Key_Return);
    enter("txtParam_1", "10.4");
    click("chkSensAvg_1");
    click("chkSensAvg_2");
    auto* minutes = find<QSpinBox>("spnMinutes");
    minutes->setFocus();
    QTest::keyClick(minutes, Qt::Key_Up);
    auto* material = find<QComboBox>("dbcMaterial");
    material->setFocus();
    QTest::keyClick(material, Qt::Key_Down); // Gold to Silver
    EXPECT_EQ(bench->rows("Film"), (Rows{"1|ONE|Gold|100|1|0.5|60|3", "2|TWO|Silver|100|2.5|0.5|120|5"}));
    EXPECT_EQ(bench->rows("Material").front(), "Gold|10.4|0.381");
    EXPECT_EQ(textOf("txtParam_1"), "10.5");
    QTest::mouseMove(material, QPoint(5, 5));
    QWheelEvent wheel(QPointF(5, 5), material->mapToGlobal(QPointF(5, 5)), {}, QPoint(0, 120), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(material, &wheel);
    EXPECT_EQ(material->currentText().toStdString(), "Silver");
    bench->files.fillAfter(100);
    minutes->setFocus();
    QTest::keyClick(minutes, Qt::Key_Up);
    EXPECT_EQ(minutes->value(), 2) << "what is stored";
}

TEST_F(FilmWindow, SaysALinkThatGoesWhileItIsOpen) {
    open({{"ONE"}});
    EXPECT_EQ(state(), "");
    bench->serial.close();
    EXPECT_TRUE(QTest::qWaitFor([&] { return state() == "Off line: the link was lost"; }, 3000));
}

TEST_F(FilmWindow, BeginsNothingWithATypedValueThatIsNotStored) {
    open({{"ONE"}, {"TWO"}});
    clickRow(0);
    bench->input.answer = "NEW";
    bench->dialogs.answers = {kLibrary};
    for (const char* name : {"cmdDownload_0", "cmdUpload", "cmdDefaults", "cmdClose", "cmdAddFilm",
                             "cmdNewMat", "mnuFileOpen", "mnuFileSave"}) {
        type("txtParam_0", "abc");
        name[0] == 'm' ? find<QAction>(name)->trigger() : click(name);
        EXPECT_EQ(state(), "\"abc\" is no number: the value stays as it was") << name;
        QApplication::processEvents();
    }
    EXPECT_TRUE(bench->wire().commands().empty() && window->isVisible());
    EXPECT_EQ(bench->rows("Film").size() + bench->rows("Material").size(), 4U) << "nothing was asked for";
    EXPECT_EQ(bench->dialogs.answers.size(), 1U) << "no file either";
    for (const char* name : {"txtParam_0", "txtMinutes", "dbcMaterial"}) {
        const std::string before = name[0] == 'd' ? "" : textOf(name);
        find(name)->setFocus();
        QTest::keyClicks(find(name), "7");
        QTest::keyClick(find(name), Qt::Key_Escape);
        EXPECT_TRUE(window->isVisible()) << name;
        EXPECT_EQ(name[0] == 'd' ? "" : textOf(name), before);
        QTest::keyClick(find(name), Qt::Key_Escape);
        EXPECT_FALSE(window->isVisible()) << name;
        delete window.data();
        show();
        clickRow(0);
    }
    type("txtParam_0", "x"); // and another window in front
    bench->boxes.expectShow("\"x\" is no number: the value stays as it was");
    QLineEdit other;
    other.show();
    other.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    EXPECT_EQ(textOf("txtParam_0"), "x") << "still being typed";
    question();
    EXPECT_EQ(bench->rows("Film").front(), "1|ONE|Gold|100|1|0.5|60|3");
    for (const char* typed : {"77", "78"}) { // away and back, then on with Tab
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window));
        type("txtParam_0", typed);
        other.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window));
        QTest::keyClick(find("txtParam_0"), Qt::Key_Tab);
        EXPECT_EQ(bench->rows("Film").front(), std::string("1|ONE|Gold|") + typed + "|1|0.5|60|3");
    }
}

TEST_F(FilmWindow, RenamesAndKeepsTheFilmInSight) {
    open({{"ONE"}, {"TWO"}});
    clickRow(1);
    enter("txtParam_5", "LONGER_NAME");
    EXPECT_EQ(listed(1, 1), "LONGER_N");
    EXPECT_EQ(textOf("txtParam_5"), "LONGER_N");
    auto* list = find<QTreeView>("lstDBFilms");
    EXPECT_EQ(list->currentIndex().row(), 0);
    EXPECT_TRUE(list->selectionModel()->isRowSelected(1));
    bench->boxes.expectShow(
        "UnitFilm and NewFilm cannot be used for\nfilm names. Please select another name.");
    enter("txtParam_5", "NewFilmX", Qt::Key_Return);
    QApplication::processEvents(); // what comes now is another event
    EXPECT_EQ(textOf("txtParam_5"), "LONGER_N");
    clickRow(0);
    EXPECT_EQ(textOf("txtParam_5"), "ONE") << "current already, but not the one shown";
    bench->input.answer = "THREE";
    click("cmdAddFilm");
    EXPECT_EQ(textOf("txtParam_5"), "THREE");
    EXPECT_EQ(listed(2, 1), "THREE");
    EXPECT_TRUE(list->selectionModel()->isRowSelected(2) && !list->selectionModel()->isRowSelected(0));
    bench->input.answer = "Copper";
    click("cmdNewMat");
    EXPECT_EQ(bench->rows("Film").back(), "null|THREE|Copper|null|null|null|null|null");
    EXPECT_EQ(textOf("txtParam_1"), "1");
    click("cmdDelete");
    EXPECT_EQ(bench->rows("Film").size(), 3U);
}

TEST_F(FilmWindow, DisablesWhatTheInstrumentLacks) {
    open({{"ONE"}}, 2);
    clickRow(0);
    EXPECT_TRUE(enabled("chkSensAvg_1"));
    EXPECT_FALSE(enabled("chkSensAvg_2"));
    EXPECT_TRUE(enabled("cmdDefaults"));
    click("cmdDefaults");
    EXPECT_EQ(told, Rows{"unconfirmed"});
    window->close();
    EXPECT_EQ(told, (Rows{"unconfirmed", "refresh", "timer runs"}));
    delete window.data();

    bench->link.setCommOK(false);
    show();
    for (const char* name : {"cmdUpload", "cmdDownload_0", "cmdDownload_1", "cmdDefaults"}) {
        EXPECT_FALSE(enabled(name)) << name;
    }
    EXPECT_EQ(textOf("lblVersion"), "Off line");
}

TEST_F(FilmWindow, ClosesOnlyBehindATransferAndAsks) {
    open({{"ONE"}});
    bench->pump.atPump(3, [&] {
        EXPECT_FALSE(enabled("cmdClose"));
        click("cmdDownload_1");
        window->close();
        EXPECT_TRUE(window->isVisible());
    });
    bench->boxes.expect(FakeMessageBoxes::Kind::YesNo, "Save Uploaded Data to a database?", true);
    bench->dialogs.answers = {"/data/Shop.mdb"};
    click("cmdUpload");
    EXPECT_EQ(bench->wire().commands().size(), 9U);
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(bench->rows("Film", "/data/Shop.mdb").size(), 9U);
    EXPECT_EQ(told, (Rows{"refresh", "timer runs"}));
}

TEST_F(FilmWindow, AsksWhenTheProgramCloses) {
    for (const bool session : {false, true}) {
        open({{"ONE"}, {"TWO"}});
        clickRow(1);
        enter("txtParam_5", "OTHER"); // makes the first row the current one
        click("cmdUpload");
        EXPECT_EQ(textOf("txtParam_5"), "GOLD") << "the row that is selected";
        EXPECT_EQ(window->windowTitle().toStdString(), "Films - [UploadData.mdb]");
        ends = session;
        if (!session) {
            bench->boxes.expect(FakeMessageBoxes::Kind::YesNo, "Save Uploaded Data to a database?");
        }
        question();
        window->close();
        EXPECT_FALSE(window->isVisible());
        EXPECT_EQ(bench->DBFileName, "UploadData.mdb");
        delete window.data();
        told.clear();
    }
}

} // namespace
} // namespace drx9
