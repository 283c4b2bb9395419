#include "jet/NewDatabase.h"

#include "jet/Catalog.h"
#include "jet/Schema.h"

namespace drx9::jet {

namespace {

constexpr std::uint8_t kIdFlag = 0x20; ///< on the columns that hold security ids
constexpr std::int64_t kSystemObject = -0x80000000LL;
constexpr std::int64_t kContainerType = 3;
constexpr std::int64_t kDatabaseType = 2;
constexpr std::int64_t kTableType = 1;

/// Who objects belong to. Jet 4 hides the same ids under a stream that depends on the header's creation time;
/// these go with the time that PageStore writes.
struct SecurityIds {
    std::string admin, users, engine, creator;
};

SecurityIds securityIds(Generation generation) {
    if (generation == Generation::Jet3) {
        return {"\x03\x01", "\x02\x01", "\x02\x03", "\x02\x04"};
    }
    return {"\x64\x8B", "\x65\x8B", "\x65\x89", "\x65\x8E"};
}

ColumnSpec systemColumn(const char* name, ColumnType type, std::size_t size = 0, std::uint8_t flags = 0) {
    ColumnSpec spec;
    spec.name = name;
    spec.type = type;
    spec.size = size;
    spec.compress = false;
    spec.extraFlags = static_cast<std::uint8_t>(columnFlag::kSystem | flags);
    return spec;
}

constexpr std::size_t kText = 255;

std::size_t binarySize(const PageStore& store) {
    return store.layout().longestText;
}

TableSpec objectsTable(const PageStore& store) {
    using enum ColumnType;
    return {"MSysObjects",
            {systemColumn("Id", Long), systemColumn("ParentId", Long), systemColumn("Name", Text, kText),
             systemColumn("Type", Integer), systemColumn("DateCreate", Date),
             systemColumn("DateUpdate", Date),
             systemColumn("Owner", ColumnType::Binary, binarySize(store), kIdFlag),
             systemColumn("Flags", Long), systemColumn("Database", Memo), systemColumn("Connect", Memo),
             systemColumn("ForeignName", Text, kText),
             systemColumn("RmtInfoShort", ColumnType::Binary, binarySize(store)),
             systemColumn("RmtInfoLong", Ole), systemColumn("Lv", Ole), systemColumn("LvProp", Ole),
             systemColumn("LvModule", Ole), systemColumn("LvExtra", Ole)},
            {{.name = "ParentIdName", .columns = {{"ParentId", true}, {"Name", true}}, .unique = true},
             {.name = "Id", .columns = {{"Id", true}}, .primary = true}}};
}

TableSpec rightsTable(const PageStore& store) {
    using enum ColumnType;
    return {"MSysACEs",
            {systemColumn("ObjectId", Long),
             systemColumn("SID", ColumnType::Binary, binarySize(store), kIdFlag), systemColumn("ACM", Long),
             systemColumn("FInheritable", Boolean)},
            {{.name = "ObjectId", .columns = {{"ObjectId", true}}, .required = true}}};
}

TableSpec queriesTable(const PageStore& store) {
    using enum ColumnType;
    TableSpec spec{"MSysQueries",
                   {systemColumn("ObjectId", Long), systemColumn("Attribute", Byte),
                    systemColumn("Order", ColumnType::Binary, binarySize(store)),
                    systemColumn("Name1", Text, kText), systemColumn("Name2", Text, kText),
                    systemColumn("Expression", Memo), systemColumn("Flag", Integer)},
                   {{.name = "ObjectIdAttribute",
                     .columns = {{"ObjectId", true}, {"Attribute", true}, {"Order", true}},
                     .primary = true}}};
    if (store.layout().generation == Generation::Jet4) {
        spec.columns.push_back(systemColumn("LvExtra", Long));
    }
    return spec;
}

TableSpec relationshipsTable() {
    using enum ColumnType;
    TableSpec spec{"MSysRelationships", {}, {}};
    spec.columns = {systemColumn("szRelationship", Text, kText),
                    systemColumn("grbit", Long),
                    systemColumn("ccolumn", Long),
                    systemColumn("icolumn", Long),
                    systemColumn("szObject", Text, kText),
                    systemColumn("szColumn", Text, kText),
                    systemColumn("szReferencedObject", Text, kText),
                    systemColumn("szReferencedColumn", Text, kText)};
    for (const char* name : {"szRelationship", "szObject", "szReferencedObject"}) {
        spec.indexes.push_back({.name = name, .columns = {{name, true}}, .ignoreNulls = true});
    }
    return spec;
}

/// Page 1: the pages that are free, and a second map that stays empty.
void writeGlobalMap(PageStore& store) {
    const PageNo page = store.appendPage();
    initDataPage(store, page, kOwnerOfGlobalMap);
    std::string all(store.layout().mapRecordSize, '\xFF');
    std::fill_n(all.begin(), 5, '\0');
    addRow(store, page, all, SlotKind::Row);
    addRow(store, page, std::string(store.layout().mapRecordSize, '\0'), SlotKind::Row);
    UsageMap global(store, kGlobalMap);
    global.remove(0);
    global.remove(page);
}

void addObject(PageStore& store, std::int64_t id, std::int64_t parent, std::int64_t type, const char* name,
               const std::string& owner, DateTime created) {
    Table objects(store, kCatalogPage);
    objects.insert(assignments(objects.definition(), {{"Id", id},
                                                      {"ParentId", parent},
                                                      {"Type", type},
                                                      {"Flags", kSystemObject},
                                                      {"Name", std::string(name)},
                                                      {"Owner", Binary{owner}},
                                                      {"DateCreate", created},
                                                      {"DateUpdate", created}}));
}

void addRights(PageStore& store) {
    using namespace catalogId;
    const SecurityIds ids = securityIds(store.layout().generation);
    const bool jet3 = store.layout().generation == Generation::Jet3;
    struct Right {
        std::int64_t object;
        const std::string& who;
        std::int64_t mask;
        bool inheritable;
    };
    const Right rights[] = {
        {2, ids.admin, 0x60000, false},
        {3, ids.admin, 0x60000, false},
        {4, ids.admin, 0x60000, false},
        {5, ids.admin, 0xE0000, false},
        {kTables, ids.creator, 0xF00FE, true},
        {kTables, ids.admin, jet3 ? kFullRights : 0x60001, jet3},
        {kRelationships, ids.creator, 0xF00FE, true},
        {kRelationships, ids.admin, 0x60001, false},
        {kDatabases, ids.admin, 0x60000, false},
        {kDatabase, ids.admin, 0x6000E, false},
        {kDatabase, ids.users, 0xE, false},
        {4, ids.users, 0x14, false},
        {5, ids.users, 0x14, false},
        {2, ids.users, 0x14, false},
        {kTables, ids.users, kFullRights, true},
        {kRelationships, ids.users, 0xFFFFF, true},
    };
    Table table(store, kRightsPage);
    for (const auto& right : rights) {
        table.insert(assignments(table.definition(), {{"ObjectId", right.object},
                                                      {"SID", Binary{right.who}},
                                                      {"ACM", right.mask},
                                                      {"FInheritable", right.inheritable}}));
    }
}

} // namespace

void writeEmptyDatabase(PageStore& store, DateTime created) {
    using namespace catalogId;
    store.initHeader();
    writeGlobalMap(store);
    const TableSpec tables[] = {objectsTable(store), rightsTable(store), queriesTable(store),
                                relationshipsTable()};
    for (std::size_t i = 0; i < std::size(tables); ++i) {
        allocatePage(store); // pages 2 to 5
    }
    PageNo mapPage = 0;
    PageNo page = kCatalogPage;
    for (const auto& table : tables) {
        writeNewDefinition(store, page++, table, true, mapPage);
    }
    const SecurityIds ids = securityIds(store.layout().generation);
    addObject(store, kTables, kRoot, kContainerType, "Tables", ids.engine, created);
    addObject(store, kDatabases, kRoot, kContainerType, "Databases", ids.engine, created);
    addObject(store, kRelationships, kRoot, kContainerType, "Relationships", ids.engine, created);
    addObject(store, kDatabase, kDatabases, kDatabaseType, "MSysDb", ids.admin, created);
    page = kCatalogPage;
    for (const auto& table : tables) {
        addObject(store, page++, kTables, kTableType, table.name.c_str(), ids.engine, created);
    }
    addRights(store);
}

} // namespace drx9::jet
