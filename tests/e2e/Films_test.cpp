// The way of a film library through the whole program: converted, edited, sent, read back, saved.
#include "e2e/ProgramFixture.h"
#include "films/FilmBench.h"

#include <QAction>
#include <QCheckBox>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>
#include <QTreeView>

#include <map>

namespace drx9 {
namespace {

/// Rows of a table as mdbtools read them.
std::vector<QJsonObject> foreignRows(const QString& file, const char* table) {
    QProcess reader;
    reader.start("mdb-json", {file, table});
    EXPECT_TRUE(reader.waitForFinished(kPatience));
    std::vector<QJsonObject> rows;
    for (const QByteArray& line : reader.readAllStandardOutput().split('\n')) {
        if (!line.isEmpty()) {
            rows.push_back(QJsonDocument::fromJson(line).object());
        }
    }
    return rows;
}

/// A file of the old format; made by the test itself where the name is empty.
class OldLibrary : public ProgramFixture, public testing::WithParamInterface<const char*> {
protected:
    /// False when the sample is not there.
    bool provide(const QString& path) {
        if (*GetParam() != '\0') {
            const char* given = std::getenv("DRX9_MDB_SAMPLES");
            const QString samples = given != nullptr ? given : DRX9_SOURCE_DIR "/../shared/mdb-samples";
            return QFile::copy(samples + "/" + GetParam(), path) &&
                   QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
        }
        FilmBench bench;
        bench.make({{"ZINC"}, {"AL_BASE", "Silver", 102}, {"GOLD_5"}, {"CR"}}, "PRIMARYKEY", false);
        bench.engine.OpenDatabase(kLibrary)->CreateTable(
            FilmBench::table("Errors", {{"ErrorString", jet::ColumnType::Text}}), {45000});
        std::ofstream(path.toStdString(), std::ios::binary) << bench.bytes();
        return true;
    }
    QString state() { return find("lblState").accessibleName(); }
    bool stateBecomes(const char* beginning) {
        const bool came = waitFor([&] { return state().startsWith(beginning); });
        EXPECT_TRUE(came) << state().toStdString();
        return came;
    }
    void clickRow(int row, Qt::KeyboardModifiers keys = {}) {
        auto& list = find<QTreeView>("lstDBFilms");
        const QRect place = list.visualRect(list.model()->index(row, 1));
        QTest::mouseClick(list.viewport(), Qt::LeftButton, keys, place.center());
    }
    void type(const char* name, const char* text) {
        auto& box = find<QLineEdit>(name);
        box.setFocus();
        box.selectAll();
        QTest::keyClicks(&box, text);
        QTest::keyClick(&box, Qt::Key_Tab);
    }
};

TEST_P(OldLibrary, GoesToTheInstrumentAndBack) {
    const QString old = folderPath() + "/Old.mdb";
    const QString shop = folderPath() + "/Shop.mdb";
    if (!provide(old)) {
        GTEST_SKIP() << "there is no " << GetParam() << " among the samples (DRX9_MDB_SAMPLES)";
    }
    build(kTcp);
    ASSERT_TRUE(waitFor([&] { return onLine(); }));
    chosenFiles = {old}; // Monitor.mdb is not there: the window asks
    find<QAction>("mnuSetupFilms").trigger();
    ASSERT_TRUE(waitFor([&] {
        const auto* window = program->window().findChild<QWidget*>("frmFilm");
        return window != nullptr && window->isActiveWindow();
    }));
    ASSERT_TRUE(stateBecomes("Converted, "));
    EXPECT_TRUE(QFile::exists(old + ".bak"));

    clickRow(1);
    type("txtParam_0", "98");
    type("txtParam_3", "2.5");
    const bool sensor = find<QCheckBox>("chkSensAvg_1").isChecked();
    click("chkSensAvg_1");
    EXPECT_NE(find<QCheckBox>("chkSensAvg_1").isChecked(), sensor);
    clickRow(0, Qt::ControlModifier);
    clickRow(2, Qt::ControlModifier);
    ask("count reset");
    click("cmdDownload_0");
    ASSERT_TRUE(stateBecomes("3 films sent"));
    EXPECT_EQ(ask("count A*"), "6") << "each is written and read back";
    EXPECT_EQ(core().films[2].Tooling, 98);
    EXPECT_EQ(core().films[2].EndThick, 2.5);
    // Samples have names with blanks, which the instrument keeps as "_".
    EXPECT_TRUE(boxes.isEmpty() || *GetParam() != '\0') << boxes.toStdString();

    core().link.Comm_Send("A2CHANGED_ 7.040 90 0.514 2.000 0.500  65  1"); // as from the raw terminal
    click("cmdUpload");
    ASSERT_TRUE(stateBecomes("99 films read"));
    chosenFiles = {shop};
    find<QAction>("mnuFileSave").trigger();
    ASSERT_TRUE(stateBecomes("Saved as Shop.mdb."));
    boxes.clear();
    click("cmdClose");
    EXPECT_TRUE(waitFor([&] { return films().itemText(1) == "CHANGED"; })) << "refreshed";
    EXPECT_EQ(boxes, "") << "saved: nothing is asked";
    program->reportError(std::runtime_error("a fault in a handler"));
    EXPECT_EQ(contentOf("ERRORS.TXT").isEmpty(), *GetParam() == '\0')
        << "into the library's table, if it has one";

    if (QStandardPaths::findExecutable("mdb-json").isEmpty()) {
        GTEST_SKIP() << "mdbtools is not installed: the saved library is not read back";
    }
    if (*GetParam() == '\0') {
        EXPECT_EQ(foreignRows(shop, "Errors").at(0)["ErrorString"].toString(), "a fault in a handler");
    }
    std::map<QString, std::pair<double, double>> materials;
    for (const QJsonObject& row : foreignRows(shop, "Material")) {
        materials[row["Material"].toString()] = {row["Density"].toDouble(), row["ZFactor"].toDouble()};
    }
    int numbered = 0;
    for (const QJsonObject& row : foreignRows(shop, "Film")) {
        const int number = row["FilmNum"].toInt();
        if (number == 0) {
            continue;
        }
        ++numbered;
        const FilmRecord& film = core().films[static_cast<std::size_t>(number)];
        EXPECT_EQ(row["FilmName"].toString().toStdString(), film.FilmName) << number;
        for (const auto& [field, value] : {std::pair{"Tooling", film.Tooling},
                                           {"EndThick", film.EndThick},
                                           {"ThickSet", film.ThickSet},
                                           {"TimeSet", film.TimeSet},
                                           {"SensorAvg", film.SensorAvg}}) {
            EXPECT_NEAR(row[field].toDouble(), value, 1e-12) << number << " " << field;
        }
        EXPECT_EQ(materials[row["Material"].toString()], (std::pair{film.Density, film.ZFactor})) << number;
    }
    EXPECT_EQ(numbered, 99);
}

INSTANTIATE_TEST_SUITE_P(Files, OldLibrary,
                         testing::Values("", "library-old.mdb", "library-old-120.mdb",
                                         "library-old-jet3.mdb"),
                         [](const auto& file) {
                             const QString name = QString(file.param).remove(".mdb").remove('-');
                             return name.isEmpty() ? std::string("Made") : name.toStdString();
                         });

} // namespace
} // namespace drx9
