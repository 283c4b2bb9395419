// The Access file engine beside its references: libmdb for reading, a plain write, flush and rename for
// committing.
#include "jet/Database.h"
#include "platform/AtomicReplace.h"
#include "platform/os/OsFilePort.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>

#ifdef DRX9_HAVE_LIBMDB
#include <mdbtools.h>
#endif
#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace {

using namespace drx9;
using namespace drx9::jet;
namespace fs = std::filesystem;

constexpr DateTime kCreated{45000.5};
constexpr std::int64_t kInserts = 1000;

std::string sample() {
    const char* folder = std::getenv("DRX9_MDB_SAMPLES");
    const std::string path = (folder != nullptr ? folder : DRX9_SOURCE_DIR "/../shared/mdb-samples") +
                             std::string("/testV2000.mdb");
    return fs::exists(path) ? path : std::string();
}

std::string scratch(const char* name) {
    return fs::temp_directory_path() / ("drx9-bench-" + std::string(name));
}

// ---- Every row of every user table, file opened again ----

void readAllRows(benchmark::State& state) {
    const auto files = makeOsFilePort();
    const std::string path = sample();
    if (path.empty()) {
        state.SkipWithError("no sample files (DRX9_MDB_SAMPLES)");
        return;
    }
    for ([[maybe_unused]] auto each : state) {
        PageStore store = PageStore::open(*files, path, Reading::OnDemand);
        std::size_t values = 0;
        for (const auto& entry : Catalog(store).tables()) {
            if (!entry.user || entry.link) {
                continue;
            }
            const Table table(store, entry.page);
            std::size_t budget = store.size();
            table.scan([&](RowId, const RowReader& row) {
                for (std::size_t i = 0; i < table.definition().columns.size(); ++i) {
                    benchmark::DoNotOptimize(valueOf(store, table.definition(), row, i, budget));
                    ++values;
                }
            });
        }
        state.counters["values"] = static_cast<double>(values);
    }
}
BENCHMARK(readAllRows)->Unit(benchmark::kMicrosecond);

#ifdef DRX9_HAVE_LIBMDB
void readAllRowsLibmdb(benchmark::State& state) {
    const std::string path = sample();
    if (path.empty()) {
        state.SkipWithError("no sample files (DRX9_MDB_SAMPLES)");
        return;
    }
    std::vector<char> buffer(256 * MDB_BIND_SIZE);
    std::vector<int> lengths(256);
    for ([[maybe_unused]] auto each : state) {
        MdbHandle* mdb = mdb_open(path.c_str(), MDB_NOFLAGS);
        GPtrArray* catalog = mdb_read_catalog(mdb, MDB_TABLE);
        std::size_t values = 0;
        for (guint i = 0; i < catalog->len; ++i) {
            auto* entry = static_cast<MdbCatalogEntry*>(g_ptr_array_index(catalog, i));
            if (entry->object_type != MDB_TABLE || mdb_is_user_table(entry) == 0) {
                continue;
            }
            MdbTableDef* table = mdb_read_table(entry);
            mdb_read_columns(table);
            mdb_rewind_table(table);
            for (unsigned column = 0; column < table->num_cols; ++column) {
                mdb_bind_column(table, static_cast<int>(column) + 1, &buffer[column * MDB_BIND_SIZE],
                                &lengths[column]);
            }
            while (mdb_fetch_row(table) != 0) {
                values += table->num_cols;
            }
            mdb_free_tabledef(table);
        }
        mdb_close(mdb);
        state.counters["values"] = static_cast<double>(values);
    }
}
BENCHMARK(readAllRowsLibmdb)->Unit(benchmark::kMicrosecond);
#endif

#ifdef __GLIBC__
/// Heap bytes that an open file takes, for each byte of the file.
void memoryOfAnOpenFile(benchmark::State& state) {
    const auto files = makeOsFilePort();
    const std::string path = sample();
    if (path.empty()) {
        state.SkipWithError("no sample files (DRX9_MDB_SAMPLES)");
        return;
    }
    const auto used = [] {
        const auto info = mallinfo2();
        return static_cast<double>(info.uordblks + info.hblkhd);
    };
    for ([[maybe_unused]] auto each : state) {
        const double before = used();
        const PageStore store = PageStore::open(*files, path);
        state.counters["heap_per_file_byte"] = (used() - before) / static_cast<double>(store.size());
    }
}
BENCHMARK(memoryOfAnOpenFile)->Iterations(5)->Unit(benchmark::kMicrosecond);
#endif

