#pragma once

#include "fakes/FakeInputBox.h"
#include "fakes/FaultyFilePort.h"
#include "fakes/MemoryFilePort.h"
#include "films/FilmEditor.h"
#include "films/FilmText.h"
#include "films/FilmTransfer.h"
#include "jet/Check.h"
#include "link/LinkBench.h"
#include "simulator/Instrument.h"

#include <gtest/gtest.h>

#include <deque>
#include <set>

namespace drx9 {

inline constexpr const char* kLibrary = "/data/Monitor.mdb";

struct QueuedDialogs : FileDialogs {
    std::deque<std::string> answers; ///< empty when none is left: cancelled
    FileDialogRequest request;
    std::string openFile(const FileDialogRequest& asked) override {
        request = asked;
        std::string answer = answers.empty() ? "" : answers.front();
        answers.erase(answers.begin(), answers.begin() + (answers.empty() ? 0 : 1));
        return answer;
    }
    std::string saveFile(const FileDialogRequest& asked) override { return openFile(asked); }
};

struct FakeFilmProgress : Progress {
    std::vector<std::string> shown;
    std::vector<int> percents;
    int standing = 0;
    void ProgressShow(const std::string& text, ProgressOwner) override {
        shown.push_back(text);
        ++standing;
    }
    void setProgress(std::int16_t percent) override { percents.push_back(percent); }
    void ProgressHide() override { --standing; }
};

/// A film of a library: name, material, six numbers; an empty optional is a null.
struct TestFilm {
    std::string name;
    std::optional<std::string> material = "Gold";
    std::optional<double> tooling = 100, endThick = 1, thickSet = 0.5, timeSet = 60, sensorAvg = 3;
};

inline jet::Value valueOf(const std::optional<double>& number) {
    return number ? jet::Value(*number) : jet::Value();
}

/// The library's objects and the transfer over memory files, a faulty disk and a scripted wire to a simulated
/// instrument.
struct FilmBench : LinkBench, FilmListView, FilmMemoryAccess {
    explicit FilmBench(int filmSlots = 9, int sensors = 6)
        : LinkBench(0)
        , instrument({sensors, filmSlots, filmSlots == 9 ? "DRX-9 Ver 4.08" : "DRX-9 Ver 4.12", 1, true}) {
        (void)memory.makeFolder("/data");
        wire().setAnswerer([this](const std::string& command) { return answer(command); });
        link.Comm_Send("@");
        link.setInstrumentType(static_cast<std::int16_t>(sensors));
        wire().forget();
    }

    // ---- the library file ----

    using Columns = std::vector<std::pair<const char*, jet::ColumnType>>;
    /// Text columns take 20 characters.
    static jet::TableSpec table(const char* name, const Columns& columns) {
        jet::TableSpec spec{name, {}, {}};
        for (const auto& [column, type] : columns) {
            spec.columns.emplace_back();
            spec.columns.back().name = column;
            spec.columns.back().type = type;
            spec.columns.back().size = type == jet::ColumnType::Text ? 20 : 0;
        }
        return spec;
    }
    /// `index`: name of an index on FilmName, "" for none; `numbered`: with the column FilmNum.
    void make(const std::vector<TestFilm>& rows, const std::string& index = "", bool numbered = true,
              const std::string& path = kLibrary) {
        using enum jet::ColumnType;
        Columns columns = {{"FilmName", Text},   {"Material", Text},   {"Tooling", Double},
                           {"EndThick", Double}, {"ThickSet", Double}, {"TimeSet", Double},
                           {"SensorAvg", Double}};
        if (numbered) {
            columns.insert(columns.begin(), {"FilmNum", Integer});
        }
        jet::TableSpec film = table("Film", columns);
        if (!index.empty()) {
            film.indexes.push_back({.name = index, .columns = {{"FilmName", true}}, .primary = true});
        }
        const auto material =
            table("Material", {{"Material", Text}, {"Density", Double}, {"ZFactor", Double}});
        auto database = engine.CreateDatabase(path, jet::Generation::Jet4, {film, material}, {45000});
        database->BeginTrans();
        addRow(*database, "Material",
               {{"Material", std::string("Gold")}, {"Density", 19.3}, {"ZFactor", 0.381}});
        addRow(*database, "Material",
               {{"Material", std::string("Silver")}, {"Density", 10.5}, {"ZFactor", 0.529}});
        std::int64_t number = 0;
        for (const TestFilm& row : rows) {
            FilmLibrary::Values values = {
                {"FilmName", row.name},
                {"Material", row.material ? jet::Value(*row.material) : jet::Value()},
                {"Tooling", valueOf(row.tooling)},
                {"EndThick", valueOf(row.endThick)},
                {"ThickSet", valueOf(row.thickSet)},
                {"TimeSet", valueOf(row.timeSet)},
                {"SensorAvg", valueOf(row.sensorAvg)}};
            if (numbered) {
                values.emplace_back("FilmNum", ++number);
            }
            addRow(*database, "Film", values);
        }
        database->CommitTrans();
    }
    static void addRow(jet::Database& database, const char* table, const FilmLibrary::Values& values) {
        auto rows = database.OpenRecordset(table);
        rows->AddNew();
        for (const auto& [field, value] : values) {
            rows->SetValue(field, value);
        }
        rows->Update();
    }
    /// Another program has the library open.
    void lock(const std::string& path = kLibrary) {
        memory.put(path.substr(0, path.size() - 3) + "ldb",
                   "LAB-3" + std::string(27, '\0') + "Admin" + std::string(27, '\0'));
    }
    /// The rows of a table as they lie in the file, fields joined by "|".
    static std::vector<std::string> rowsIn(FilePort& files, const std::string& path, const char* table) {
        jet::DBEngine other(files);
        auto database = other.OpenDatabase(path);
        std::vector<std::string> rows;
        for (auto set = database->OpenRecordset(table); !set->Eof(); set->MoveNext()) {
            std::string row;
            for (const auto& name : set->FieldNames()) {
                const jet::Value value = set->Value(name);
                row += (row.empty() ? "" : "|") +
                       (jet::isNull(value) ? std::string("null") : shownText(value, NumberLocale{}));
            }
            rows.push_back(row);
        }
        return rows;
    }
    std::vector<std::string> rows(const char* table, const std::string& path = kLibrary) {
        return rowsIn(memory, path, table);
    }
    /// Faults of the file, "" for a sound one.
    std::string faults(const std::string& path = kLibrary) {
        jet::DBEngine other(memory);
        const auto database = other.OpenDatabase(path);
        std::string text;
        for (const auto& fault : jet::checkDatabase(database->shared().store()).faults) {
            text += fault + "\n";
        }
        return text;
    }
    [[nodiscard]] std::string bytes(const std::string& path = kLibrary) const { return memory.text(path); }
    [[nodiscard]] std::vector<std::string> folder() const { return memory.list("/data"); }

