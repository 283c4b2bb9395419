#include "Apply.h"
#include "TextForm.h"
#include "jet/Check.h"
#include "platform/os/OsFilePort.h"
#include "util/Paths.h"

#include <cerrno>
#include <cstdio>
#include <ctime>
#include <sstream>
#include <system_error>

namespace {

using namespace drx9;
using namespace drx9::jet;

constexpr int kDone = 0;
constexpr int kFailed = 1;
constexpr int kCannotOpen = 2;
constexpr std::size_t kBlock = 1 << 16;

constexpr const char* kUsage = "usage: mdbtool tables FILE\n"
                               "       mdbtool dump FILE TABLE\n"
                               "       mdbtool check FILE\n"
                               "       mdbtool new FILE [--jet3]\n"
                               "       mdbtool apply FILE    (operations on standard input)\n";

[[noreturn]] void failed(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

void print(const std::string& text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) {
        failed("the output cannot be written");
    }
}

/// Standard input to its end. Whole before anything is done: an input that breaks off is no shorter script.
std::string readInput() {
    std::string text;
    char block[kBlock];
    while (const std::size_t count = std::fread(block, 1, sizeof block, stdin)) {
        text.append(block, count);
    }
    if (std::ferror(stdin) != 0) {
        failed("the operations cannot be read");
    }
    return text;
}

int fail(int code, const std::string& message) {
    std::fprintf(stderr, "%s\n", message.c_str());
    return code;
}

/// The local time in days since 1899-12-30.
DateTime now() {
    const std::time_t time = std::time(nullptr);
    std::tm local = *std::localtime(&time);
    std::tm utc = *std::gmtime(&time);
    utc.tm_isdst = local.tm_isdst = 0;
    return mdbtool::dateOf(static_cast<std::int64_t>(time) +
                           static_cast<std::int64_t>(std::difftime(std::mktime(&local), std::mktime(&utc))));
}

int listTables(Database& database) {
    for (const auto& name : database.TableNames()) {
        print(name + "\n");
    }
    return kDone;
}

int dumpTable(Database& database, const std::string& name) {
    return database.shared().guarded([&] {
        const Table& table = database.shared().table(name);
        const auto& columns = table.definition().columns;
        std::string out;
        for (const auto& column : columns) {
            out += &column == &columns.front() ? "" : "\t";
            mdbtool::appendEscaped(out, column.name);
        }
        out += '\n';
        std::size_t budget = table.store().size();
        table.scan([&](RowId, const RowReader& row) {
            for (std::size_t i = 0; i < columns.size(); ++i) {
                out += i == 0 ? "" : "\t";
                mdbtool::appendValue(out, valueOf(table.store(), table.definition(), row, i, budget));
            }
            out += '\n';
            if (out.size() > kBlock) {
                print(out);
                out.clear();
            }
        });
        print(out);
        return kDone;
    });
}

int check(Database& database) {
    const CheckResult result =
        database.shared().guarded([&] { return checkDatabase(database.shared().store()); });
    for (const auto& fault : result.faults) {
        print(fault + "\n");
    }
    if (!result.faults.empty()) {
        return kFailed;
    }
    std::string line = "ok: " + std::to_string(result.tables) + " tables, " + std::to_string(result.rows) +
                       " rows, " + std::to_string(result.indexes) + " indexes";
    if (result.unkeyed > 0) {
        line += " (" + std::to_string(result.unkeyed) + " hold values whose keys cannot be recomputed)";
    }
    print(line + "\n");
    return kDone;
}

int apply(Database& database) {
    if (const auto reason = database.ReadOnlyReason(); !reason.empty()) {
        return fail(kCannotOpen, database.Name() + ": " + reason);
    }
    std::istringstream script(readInput());
    const std::string failure = mdbtool::applyScript(database, script);
    return failure.empty() ? kDone : fail(kFailed, failure);
}

ColumnSpec column(const char* name, ColumnType type, std::size_t size = 0) {
    ColumnSpec spec;
    spec.name = name;
    spec.type = type;
    spec.size = size;
    return spec;
}

/// An empty film library. `Film` has no index on purpose: one would make it count as a file of the old
/// format.
int makeLibrary(DBEngine& engine, const std::string& path, Generation generation) {
    using enum ColumnType;
    const TableSpec film{"Film",
                         {column("FilmNum", Integer), column("FilmName", Text, 20),
                          column("Material", Text, 20), column("Tooling", Double), column("EndThick", Double),
                          column("ThickSet", Double), column("TimeSet", Double), column("SensorAvg", Double)},
                         {}};
    const TableSpec material{
        "Material", {column("Material", Text, 20), column("Density", Double), column("ZFactor", Double)}, {}};
    engine.CreateDatabase(path, generation, {film, material}, now());
    return kDone;
}

std::string absolute(const FilePort& files, const std::string& path) {
    const bool rooted = path.front() == '/' || path.front() == '\\' || (path.size() > 1 && path[1] == ':');
    if (rooted) {
        return path;
    }
    const std::string folder = files.currentFolder();
    if (folder.empty()) {
        throw std::runtime_error(path + ": the current folder does not exist");
    }
    return joinPath(folder, path);
}

int run(const std::vector<std::string>& arguments) {
    const std::string command = arguments.empty() ? "" : arguments[0];
    const bool isNew = command == "new";
    const std::size_t expected = command == "dump" ? 3 : 2;
    const bool jet3 = isNew && arguments.size() == 3 && arguments[2] == "--jet3";
    const bool known =
        isNew || command == "tables" || command == "dump" || command == "check" || command == "apply";
    if (!known || (arguments.size() != expected && !jet3) || arguments[1].empty()) {
        return fail(kCannotOpen, kUsage);
    }
    const auto files = makeOsFilePort();
    DBEngine engine(*files);
    const std::string path = absolute(*files, arguments[1]);
    if (isNew) {
        return makeLibrary(engine, path, jet3 ? Generation::Jet3 : Generation::Jet4);
    }
    const bool reads = command == "tables" || command == "dump";
    const auto database = engine.OpenDatabase(path, reads ? Reading::OnDemand : Reading::Whole);
    if (command == "tables") {
        return listTables(*database);
    }
    if (command == "dump") {
        return dumpTable(*database, arguments[2]);
    }
    return command == "check" ? check(*database) : apply(*database);
}

} // namespace

int main(int argc, char** argv) {
    try {
        const int code = run({argv + 1, argv + argc});
        if (std::fflush(stdout) != 0) {
            failed("the output cannot be written");
        }
        return code;
    } catch (const JetError& error) {
        // What was asked for does not exist: the file is good.
        const bool request = error.fault() == Fault::Rejected || error.fault() == Fault::NoSortKey;
        return fail(request ? kFailed : kCannotOpen, error.what());
    } catch (const std::exception& error) {
        return fail(kCannotOpen, error.what());
    }
}
