#pragma once

#include "jet/Definition.h"
#include "jet/Value.h"

#include <string>
#include <vector>

namespace drx9::jet {

struct ColumnSpec {
    std::string name;
    ColumnType type = ColumnType::Long;
    std::size_t size = 0; ///< texts: characters; binary: bytes; else not used
    bool autonumber = false;
    bool compress = true; ///< texts: Jet 4 may store them compressed
    std::uint8_t extraFlags = 0;
};

struct IndexSpec {
    std::string name;
    std::vector<std::pair<std::string, bool>> columns; ///< name, ascending
    bool primary = false;                              ///< also unique and required
    bool unique = false;
    bool required = false;
    bool ignoreNulls = false;
};

struct TableSpec {
    std::string name;
    std::vector<ColumnSpec> columns;
    std::vector<IndexSpec> indexes;
};

/// Makes an empty table and enters it in the catalog. Like everything here it is called inside a Change and
/// throws JetError(Rejected) for what cannot be: names taken or not allowed, sizes out of range, rows too
/// long.
PageNo createTable(PageStore& store, const TableSpec& spec, DateTime created);

/// Appends a column behind all others; no row changes.
void addColumn(PageStore& store, PageNo definitionPage, const ColumnSpec& spec);

/// Drops an index by name; its tree goes when no other index uses it.
void dropIndex(PageStore& store, PageNo definitionPage, std::string_view name);

/// Writes the definition of a table, with its maps and index roots, from `page` on. `system` gives it the
/// engine's own marks. `mapPage` is a page with room for map records, or 0; it follows when a new one is
/// taken.
void writeNewDefinition(PageStore& store, PageNo page, const TableSpec& spec, bool system, PageNo& mapPage);

} // namespace drx9::jet
