#pragma once

#include "jet/Definition.h"

#include <optional>
#include <string>
#include <vector>

namespace drx9::jet {

/// A row's values as they are stored, by position in Definition::columns; nothing = null. A boolean is one
/// byte, 0 or 1, and never null. A memo or OLE value is its descriptor, with the value behind it where it is
/// stored in the row.
using Fields = std::vector<std::optional<std::string>>;

/// Takes a row's bytes apart. Keeps references to the definition and the bytes.
class RowReader {
public:
    /// Throws JetError(Damaged) when the row's own counts do not fit its bytes.
    RowReader(const Layout& layout, const Definition& definition, std::string_view row);

    /// The stored value; nothing for null and for columns added after the row was written. Not for booleans.
    [[nodiscard]] std::optional<std::string_view> field(const Column& column) const;
    /// A boolean's value, another column's "is not null".
    [[nodiscard]] bool bit(const Column& column) const;
    [[nodiscard]] Fields fields() const;
    /// Bytes of the fixed part as this row has it, holes of dropped columns included; 0 where the row cannot
    /// tell.
    [[nodiscard]] std::size_t fixedArea() const;

private:
    [[nodiscard]] std::size_t entry(std::size_t slot) const;
    void readVariableTable();

    const Layout& layout_;
    const Definition& definition_;
    Bytes row_;
    std::size_t columns_ = 0; ///< columns that the row knows
    std::size_t maskAt_ = 0;
    std::size_t variables_ = 0;
    std::size_t tableEnd_ = 0; ///< just behind the variable table's entry 0
    std::size_t jumps_ = 0;    ///< jump bytes lie from tableEnd_ on, the first one last
};

/// Puts a row together; the fixed part gets at least `fixedArea` bytes. Throws JetError(Rejected) when it is
/// longer than a row can be.
std::string encodeRow(const Layout& layout, const Definition& definition, const Fields& fields,
                      std::size_t fixedArea);

} // namespace drx9::jet