// ---- Committing ----

ColumnSpec column(const char* name, ColumnType type, std::size_t size = 0) {
    ColumnSpec spec;
    spec.name = name;
    spec.type = type;
    spec.size = size;
    return spec;
}

/// A new file with one table: a primary key, a text index, and as many rows as asked for.
void makeFile(FilePort& files, const std::string& path, std::int64_t rows) {
    fs::remove(path);
    DBEngine engine(files);
    const TableSpec spec{"T",
                         {column("Id", ColumnType::Long), column("Name", ColumnType::Text, 50),
                          column("Num", ColumnType::Double)},
                         {{.name = "PrimaryKey", .columns = {{"Id", true}}, .primary = true},
                          {.name = "ByName", .columns = {{"Name", true}}}}};
    const auto database = engine.CreateDatabase(path, Generation::Jet4, {spec}, kCreated);
    database->BeginTrans();
    const auto set = database->OpenRecordset("T");
    for (std::int64_t i = 0; i < rows; ++i) {
        set->AddNew();
        set->SetValue("Id", i);
        set->SetValue("Name", "Film " + std::to_string(i * 7919 % 10007) + " of the benchmark's library");
        set->SetValue("Num", 0.5);
        set->Update();
    }
    database->CommitTrans();
}

/// Writes the same bytes as the commit, flushed and renamed: what no commit can do without.
void replaceSameBytes(benchmark::State& state, FilePort& files, const std::string& path) {
    std::string bytes;
    files.read(path, bytes);
    const std::string copy = path + ".copy";
    for ([[maybe_unused]] auto each : state) {
        if (!replaceFile(files, copy, bytes).ok()) {
            state.SkipWithError("cannot write");
        }
    }
    state.counters["bytes"] = static_cast<double>(bytes.size());
    fs::remove(copy);
    fs::remove(path);
}

void insertThousandAndCommit(benchmark::State& state) {
    const auto files = makeOsFilePort();
    const std::string path = scratch("insert.mdb");
    for ([[maybe_unused]] auto each : state) {
        state.PauseTiming();
        makeFile(*files, path, 0);
        DBEngine engine(*files);
        const auto database = engine.OpenDatabase(path);
        const auto set = database->OpenRecordset("T");
        state.ResumeTiming();
        database->BeginTrans();
        for (std::int64_t i = 0; i < kInserts; ++i) {
            set->AddNew();
            set->SetValue("Id", i);
            set->SetValue("Name", "Film " + std::to_string(i * 7919 % 10007));
            set->SetValue("Num", 0.5);
            set->Update();
        }
        database->CommitTrans();
    }
    fs::remove(path);
}
BENCHMARK(insertThousandAndCommit)->Unit(benchmark::kMicrosecond)->UseRealTime();

void replaceBytesOfThousand(benchmark::State& state) {
    const auto files = makeOsFilePort();
    const std::string path = scratch("replace.mdb");
    makeFile(*files, path, kInserts);
    replaceSameBytes(state, *files, path);
}
BENCHMARK(replaceBytesOfThousand)->Unit(benchmark::kMicrosecond)->UseRealTime();

constexpr std::int64_t kMegabyteOfRows = 6200;

void editRowOfMegabyteAndCommit(benchmark::State& state) {
    const auto files = makeOsFilePort();
    const std::string path = scratch("edit.mdb");
    makeFile(*files, path, kMegabyteOfRows);
    DBEngine engine(*files);
    const auto database = engine.OpenDatabase(path);
    const auto set = database->OpenRecordset("T");
    double value = 1;
    for ([[maybe_unused]] auto each : state) {
        set->Edit();
        set->SetValue("Num", value += 1);
        set->Update();
    }
    fs::remove(path);
}
BENCHMARK(editRowOfMegabyteAndCommit)->Unit(benchmark::kMicrosecond)->UseRealTime();

void replaceMegabyte(benchmark::State& state) {
    const auto files = makeOsFilePort();
    const std::string path = scratch("megabyte.mdb");
    makeFile(*files, path, kMegabyteOfRows);
    replaceSameBytes(state, *files, path);
}
BENCHMARK(replaceMegabyte)->Unit(benchmark::kMicrosecond)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
