#pragma once

#include "fakes/MemoryFilePort.h"
#include "jet/Check.h"
#include "jet/Database.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <string>
#include <vector>

namespace drx9::jet {

inline constexpr const char* kPath = "/data/test.mdb";
inline constexpr DateTime kCreated{45000.5};

inline constexpr Generation kBoth[] = {Generation::Jet3, Generation::Jet4};

/// Faults that the check finds in a file, one a line; empty for a sound one.
std::string faultsOf(FilePort& files, const std::string& path = kPath);

/// All rows of a table, in the order in which it keeps them.
std::vector<std::vector<Value>> rowsOf(Database& database, const std::string& table);

using Values = std::vector<std::pair<std::string, Value>>;
/// A new row of these values; or these values into the current row.
void addRow(Recordset& set, const Values& values);
void editRow(Recordset& set, const Values& values);

/// What a JetError says while `work` runs; "" when there is none. Anything else that is thrown passes.
std::string failure(const std::function<void()>& work);

ColumnSpec column(const char* name, ColumnType type, std::size_t size = 0);

/// A table with every type of column: Id (primary key), Name (text index), Code (unique, nulls left out), Num
/// (descending) and more without an index.
TableSpec everythingTable(const char* name);

/// A film library of the old format: Film with the primary index PRIMARYKEY on FilmName, Material.
void makeOldLibrary(FilePort& files, Generation generation, const std::vector<std::string>& films);

/// Random operations on a database, and what it must hold after them.
class Model {
public:
    using Row = std::map<std::string, Value>;

    Model(Database& database, unsigned seed)
        : database_(database)
        , random_(seed) {}
    void createTable(const std::string& name);
    /// One random change: rows in and out, transactions kept and taken back, refused duplicates, columns,
    /// indexes.
    void step();
    /// Fails the test where the database differs.
    void compare(Database& database) const;

private:
    struct TableModel {
        std::map<std::int64_t, Row> rows; ///< by Id
        std::vector<std::string> columns;
        std::int64_t nextId = 1;
    };
    std::size_t pick(std::size_t count) { return random_() % count; }
    std::string randomText(std::size_t longest);
    Value randomValue(const std::string& column);
    Row randomRow(const TableModel& table);
    void insert(const std::string& name, TableModel& table);
    void update(const std::string& name, TableModel& table);
    void erase(const std::string& name, TableModel& table);
    void insertDuplicate(const std::string& name, TableModel& table);
    void transaction();

    Database& database_;
    std::mt19937 random_;
    std::map<std::string, TableModel> tables_;
    int codes_ = 0;
};

/// What a shell's command prints, and its exit code.
struct Outcome {
    int code = -1;
    std::string out;
};
Outcome run(const std::string& command);

} // namespace drx9::jet
