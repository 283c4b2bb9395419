#pragma once

#include "jet/DataPage.h"

#include <string>
#include <vector>

namespace drx9::jet {

enum class ColumnType : std::uint8_t {
    Boolean = 1,
    Byte = 2,
    Integer = 3,
    Long = 4,
    Currency = 5,
    Single = 6,
    Double = 7,
    Date = 8,
    Binary = 9,
    Text = 10,
    Ole = 11,
    Memo = 12,
    Guid = 15,
    Numeric = 16,
    FixedBinary = 17, ///< in Access's own hidden tables
};

namespace columnFlag {
inline constexpr std::uint8_t kFixed = 0x01; ///< in the fixed part of the row; the type does not decide this
inline constexpr std::uint8_t kUpdatable = 0x02;
inline constexpr std::uint8_t kAutonumber = 0x04;
inline constexpr std::uint8_t kSystem = 0x10;
} // namespace columnFlag

/// A column as its definition describes it; `descriptor` and `storedName` are its own bytes, written back
/// unchanged.
struct Column {
    std::string descriptor;
    std::string storedName;
    std::string name; ///< UTF-8
    ColumnType type = ColumnType::Long;
    std::uint16_t number = 0; ///< bit in a row's null mask; never used again after a drop
    std::uint16_t slot = 0;   ///< variable columns: place in the row's variable table
    std::uint16_t fixedOffset = 0;
    std::uint16_t length = 0; ///< bytes
    std::uint8_t flags = 0;
    bool compress = false; ///< text may be stored compressed
    std::uint8_t precision = 0, scale = 0;
    bool generalOrder = false; ///< sorts in the one order whose weights are known

    [[nodiscard]] bool isFixed() const { return (flags & columnFlag::kFixed) != 0; }
    [[nodiscard]] bool isAutonumber() const { return (flags & columnFlag::kAutonumber) != 0; }
    [[nodiscard]] bool isBoolean() const { return type == ColumnType::Boolean; }
    [[nodiscard]] bool isText() const { return type == ColumnType::Text || type == ColumnType::Memo; }
    [[nodiscard]] bool isLong() const { return type == ColumnType::Memo || type == ColumnType::Ole; }
    /// False for the types of later Access versions, whose values are left alone.
    [[nodiscard]] bool isKnown() const;
};

struct IndexColumn {
    std::uint16_t number = 0; ///< of the column
    bool ascending = true;
};

namespace indexFlag {
inline constexpr std::uint8_t kUnique = 0x01;
inline constexpr std::uint8_t kIgnoreNulls = 0x02; ///< rows whose key columns are all null are left out
inline constexpr std::uint8_t kRequired = 0x08;    ///< nulls are not allowed
} // namespace indexFlag

/// An index tree.
struct RealIndex {
    std::string counters;
    std::string block;
    std::vector<IndexColumn> columns;
    RowId map;
    PageNo root = 0;
    std::uint8_t flags = 0;
    bool primary = false; ///< a logical index of kind primary uses it
    std::string name;     ///< of the first logical index on it, for messages

    [[nodiscard]] bool isUnique() const { return primary || (flags & indexFlag::kUnique) != 0; }
    [[nodiscard]] bool isRequired() const { return primary || (flags & indexFlag::kRequired) != 0; }
    [[nodiscard]] bool ignoresNulls() const { return (flags & indexFlag::kIgnoreNulls) != 0; }
};

enum class Relation : std::uint8_t { None = 0, Referenced = 1, Refers = 2 };

/// An index as people see it; several can use one tree. Kept sorted by name.
struct LogicalIndex {
    std::string block;
    std::string storedName;
    std::string name;
    std::uint32_t number = 0;
    std::uint32_t real = 0;
    Relation relation = Relation::None;
    std::uint32_t otherIndex = 0; ///< number of the other table's logical index
    PageNo otherTable = 0;
    bool primary = false;
};

/// The maps of one memo or OLE column's value pages.
struct LongValueMaps {
    std::uint16_t column = 0; ///< number
    RowId owned, free;
};

/// A table definition, joined from its pages and taken apart.
struct Definition {
    std::vector<PageNo> pages; ///< the first one names the table
    std::string head;          ///< everything before the lists
    std::vector<Column> columns;
    std::vector<RealIndex> realIndexes;
    std::vector<LogicalIndex> logicalIndexes;
    std::vector<LongValueMaps> longValues;
    bool userTable = true; ///< false for the engine's own tables
    std::uint16_t nextColumn = 0;
    std::uint16_t variableColumns = 0; ///< ever made
    RowId ownedMap, freeMap;

    [[nodiscard]] PageNo page() const { return pages.front(); }
    /// Position of the column, by name without regard to case; throws JetError(Rejected) when there is none.
    [[nodiscard]] std::size_t position(std::string_view name) const;
    [[nodiscard]] std::optional<std::size_t> find(std::string_view name) const;
    /// Position of the column with a number; throws JetError(Damaged) when there is none.
    [[nodiscard]] std::size_t positionOf(std::uint16_t number) const;
    [[nodiscard]] const LogicalIndex* findIndex(std::string_view name) const;
    [[nodiscard]] const LongValueMaps* longValueMaps(std::uint16_t number) const;
    /// Columns that a row written now knows: the highest live number + 1.
    [[nodiscard]] std::size_t rowColumns() const;
    /// Bytes that the live fixed columns take, counted behind a row's column count.
    [[nodiscard]] std::size_t fixedArea() const;
};

/// Reads the definition that starts on `page`. Throws JetError(Damaged) when it contradicts itself.
Definition readDefinition(const PageStore& store, PageNo page);
/// Writes a changed definition back over its pages, takes more or frees those left over.
void writeDefinition(PageStore& store, Definition& definition);

/// Fills in `descriptor` from the other fields, for a column made today.
void describeColumn(const Layout& layout, Column& column);

} // namespace drx9::jet
