#pragma once

#include "jet/Table.h"

#include <string>
#include <vector>

namespace drx9::jet {

/// A table as the catalog names it.
struct CatalogEntry {
    std::string name;
    PageNo page = 0;   ///< its definition
    bool user = true;  ///< false for the engine's own and Access's own tables
    bool link = false; ///< lies in another file
};

/// The catalog, itself the table whose definition is on page 2.
class Catalog {
public:
    explicit Catalog(PageStore& store)
        : store_(store) {}

    /// All tables and links to tables, in stored order.
    [[nodiscard]] std::vector<CatalogEntry> tables() const;
    /// A table by name without regard to case; throws JetError(Rejected) when there is none, or it is a link.
    [[nodiscard]] CatalogEntry find(std::string_view name) const;
    [[nodiscard]] bool contains(std::string_view name) const;
    /// Enters a table, with the rights that every user of the file has. `created` is stored as it is.
    void addTable(const std::string& name, PageNo page, DateTime created);

private:
    [[nodiscard]] Binary ownerOf(std::int64_t id) const;
    void grantRights(PageNo page, const Binary& owner);

    PageStore& store_;
};

/// Ids that are the same in every file.
namespace catalogId {
inline constexpr std::int64_t kRoot = 0x0F000000;
inline constexpr std::int64_t kTables = 0x0F000001;
inline constexpr std::int64_t kDatabases = 0x0F000002;
inline constexpr std::int64_t kRelationships = 0x0F000003;
inline constexpr std::int64_t kDatabase = 0x10000000;
} // namespace catalogId

inline constexpr PageNo kRightsPage = 3; ///< definition of the table of rights
inline constexpr std::int64_t kFullRights = 0xFFEFF;

/// Assignments by column name.
std::vector<Assignment> assignments(const Definition& definition,
                                    std::initializer_list<std::pair<const char*, Value>> values);

} // namespace drx9::jet
