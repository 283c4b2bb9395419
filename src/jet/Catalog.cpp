#include "jet/Catalog.h"

#include <algorithm>

namespace drx9::jet {

namespace {

constexpr std::int64_t kTableType = 1;
constexpr std::int64_t kOdbcLinkType = 4;
constexpr std::int64_t kFileLinkType = 6;
constexpr std::uint32_t kSystemFlags = 0x80000002;
constexpr std::uint32_t kPageMask = 0x00FFFFFF;
/// The second byte of a security id tells the engine (03) from the creator (04), also where the file hides
/// its ids under a stream of its own.
constexpr char kEngineToCreator = 3 ^ 4;

std::int64_t whole(const Value& value) {
    const auto* number = std::get_if<std::int64_t>(&value);
    return number == nullptr ? 0 : *number;
}

} // namespace

std::vector<Assignment> assignments(const Definition& definition,
                                    std::initializer_list<std::pair<const char*, Value>> values) {
    std::vector<Assignment> result;
    for (const auto& [name, value] : values) {
        result.emplace_back(definition.position(name), value);
    }
    return result;
}

std::vector<CatalogEntry> Catalog::tables() const {
    const Table objects(store_, kCatalogPage);
    const Definition& definition = objects.definition();
    const std::size_t id = definition.position("Id");
    const std::size_t name = definition.position("Name");
    const std::size_t type = definition.position("Type");
    const std::size_t flags = definition.position("Flags");
    std::vector<CatalogEntry> tables;
    objects.scan([&](RowId, const RowReader& row) {
        const Record record(store_, definition, row.fields());
        const auto kind = whole(record.value(type));
        const bool link = kind == kOdbcLinkType || kind == kFileLinkType;
        if (kind != kTableType && !link) {
            return;
        }
        CatalogEntry entry;
        const Value text = record.value(name);
        entry.name = std::holds_alternative<std::string>(text) ? std::get<std::string>(text) : std::string();
        entry.page = static_cast<std::uint32_t>(whole(record.value(id))) & kPageMask;
        entry.user = (static_cast<std::uint32_t>(whole(record.value(flags))) & kSystemFlags) == 0;
        entry.link = link;
        tables.push_back(std::move(entry));
    });
    return tables;
}

CatalogEntry Catalog::find(std::string_view name) const {
    for (const auto& entry : tables()) {
        if (sameName(entry.name, name)) {
            if (entry.link) {
                rejected("the table \"" + entry.name + "\" lies in another file");
            }
            return entry;
        }
    }
    rejected("there is no table \"" + std::string(name) + "\"");
}

bool Catalog::contains(std::string_view name) const {
    const auto all = tables();
    return std::any_of(all.begin(), all.end(),
                       [&](const CatalogEntry& entry) { return sameName(entry.name, name); });
}

Binary Catalog::ownerOf(std::int64_t id) const {
    const Table objects(store_, kCatalogPage);
    const std::size_t idAt = objects.definition().position("Id");
    const std::size_t ownerAt = objects.definition().position("Owner");
    Binary owner;
    for (const RowId row : objects.rows()) {
        const Record record = objects.read(row);
        const Value value = record.value(ownerAt);
        if (whole(record.value(idAt)) == id && std::holds_alternative<Binary>(value)) {
            owner = std::get<Binary>(value);
        }
    }
    return owner;
}

void Catalog::addTable(const std::string& name, PageNo page, DateTime created) {
    const Binary owner = ownerOf(catalogId::kDatabase);
    Table objects(store_, kCatalogPage);
    auto values = assignments(objects.definition(), {{"Id", std::int64_t{page}},
                                                     {"ParentId", catalogId::kTables},
                                                     {"Name", name},
                                                     {"Type", kTableType},
                                                     {"Flags", std::int64_t{0}},
                                                     {"DateCreate", created},
                                                     {"DateUpdate", created}});
    if (!owner.bytes.empty()) {
        values.emplace_back(objects.definition().position("Owner"), owner);
    }
    objects.insert(values);
    grantRights(page, owner);
}

/// A row for the owner, and for each id whose rights on "Tables" are handed down; the creator's stand for the
/// owner's.
void Catalog::grantRights(PageNo page, const Binary& owner) {
    Table rights(store_, kRightsPage);
    const Definition& definition = rights.definition();
    const std::size_t object = definition.position("ObjectId");
    const std::size_t sid = definition.position("SID");
    const std::size_t inheritable = definition.position("FInheritable");
    Binary creator = ownerOf(kCatalogPage);
    if (creator.bytes.size() > 1) {
        creator.bytes[1] = static_cast<char>(creator.bytes[1] ^ kEngineToCreator);
    }
    std::vector<Binary> holders;
    if (!owner.bytes.empty()) {
        holders.push_back(owner);
    }
    for (const RowId row : rights.rows()) {
        const Record record = rights.read(row);
        const Value holder = record.value(sid);
        if (whole(record.value(object)) != catalogId::kTables || record.value(inheritable) != Value(true) ||
            !std::holds_alternative<Binary>(holder)) {
            continue;
        }
        const auto& id = std::get<Binary>(holder);
        if (id != creator && std::find(holders.begin(), holders.end(), id) == holders.end()) {
            holders.push_back(id);
        }
    }
    for (const auto& holder : holders) {
        rights.insert(assignments(definition, {{"ObjectId", std::int64_t{page}},
                                               {"SID", holder},
                                               {"ACM", kFullRights},
                                               {"FInheritable", false}}));
    }
}

} // namespace drx9::jet
