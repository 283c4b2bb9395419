#include "JetTestSupport.h"

#include <algorithm>
#include <cstdio>

namespace drx9::jet {

std::string faultsOf(FilePort& files, const std::string& path) {
    PageStore store = PageStore::open(files, path);
    std::string text;
    for (const auto& fault : checkDatabase(store).faults) {
        text += fault + "\n";
    }
    return text;
}

std::vector<std::vector<Value>> rowsOf(Database& database, const std::string& table) {
    std::vector<std::vector<Value>> rows;
    for (auto set = database.OpenRecordset(table); !set->Eof(); set->MoveNext()) {
        auto& row = rows.emplace_back();
        for (const auto& name : set->FieldNames()) {
            row.push_back(set->Value(name));
        }
    }
    return rows;
}

namespace {
void setAll(Recordset& set, const Values& values) {
    for (const auto& [field, value] : values) {
        set.SetValue(field, value);
    }
    set.Update();
}
} // namespace

void addRow(Recordset& set, const Values& values) {
    set.AddNew();
    setAll(set, values);
}

void editRow(Recordset& set, const Values& values) {
    set.Edit();
    setAll(set, values);
}

std::string failure(const std::function<void()>& work) {
    try {
        work();
    } catch (const JetError& error) {
        return error.what();
    }
    return {};
}

ColumnSpec column(const char* name, ColumnType type, std::size_t size) {
    ColumnSpec spec;
    spec.name = name;
    spec.type = type;
    spec.size = size;
    return spec;
}

TableSpec everythingTable(const char* name) {
    return {name,
            {column("Id", ColumnType::Long), column("Name", ColumnType::Text, 60),
             column("Code", ColumnType::Text, 20), column("Flag", ColumnType::Boolean),
             column("Tiny", ColumnType::Byte), column("Small", ColumnType::Integer),
             column("Amount", ColumnType::Currency), column("Ratio", ColumnType::Single),
             column("Num", ColumnType::Double), column("When", ColumnType::Date),
             column("Bytes", ColumnType::Binary, 100), column("Note", ColumnType::Memo),
             column("Blob", ColumnType::Ole), column("Key", ColumnType::Guid)},
            {{.name = "PrimaryKey", .columns = {{"Id", true}}, .primary = true},
             {.name = "ByName", .columns = {{"Name", true}, {"Id", false}}},
             {.name = "ByCode", .columns = {{"Code", true}}, .unique = true, .ignoreNulls = true},
             {.name = "ByNum", .columns = {{"Num", false}, {"Amount", true}, {"When", true}}},
             {.name = "ByKey", .columns = {{"Key", true}}}}};
}

void makeOldLibrary(FilePort& files, Generation generation, const std::vector<std::string>& films) {
    using enum ColumnType;
    const TableSpec film{"Film",
                         {column("FilmName", Text, 20), column("Tooling", Double)},
                         {{.name = "PRIMARYKEY", .columns = {{"FilmName", true}}, .primary = true}}};
    const TableSpec material{
        "Material", {column("Material", Text, 20), column("Density", Double), column("ZFactor", Double)}, {}};
    (void)files.makeFolder("/data");
    DBEngine engine(files);
    const auto database = engine.CreateDatabase(kPath, generation, {film, material}, kCreated);
    const auto set = database->OpenRecordset("Film");
    for (const auto& name : films) {
        addRow(*set, {{"FilmName", name}, {"Tooling", 100.0 + static_cast<double>(set->RecordCount())}});
    }
}

// ---- Model ----

void Model::createTable(const std::string& name) {
    TableSpec spec = everythingTable(name.c_str());
    if (database_.shared().store().layout().generation == Generation::Jet3) { // Jet 4 has no keys for it
        spec.indexes.push_back({.name = "ByFlag", .columns = {{"Flag", true}, {"Small", true}}});
    }
    database_.CreateTable(spec, kCreated);
    auto& table = tables_[name];
    for (const auto& each : spec.columns) {
        table.columns.push_back(each.name);
    }
}

std::string Model::randomText(std::size_t longest) {
    constexpr const char* kLetters[] = {"a", "B", "c", "Z", "-", "'",        " ",
                                        "7", "/", "_", "e", "E", "\xC3\xA9", "\xC3\x9F"};
    std::string text;
    for (std::size_t length = pick(longest + 1); length > 0; --length) {
        text += kLetters[pick(std::size(kLetters))];
    }
    return text;
}

Value Model::randomValue(const std::string& name) {
    if (pick(6) == 0 && name != "Flag") {
        return Null{};
    }
    const auto whole = [&](std::int64_t range) {
        return static_cast<std::int64_t>(random_()) % (2 * range + 1) - range;
    };
    const std::map<std::string, std::function<Value()>> plain = {
        {"Flag", [&] { return pick(2) == 0; }},
        {"Tiny", [&] { return static_cast<std::int64_t>(pick(256)); }},
        {"Small", [&] { return whole(30000); }},
        {"Extra integer", [&] { return whole(30000); }},
        {"Amount", [&] { return Currency{whole(1000000000)}; }},
        {"Ratio", [&] { return static_cast<float>(whole(1000)) / 8.0F; }},
        {"Num", [&] { return static_cast<double>(whole(100000)) / 16.0; }},
        {"Extra double", [&] { return static_cast<double>(whole(100000)) / 16.0; }},
        {"When", [&] { return DateTime{static_cast<double>(pick(40000) * 86400 + pick(86400)) / 86400}; }},
        {"Code", [&] { return "c" + std::to_string(++codes_); }}};
    if (const auto found = plain.find(name); found != plain.end()) {
        return found->second();
    }
    if (name == "Name") {
        return randomText(pick(10) == 0 ? 60 : 12);
    }
    if (name == "Bytes" || name == "Blob") {
        const std::size_t longest = name == "Bytes" ? 100 : pick(8) == 0 ? 9000 : 90;
        std::string bytes(1 + pick(longest), '\0');
        // No zeros: one of the other readers prints binary values up to the first one.
        std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<char>(1 + pick(255)); });
        return Binary{bytes};
    }
    if (name == "Note" || name == "Extra memo") {
        return randomText(pick(12) == 0 ? 6000 : 80);
    }
    Guid key;
    std::generate(key.bytes.begin(), key.bytes.end(), [&] { return static_cast<std::uint8_t>(pick(256)); });
    return key;
}

