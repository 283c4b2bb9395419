#include "jet/Database.h"

#include "jet/NewDatabase.h"

namespace drx9::jet {

// ---- TableDef ----

std::vector<Index> TableDef::Indexes() const {
    return file_->guarded([this] {
        const Definition& definition = file_->table(name_).definition();
        std::vector<Index> indexes;
        for (const auto& logical : definition.logicalIndexes) {
            const RealIndex& real = definition.realIndexes[logical.real];
            Index index{logical.name, {}, logical.primary, real.isUnique()};
            for (const auto& part : real.columns) {
                index.Fields.push_back(definition.columns[definition.positionOf(part.number)].name);
            }
            indexes.push_back(std::move(index));
        }
        return indexes;
    });
}

std::vector<Field> TableDef::Fields() const {
    return file_->guarded([this] {
        std::vector<Field> fields;
        const std::size_t width = file_->store().layout().generation == Generation::Jet4 ? 2 : 1;
        for (const auto& column : file_->table(name_).definition().columns) {
            fields.push_back({column.name, column.type,
                              column.type == ColumnType::Text ? column.length / width : column.length});
        }
        return fields;
    });
}

std::size_t TableDef::RecordCount() const {
    return file_->guarded([this] { return std::size_t{file_->table(name_).rowCount()}; });
}

void TableDef::Append(const Field& field) {
    file_->changed(name_, [&](Table& table) {
        ColumnSpec spec;
        spec.name = field.Name;
        spec.type = field.Type;
        spec.size = field.Size;
        addColumn(file_->store(), table.definition().page(), spec);
    });
}

// ---- Database ----

Database::~Database() {
    Close();
}

void Database::Close() {
    if (file_) {
        file_->abandon(*this);
    }
    file_.reset();
}

const std::shared_ptr<SharedFile>& Database::file() const {
    if (!file_) {
        throw JetError(Fault::Rejected, "the database is closed");
    }
    return file_;
}

std::vector<std::string> Database::TableNames() const {
    return file()->guarded([this] {
        std::vector<std::string> names;
        for (const auto& entry : Catalog(file_->store()).tables()) {
            if (entry.user && !entry.link) {
                names.push_back(entry.name);
            }
        }
        return names;
    });
}

TableDef Database::TableDefs(const std::string& name) const {
    file()->guarded([&] { file_->table(name); });
    return {file_, name};
}

void Database::Execute(const std::string& text) {
    const Query query = file()->guarded([&] { return parseQuery(text); });
    if (query.kind != Query::Kind::DropIndex) {
        file_->guarded([] { rejected("a SELECT is opened as a recordset, not executed"); });
    }
    file_->changed(query.table,
                   [&](Table& table) { dropIndex(file_->store(), table.definition().page(), query.index); });
}

std::unique_ptr<Recordset> Database::OpenRecordset(const std::string& source) const {
    if (!looksLikeQuery(source)) {
        return OpenRecordset(source, {});
    }
    const Query query = file()->guarded([&] { return parseQuery(source); });
    return OpenRecordset(query.table, query.criteria);
}

std::unique_ptr<Recordset> Database::OpenRecordset(const std::string& table,
                                                   const std::vector<Criterion>& criteria) const {
    return std::make_unique<Recordset>(file(), table, criteria);
}

void Database::CreateTable(const TableSpec& spec, DateTime created) {
    file()->guarded([&] {
        Change change(file_->store());
        jet::createTable(file_->store(), spec, created);
        change.commit();
    });
}

void Database::BeginTrans() {
    file()->begin(*this);
}

void Database::CommitTrans() {
    file()->guarded([this] { file_->commit(*this); });
}

void Database::Rollback() {
    file()->guarded([this] { file_->rollback(*this); });
}

// ---- DBEngine ----

/// The store in which the file is open already, under this or another spelling of its path.
std::shared_ptr<SharedFile> DBEngine::openFile(const std::string& path) {
    std::erase_if(open_, [](const std::weak_ptr<SharedFile>& file) { return file.expired(); });
    for (const auto& known : open_) {
        auto file = known.lock();
        PageStore& store = file->store();
        if (store.isFile(path) && (store.depth() > 0 || !store.changedOnDisk())) {
            store.addName(path);
            return file;
        }
    }
    return nullptr;
}

std::unique_ptr<Database> DBEngine::OpenDatabase(const std::string& path, Reading reading) {
    auto file = openFile(path);
    if (!file) {
        try {
            file = std::make_shared<SharedFile>(PageStore::open(files_, path, reading));
        } catch (JetError& error) {
            error.nameFile(path);
            throw;
        }
        open_.push_back(file);
    }
    return std::make_unique<Database>(std::move(file));
}

std::unique_ptr<Database> DBEngine::CreateDatabase(const std::string& path, Generation generation,
                                                   const std::vector<TableSpec>& tables, DateTime created) {
    try {
        PageStore store = PageStore::create(files_, path, generation);
        Change change(store);
        writeEmptyDatabase(store, created);
        for (const auto& table : tables) {
            createTable(store, table, created);
        }
        change.commit();
    } catch (JetError& error) {
        error.nameFile(path);
        throw;
    }
    return OpenDatabase(path);
}

} // namespace drx9::jet
