#pragma once

#include "jet/Query.h"
#include "jet/SharedFile.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace drx9::jet {

/// The rows of a table or a query, with a current one. Which rows there are is settled on opening (and by
/// Requery); their values are read when asked for, so changes made through another recordset show. A row
/// deleted through another one throws JetError(Rejected) when it is touched.
///
/// A change is made by AddNew or Edit, values, Update. AddNew followed by Edit drops the new row.
class Recordset {
public:
    Recordset(std::shared_ptr<SharedFile> file, std::string table, std::vector<Criterion> criteria);

    /// Orders the rows by an index of the table, and goes to the first one. Whole tables only.
    void Index(const std::string& name);
    /// Reads again which rows there are; goes to the first one.
    void Requery();

    void MoveFirst();
    void MoveNext();
    /// True behind the last row, and when there are no rows.
    [[nodiscard]] bool Eof() const { return position_ >= rows_.size(); }
    [[nodiscard]] std::size_t RecordCount() const { return rows_.size(); }
    /// Position of the current row from 0; -1 when there is none.
    [[nodiscard]] long AbsolutePosition() const {
        return Eof() || deleted_ ? -1 : static_cast<long>(position_);
    }
    /// Makes that row the current one; beyond the last one it is the end.
    void AbsolutePosition(long position);

    void AddNew();
    void Edit();
    /// Stores the new or edited row; one commit. The current row stays the current one; a new row is
    /// behind the last.
    void Update();
    void CancelUpdate();
    /// Deletes the current row; one commit. There is no current row then until the next move.
    void Delete();

    [[nodiscard]] std::vector<std::string> FieldNames() const;
    /// The value of a field of the row being added or edited, else of the current one.
    [[nodiscard]] jet::Value Value(const std::string& field) const;
    /// By position in FieldNames().
    [[nodiscard]] jet::Value Value(std::size_t position) const;
    /// Sets a field of the row being added or edited. A value that its column cannot hold is refused: throws
    /// JetError(Rejected), and the field keeps the one it has.
    void SetValue(const std::string& field, jet::Value value);

private:
    enum class Mode { Browse, Add, Edit };

    [[nodiscard]] Table& table() const { return file_->table(tableName_); }
    [[nodiscard]] RowId currentRow() const;
    [[nodiscard]] const Record& current() const;
    void leaveRow();

    std::shared_ptr<SharedFile> file_;
    std::string tableName_;
    std::vector<Criterion> criteria_;
    std::string index_;
    std::vector<RowId> rows_;
    std::size_t position_ = 0;
    bool deleted_ = false; ///< the current row was deleted through this recordset
    Mode mode_ = Mode::Browse;
    std::map<std::size_t, jet::Value> pending_;
    mutable std::optional<Record> record_; ///< of the current row, while nothing changes
    mutable std::uint64_t recordChanges_ = 0;
};

} // namespace drx9::jet
