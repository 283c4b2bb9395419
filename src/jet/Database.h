#pragma once

#include "jet/Query.h"
#include "jet/Recordset.h"
#include "jet/Schema.h"
#include "jet/SharedFile.h"

#include <memory>
#include <string>
#include <vector>

namespace drx9::jet {

/// An index of a table, as TableDef::Indexes lists it.
struct Index {
    std::string Name;
    std::vector<std::string> Fields;
    bool Primary = false;
    bool Unique = false;
};

/// A column, as TableDef::Fields lists it and TableDef::CreateField makes it.
struct Field {
    std::string Name;
    ColumnType Type = ColumnType::Long;
    std::size_t Size = 0; ///< texts: characters; else bytes
};

/// The structure of one table of an open database.
class TableDef {
public:
    TableDef(std::shared_ptr<SharedFile> file, std::string name)
        : file_(std::move(file))
        , name_(std::move(name)) {}

    [[nodiscard]] const std::string& Name() const { return name_; }
    /// Sorted by name: the first one is the table's first index.
    [[nodiscard]] std::vector<Index> Indexes() const;
    [[nodiscard]] std::vector<Field> Fields() const;
    [[nodiscard]] std::size_t RecordCount() const;
    static Field CreateField(const std::string& name, ColumnType type, std::size_t size = 0) {
        return {name, type, size};
    }
    /// Appends a column; one commit.
    void Append(const Field& field);

private:
    std::shared_ptr<SharedFile> file_;
    std::string name_;
};

/// An open database. Everything that fails throws JetError, whose message begins with the file's name. Each
/// Update, Delete, Execute and Append is one atomic commit, unless it is between BeginTrans and
/// CommitTrans: then these commit together. All databases that one DBEngine opened on a file share its pages
/// and its transactions: these nest, and each is ended by the database that began it, the innermost first.
class Database {
public:
    explicit Database(std::shared_ptr<SharedFile> file)
        : file_(std::move(file)) {}
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;
    ~Database();

    /// Takes back transactions that were not committed. Recordsets that are still open go on.
    void Close();
    [[nodiscard]] const std::string& Name() const { return file()->store().path(); }

    /// Names of the user's tables in the catalog's order.
    [[nodiscard]] std::vector<std::string> TableNames() const;
    [[nodiscard]] TableDef TableDefs(const std::string& name) const;
    /// "DROP INDEX name ON table".
    void Execute(const std::string& text);
    /// A table's name, or a SELECT.
    [[nodiscard]] std::unique_ptr<Recordset> OpenRecordset(const std::string& source) const;
    /// The rows of a table that meet all criteria.
    [[nodiscard]] std::unique_ptr<Recordset> OpenRecordset(const std::string& table,
                                                           const std::vector<Criterion>& criteria) const;
    void CreateTable(const TableSpec& spec, DateTime created);

    void BeginTrans();
    void CommitTrans();
    void Rollback();

    /// Why the file cannot be written now ("in use by user Admin on computer LAB-3"); empty when it can.
    [[nodiscard]] std::string ReadOnlyReason() const { return file()->store().readOnlyReason(); }
    [[nodiscard]] SharedFile& shared() const { return *file(); }

private:
    [[nodiscard]] const std::shared_ptr<SharedFile>& file() const;

    std::shared_ptr<SharedFile> file_;
};

/// Opens and makes databases; one for the whole program, so that all opens of one path share one store.
class DBEngine {
public:
    explicit DBEngine(FilePort& files)
        : files_(files) {}

    /// `path` is absolute. A file that another program changed since it was last opened is read again; who
    /// has it open from before keeps what was read and can no longer commit.
    std::unique_ptr<Database> OpenDatabase(const std::string& path, Reading reading = Reading::Whole);
    /// Makes a database with empty tables; the file must not exist. `created` is entered as it is, local
    /// time. One commit.
    std::unique_ptr<Database> CreateDatabase(const std::string& path, Generation generation,
                                             const std::vector<TableSpec>& tables, DateTime created);

private:
    std::shared_ptr<SharedFile> openFile(const std::string& path);

    FilePort& files_;
    std::vector<std::weak_ptr<SharedFile>> open_;
};

} // namespace drx9::jet
