#include "jet/Recordset.h"

namespace drx9::jet {

Recordset::Recordset(std::shared_ptr<SharedFile> file, std::string table, std::vector<Criterion> criteria)
    : file_(std::move(file))
    , tableName_(std::move(table))
    , criteria_(std::move(criteria)) {
    Requery();
}

void Recordset::Index(const std::string& name) {
    if (!criteria_.empty()) {
        file_->guarded([] { rejected("a query has no index"); });
    }
    index_ = name;
    Requery();
}

void Recordset::Requery() {
    file_->guarded([this] {
        const Table& subject = table();
        std::vector<RowId> rows;
        if (!index_.empty()) {
            const auto* index = subject.definition().findIndex(index_);
            if (index == nullptr) {
                rejected("there is no index \"" + index_ + "\"");
            }
            rows = subject.rowsBy(*index);
        } else if (criteria_.empty()) {
            rows = subject.rows();
        } else {
            const Filter filter(subject, criteria_);
            subject.scan([&](RowId id, const RowReader& row) {
                if (filter.matches(Record(file_->store(), subject.definition(), row.fields()))) {
                    rows.push_back(id);
                }
            });
        }
        rows_ = std::move(rows);
    });
    MoveFirst();
}

/// Every move drops what was being added or edited.
void Recordset::leaveRow() {
    CancelUpdate();
    deleted_ = false;
    record_.reset();
}

void Recordset::MoveFirst() {
    leaveRow();
    position_ = 0;
}

void Recordset::MoveNext() {
    // The row behind a deleted one has moved up to its place.
    const std::size_t next = deleted_ ? position_ : position_ + 1;
    leaveRow();
    position_ = std::min(next, rows_.size());
}

void Recordset::AbsolutePosition(long position) {
    leaveRow();
    position_ = position < 0 ? rows_.size() : std::min(static_cast<std::size_t>(position), rows_.size());
}

void Recordset::AddNew() {
    pending_.clear();
    mode_ = Mode::Add;
}

void Recordset::Edit() {
    file_->guarded([this] { return currentRow(); });
    pending_.clear();
    mode_ = Mode::Edit;
}

void Recordset::CancelUpdate() {
    pending_.clear();
    mode_ = Mode::Browse;
}

void Recordset::Update() {
    const std::vector<Assignment> values(pending_.begin(), pending_.end());
    if (mode_ == Mode::Browse) {
        file_->guarded([] { rejected("Update needs AddNew or Edit before it"); });
    } else if (mode_ == Mode::Add) {
        rows_.push_back(file_->changed(tableName_, [&](Table& subject) { return subject.insert(values); }));
    } else {
        const RowId row = file_->guarded([this] { return currentRow(); });
        file_->changed(tableName_, [&](Table& subject) { subject.update(row, values); });
    }
    CancelUpdate();
}

void Recordset::Delete() {
    const RowId row = file_->guarded([this] { return currentRow(); });
    file_->changed(tableName_, [&](Table& subject) { subject.erase(row); });
    rows_.erase(rows_.begin() + static_cast<std::ptrdiff_t>(position_));
    leaveRow();
    deleted_ = true;
}

RowId Recordset::currentRow() const {
    if (Eof() || deleted_) {
        rejected("there is no current row");
    }
    if (!table().contains(rows_[position_])) {
        rejected("the row has been deleted");
    }
    return rows_[position_];
}

const Record& Recordset::current() const {
    if (!record_ || recordChanges_ != file_->store().changes()) {
        record_ = table().read(currentRow());
        recordChanges_ = file_->store().changes();
    }
    return *record_;
}

std::vector<std::string> Recordset::FieldNames() const {
    return file_->guarded([this] {
        std::vector<std::string> names;
        for (const auto& column : table().definition().columns) {
            names.push_back(column.name);
        }
        return names;
    });
}

jet::Value Recordset::Value(const std::string& field) const {
    return file_->guarded([&] { return Value(table().definition().position(field)); });
}

jet::Value Recordset::Value(std::size_t position) const {
    if (const auto pending = pending_.find(position); pending != pending_.end()) {
        return pending->second;
    }
    if (mode_ == Mode::Add) {
        return Null{};
    }
    return file_->guarded([&] { return current().value(position); });
}

void Recordset::SetValue(const std::string& field, jet::Value value) {
    file_->guarded([&] {
        if (mode_ == Mode::Browse) {
            rejected("a value is set without AddNew or Edit");
        }
        const std::size_t position = table().definition().position(field);
        if (!isNull(value)) {
            (void)encodeValue(file_->store().text(), table().definition().columns[position], value);
        }
        pending_[position] = std::move(value);
    });
}

} // namespace drx9::jet
