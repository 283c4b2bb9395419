#pragma once

#include "fakes/MemoryFilePort.h"
#include "jet/Check.h"
#include "jet/Database.h"

#include <algorithm>
#include <cstdlib>

/// What must hold of a database file of any bytes. Ends the process where it does not: what a fuzzer takes
/// for a finding, and a test for a failure.
namespace drx9::fuzz {

inline constexpr const char* kFuzzed = "/fuzz.mdb";

/// Opens the bytes as a database and reads everything in it: values, indexes, structure. Damage ends in
/// JetError, and nothing else.
inline void readAll(std::string_view bytes) {
    MemoryFilePort files;
    files.put(kFuzzed, bytes);
    try {
        jet::DBEngine engine(files);
        const auto database = engine.OpenDatabase(kFuzzed);
        jet::PageStore& store = database->shared().store();
        jet::checkDatabase(store);
        for (const auto& entry : jet::Catalog(store).tables()) {
            try {
                const jet::Table table(store, entry.page);
                std::size_t budget = store.size();
                table.scan([&](jet::RowId, const jet::RowReader& row) {
                    for (std::size_t i = 0; i < table.definition().columns.size(); ++i) {
                        jet::valueOf(store, table.definition(), row, i, budget);
                    }
                });
                for (const auto& index : table.definition().logicalIndexes) {
                    (void)table.rowsBy(index);
                }
            } catch (const jet::JetError&) {
            }
        }
    } catch (const jet::JetError&) {
    }
    if (files.find(kFuzzed)->bytes != bytes) {
        std::abort(); // reading must not change the file
    }
}

/// How much of a database is changed.
struct Extent {
    std::size_t tables = 4;
    std::size_t rows = 2; ///< of each table
};

/// The row's double comes and goes.
inline void comeAndGo(jet::Table& table, jet::RowId row, bool sound) {
    const auto record = table.read(row);
    std::vector<jet::Assignment> values;
    for (std::size_t i = 0; i < record.fields().size(); ++i) {
        const auto& column = table.definition().columns[i];
        if (column.isKnown() && !column.isAutonumber()) {
            values.emplace_back(i, record.value(i));
        }
    }
    table.erase(table.insert(values));
    if (sound && table.read(row).fields() != record.fields()) {
        std::abort();
    }
}

inline void fillTexts(jet::Table& table, jet::RowId row) {
    std::vector<jet::Assignment> values;
    for (std::size_t i = 0; i < table.definition().columns.size(); ++i) {
        if (table.definition().columns[i].isText()) {
            values.emplace_back(i, std::string(80, 'x'));
        }
    }
    table.update(row, values);
}

/// Opens the bytes as a database and changes rows, columns and indexes of its tables, each by itself: a
/// refused change leaves the file as it was. A file without faults must have none after any of them. Gives
/// how many changes were taken.
inline std::size_t changeAndCheck(std::string_view bytes, const Extent& extent = {}) {
    MemoryFilePort files;
    files.put(kFuzzed, bytes);
    std::size_t taken = 0;
    const auto once = [&](const auto& work) {
        const std::string before = files.find(kFuzzed)->bytes;
        try {
            work();
            taken += files.find(kFuzzed)->bytes != before ? 1 : 0;
        } catch (const jet::JetError&) {
            if (files.find(kFuzzed)->bytes != before) {
                std::abort();
            }
        }
    };
    try {
        jet::DBEngine engine(files);
        const auto database = engine.OpenDatabase(kFuzzed);
        const auto isSound = [&] { return jet::checkDatabase(database->shared().store()).faults.empty(); };
        const bool sound = isSound();
        std::size_t tables = 0;
        for (const auto& name : database->TableNames()) {
            if (++tables > extent.tables) {
                break;
            }
            const auto change = [&](const auto& work) {
                once([&] { database->shared().changed(name, work); });
            };
            std::vector<jet::RowId> rows;
            once([&] { rows = database->shared().table(name).rows(); });
            rows.erase(rows.begin() + static_cast<std::ptrdiff_t>(std::min(rows.size(), extent.rows)),
                       rows.end());
            change([](jet::Table& table) { table.insert({}); });
            for (const jet::RowId row : rows) {
                change([&](jet::Table& table) { comeAndGo(table, row, sound); });
                change([&](jet::Table& table) { fillTexts(table, row); });
            }
            once([&] { database->TableDefs(name).Append({"Added", jet::ColumnType::Memo, 0}); });
            change([](jet::Table& table) {
                if (const auto columns = table.definition().columns.size(); columns > 0) {
                    table.insert({{columns - 1, std::string(5000, 'm')}});
                }
            });
            if (!rows.empty()) {
                change([&](jet::Table& table) { table.erase(rows.back()); });
            }
            if (sound && !isSound()) {
                std::abort();
            }
            for (const auto& index : database->TableDefs(name).Indexes()) {
                once([&] { database->Execute("DROP INDEX [" + index.Name + "] ON [" + name + "]"); });
            }
        }
        if (sound && !isSound()) {
            std::abort();
        }
    } catch (const jet::JetError&) {
    }
    return taken;
}

} // namespace drx9::fuzz
