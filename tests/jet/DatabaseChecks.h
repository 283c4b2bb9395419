#pragma once

#include "fakes/MemoryFilePort.h"
#include "jet/Check.h"
#include "jet/Database.h"

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

/// One change, committed by itself; a refusal leaves the file as it was.
template<class Work>
void changeOnce(MemoryFilePort& files, const Work& work) {
    const std::string before = files.find(kFuzzed)->bytes;
    try {
        work();
    } catch (const jet::JetError&) {
        if (files.find(kFuzzed)->bytes != before) {
            std::abort();
        }
    }
}

/// Opens the bytes as a database, changes rows, columns and indexes of its tables and checks the file. A file
/// without faults must have none afterwards.
inline void changeAndCheck(std::string_view bytes) {
    MemoryFilePort files;
    files.put(kFuzzed, bytes);
    try {
        jet::DBEngine engine(files);
        const auto database = engine.OpenDatabase(kFuzzed);
        const bool sound = jet::checkDatabase(database->shared().store()).faults.empty();
        std::size_t tables = 0;
        for (const auto& name : database->TableNames()) {
            if (++tables > 4) {
                break;
            }
            const auto change = [&](const auto& work) {
                changeOnce(files, [&] { database->shared().changed(name, work); });
            };
            change([](jet::Table& table) { table.insert({}); });
            change([](jet::Table& table) {
                const auto rows = table.rows();
                if (!rows.empty()) {
                    const auto row = table.read(rows.front());
                    std::vector<jet::Assignment> values;
                    for (std::size_t i = 0; i < row.fields().size(); ++i) {
                        const bool text = table.definition().columns[i].isText();
                        values.emplace_back(i, text ? jet::Value(std::string(80, 'x')) : row.value(i));
                    }
                    table.update(rows.front(), values);
                    table.erase(rows.back());
                }
            });
            changeOnce(files, [&] { database->TableDefs(name).Append({"Added", jet::ColumnType::Memo, 0}); });
            change([](jet::Table& table) {
                if (const auto columns = table.definition().columns.size(); columns > 0) {
                    table.insert({{columns - 1, std::string(5000, 'm')}});
                }
            });
            changeOnce(files, [&] {
                for (const auto& index : database->TableDefs(name).Indexes()) {
                    database->Execute("DROP INDEX [" + index.Name + "] ON [" + name + "]");
                    break;
                }
            });
        }
        if (sound && !jet::checkDatabase(database->shared().store()).faults.empty()) {
            std::abort();
        }
    } catch (const jet::JetError&) {
    }
}

} // namespace drx9::fuzz