Model::Row Model::randomRow(const TableModel& table) {
    Row row;
    for (const auto& name : table.columns) {
        if (name != "Id") {
            row[name] = randomValue(name);
        }
    }
    return row;
}

void Model::insert(const std::string& name, TableModel& table) {
    Row row = randomRow(table);
    row["Id"] = table.nextId;
    const auto set = database_.OpenRecordset(name);
    set->AddNew();
    for (auto& [field, value] : row) {
        if (pick(8) != 0 || field == "Id") {
            set->SetValue(field, value);
        } else {
            value = field == "Flag" ? Value(false) : Value(Null{});
        }
    }
    set->Update();
    table.rows[table.nextId++] = row;
}

void Model::update(const std::string& name, TableModel& table) {
    if (table.rows.empty()) {
        return;
    }
    auto& [id, row] = *std::next(table.rows.begin(), static_cast<std::ptrdiff_t>(pick(table.rows.size())));
    const auto set = database_.OpenRecordset(name, {{"Id", id}});
    ASSERT_EQ(set->RecordCount(), 1u);
    set->Edit();
    for (const auto& [field, value] : randomRow(table)) {
        if (pick(3) == 0) {
            set->SetValue(field, value);
            row[field] = value;
        }
    }
    set->Update();
}

void Model::erase(const std::string& name, TableModel& table) {
    if (table.rows.empty()) {
        return;
    }
    const auto at = std::next(table.rows.begin(), static_cast<std::ptrdiff_t>(pick(table.rows.size())));
    database_.OpenRecordset(name, {{"Id", at->first}})->Delete();
    table.rows.erase(at);
}

void Model::insertDuplicate(const std::string& name, TableModel& table) {
    if (table.rows.empty()) {
        return;
    }
    const auto set = database_.OpenRecordset(name);
    const Values values = {{"Id", table.rows.begin()->first}, {"Note", std::string(3000, 'n')}};
    EXPECT_NE(failure([&] { addRow(*set, values); }), "");
}

void Model::transaction() {
    const auto before = tables_;
    database_.BeginTrans();
    for (std::size_t i = pick(6) + 1; i > 0; --i) {
        auto& [name, table] = *std::next(tables_.begin(), static_cast<std::ptrdiff_t>(pick(tables_.size())));
        pick(2) == 0 ? insert(name, table) : erase(name, table);
    }
    if (pick(2) == 0) {
        database_.CommitTrans();
    } else {
        database_.Rollback();
        tables_ = before;
    }
}

void Model::step() {
    auto& [name, table] = *std::next(tables_.begin(), static_cast<std::ptrdiff_t>(pick(tables_.size())));
    const auto dice = pick(100);
    if (dice < 45) {
        insert(name, table);
    } else if (dice < 70) {
        update(name, table);
    } else if (dice < 88) {
        erase(name, table);
    } else if (dice < 92) {
        insertDuplicate(name, table);
    } else if (dice < 97) {
        transaction();
    } else if (dice < 98) {
        constexpr std::pair<const char*, ColumnType> kExtra[] = {{"Extra integer", ColumnType::Integer},
                                                                 {"Extra double", ColumnType::Double},
                                                                 {"Extra memo", ColumnType::Memo}};
        const auto& [extra, type] = kExtra[pick(std::size(kExtra))];
        if (std::find(table.columns.begin(), table.columns.end(), extra) == table.columns.end()) {
            database_.TableDefs(name).Append(TableDef::CreateField(extra, type));
            table.columns.emplace_back(extra);
            for (auto& [id, row] : table.rows) {
                row[extra] = Null{};
            }
        }
    } else if (dice < 99 && !database_.TableDefs(name).Indexes().empty()) {
        const auto indexes = database_.TableDefs(name).Indexes();
        const auto& index = indexes[pick(indexes.size())].Name;
        if (index != "PrimaryKey") {
            database_.Execute("DROP INDEX " + index + " ON [" + name + "]");
        }
    } else if (tables_.size() < 4) {
        createTable("Table " + std::to_string(tables_.size() + 1));
    }
}

void Model::compare(Database& database) const {
    for (const auto& [name, table] : tables_) {
        SCOPED_TRACE(name);
        EXPECT_EQ(database.TableDefs(name).RecordCount(), table.rows.size());
        std::size_t found = 0;
        for (const auto set = database.OpenRecordset(name); !set->Eof(); set->MoveNext()) {
            const auto row = table.rows.find(std::get<std::int64_t>(set->Value("Id")));
            ASSERT_NE(row, table.rows.end());
            ++found;
            for (const auto& [field, value] : row->second) {
                EXPECT_EQ(set->Value(field), value) << field << " of " << row->first;
            }
        }
        EXPECT_EQ(found, table.rows.size());
    }
}

Outcome run(const std::string& command) {
    Outcome outcome;
    FILE* pipe = popen(command.c_str(), "r");
    char block[4096];
    for (std::size_t n = 0; (n = fread(block, 1, sizeof block, pipe)) > 0;) {
        outcome.out.append(block, n);
    }
    outcome.code = pclose(pipe) / 256;
    return outcome;
}

} // namespace drx9::jet
