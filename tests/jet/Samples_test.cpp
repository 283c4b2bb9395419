#include "JetTestSupport.h"

#include <filesystem>
#include <fstream>

namespace drx9::jet {
namespace {

/// Calls visitor(name, files) for each real Access file, put into memory under kPath.
template<class Visitor>
void eachSample(const Visitor& visitor) {
    for (const auto& entry : std::filesystem::directory_iterator(sampleFolder())) {
        const auto extension = entry.path().extension();
        if (extension != ".mdb" && extension != ".accdb") {
            continue;
        }
        std::ifstream file(entry.path(), std::ios::binary);
        MemoryFilePort files;
        files.put(kPath, std::string{std::istreambuf_iterator<char>(file), {}});
        const std::string name = entry.path().filename().string();
        SCOPED_TRACE(name);
        visitor(name, files);
    }
}

class Samples : public testing::Test {
protected:
    void SetUp() override {
        if (sampleFolder().empty()) {
            GTEST_SKIP() << "no sample files (DRX9_MDB_SAMPLES names their folder)";
        }
    }
};

/// Some are refused, the others sound. Rows are doubled (or refused for their keys), changed back and forth,
/// moved and deleted in every user table; after each commit the file is sound, and the other tables are as
/// they were.
TEST_F(Samples, AreSoundAndStaySoundWhenChanged) {
    std::size_t changes = 0;
    eachSample([&](const std::string& name, MemoryFilePort& files) {
        const bool refused =
            name.find("encrypted") == 0 || name.find("password") == 0 || name.find("refuse") == 0;
        DBEngine engine(files);
        EXPECT_EQ(failure([&] { (void)engine.OpenDatabase(kPath); }).empty(), !refused);
        if (refused) {
            return;
        }
        EXPECT_EQ(faultsOf(files), "");
        const auto database = engine.OpenDatabase(kPath);
        for (const auto& table : database->TableNames()) {
            SCOPED_TRACE(table);
            const auto change = [&](const auto& work) {
                changes += failure([&] { database->shared().changed(table, work); }).empty() ? 1 : 0;
            };
            const auto before = rowsOf(*database, table);
            const auto rows = database->shared().table(table).rows();
            const std::size_t few = std::min<std::size_t>(rows.size(), 12);
            for (std::size_t i = 0; i < few; ++i) {
                const RowId row = rows[i];
                change([&](Table& subject) { subject.update(row, {}); });
                change([&](Table& subject) {
                    const Record record = subject.read(row);
                    std::vector<Assignment> values;
                    for (std::size_t at = 0; at < record.fields().size(); ++at) {
                        if (subject.definition().columns[at].isKnown() &&
                            !subject.definition().columns[at].isAutonumber()) {
                            values.emplace_back(at, record.value(at));
                        }
                    }
                    subject.erase(subject.insert(values));
                });
            }
            EXPECT_EQ(rowsOf(*database, table), before);
            EXPECT_EQ(faultsOf(files), "") << name;
            for (std::size_t i = 0; i < few; i += 2) {
                change([&](Table& subject) { subject.erase(rows[i]); });
            }
            const auto number = database->TableDefs(table).Fields().size();
            if (failure([&] {
                    database->TableDefs(table).Append({"Added by test", ColumnType::Text, 200});
                }).empty()) {
                EXPECT_EQ(database->TableDefs(table).Fields().size(), number + 1);
                for (std::size_t i = 1; i < few; i += 2) {
                    change([&](Table& subject) {
                        subject.update(rows[i], {{number, std::string(150, 'x')}});
                    });
                }
            }
            EXPECT_EQ(faultsOf(files), "") << name;
            for (const auto& index : database->TableDefs(table).Indexes()) {
                changes += failure([&] {
                               database->Execute("DROP INDEX [" + index.Name + "] ON [" + table + "]");
                           }).empty()
                               ? 1
                               : 0;
            }
            EXPECT_EQ(faultsOf(files), "") << name;
        }
    });
    EXPECT_GT(changes, 300u);
}

} // namespace
} // namespace drx9::jet