    // ---- the instrument ----

    std::string answer(const std::string& command) {
        ++exchanges;
        return spoil && exchanges == spoilAt ? spoil(command) : soundAnswer(command);
    }
    std::string soundAnswer(const std::string& command) {
        if (!refuse.empty() && command.rfind(refuse, 0) == 0 && command.back() != '?') {
            return replyPacket('D', "");
        }
        const sim::Reply reply = instrument.execute(command, 0);
        return replyPacket(reply.status, reply.data);
    }
    /// Film f as the instrument holds it.
    std::string held(int f) { return instrument.execute(filmCommand(f) + "?", 0).data; }

    // ---- the window ----

    void open() {
        library.DBOpen();
        refreshLists();
    }
    [[nodiscard]] int rowCount() const override { return static_cast<int>(listed.size()); }
    void setCurrentRow(int row) override { currentRow = row; }
    [[nodiscard]] bool isSelected(int row) const override { return selected.count(row) != 0; }
    [[nodiscard]] std::string filmName() const override {
        return listed.empty() ? "" : listed[static_cast<std::size_t>(currentRow)].name;
    }
    void ShowDBFilm() override { editor.ShowDBFilm(filmName()); }
    void refreshLists() override {
        library.refresh(Dat::DBFilms);
        library.refresh(Dat::MatAll);
        listed = editor.films();
    }
    void selectFirstRow() override { selected = {currentRow = 0}; }
    [[nodiscard]] bool manySensors() const override { return link.sensorCount() >= 3; }
    void setHourglass(bool on) override { hourglass = on; }
    void filmMemoryChanged() override {}
    void filmUnconfirmed() override { ++unconfirmed; }

    MemoryFilePort memory;
    FaultyFilePort files{memory};
    jet::DBEngine engine{files};
    Paths paths{"/app", "/data"};
    QueuedDialogs dialogs;
    std::string DBFileName = "Monitor.mdb";
    FilmLibrary library{{engine, files, paths, dialogs, DBFileName}};
    FakeInput input;
    NumberLocale locale;
    FilmEditor editor{{library, boxes, input, locale}};
    sim::Instrument instrument;
    int exchanges = 0;
    int spoilAt = 0;    ///< the exchange whose answer is spoilt
    std::string refuse; ///< beginning of a command that is refused; empty: none
    std::function<std::string(const std::string&)> spoil;
    std::vector<FilmRow> listed;
    int currentRow = 0;
    std::set<int> selected;
    bool hourglass = false;
    int unconfirmed = 0;
    Films films;
    FakeFilmProgress progress;
    std::function<bool()> ends;
    FilmInstrument seen{link, commands, clock};
    FilmTransfer transfer{{library, films, seen, boxes, progress, clock, actions, *this, locale, *this,
                           [this] { return ends && ends(); }}};
};

/// A bench with a library open, and a film of it chosen where one is named.
struct OpenBench : FilmBench {
    explicit OpenBench(const std::vector<TestFilm>& rows, const char* chosen = nullptr, int filmSlots = 9,
                       int sensors = 6)
        : FilmBench(filmSlots, sensors) {
        make(rows);
        open();
        if (chosen != nullptr) {
            editor.ShowDBFilm(chosen);
        }
    }
};

} // namespace drx9
