#pragma once

#include "jet/Check.h"
#include "jet/Database.h"
#include "platform/FilePort.h"

#include <cstdlib>

namespace drx9::fuzz {

/// One file in memory under any name; enough of a file port to open a database and commit to it.
class OneFilePort : public FilePort {
public:
    explicit OneFilePort(std::string bytes)
        : bytes_(std::move(bytes)) {}

    [[nodiscard]] bool exists(const std::string& path) const override { return path == kPath; }
    [[nodiscard]] std::optional<std::uint64_t> size(const std::string&) const override {
        return bytes_.size();
    }
    [[nodiscard]] std::optional<FileIdentity> identity(const std::string&) const override {
        return FileIdentity{1, 1, bytes_.size(), version_};
    }
    [[nodiscard]] bool writable(const std::string&) const override { return true; }
    [[nodiscard]] bool folderWritable(const std::string&) const override { return true; }
    [[nodiscard]] std::string resolveLinks(const std::string& path) const override { return path; }
    std::unique_ptr<InputFile> open(const std::string&, FileStatus&) const override {
        return std::make_unique<Input>(*this);
    }
    FileStatus read(const std::string&, std::string& bytes) const override {
        bytes = bytes_;
        return {};
    }
    FileStatus append(const std::string&, std::string_view) override { return {}; }
    FileStatus remove(const std::string&) override { return {}; }
    FileStatus makeFolder(const std::string&) override { return {}; }
    [[nodiscard]] std::vector<std::string> list(const std::string&) const override { return {}; }
    std::unique_ptr<OutputFile> create(const std::string&, const std::string&, FileStatus&) override {
        return std::make_unique<Output>(*this);
    }
    FileStatus rename(const std::string&, const std::string&) override {
        bytes_ = written_;
        ++version_;
        return {};
    }
    FileStatus flushFolder(const std::string&) override { return {}; }
    [[nodiscard]] std::string currentFolder() const override { return "/"; }
    [[nodiscard]] std::uint64_t processId() const override { return 1; }

    static constexpr const char* kPath = "/fuzz.mdb";
    [[nodiscard]] const std::string& bytes() const { return bytes_; }

private:
    class Input : public InputFile {
    public:
        explicit Input(const OneFilePort& port)
            : bytes_(port.bytes_)
            , identity_(port.identity(kPath)) {}
        FileStatus read(std::uint64_t at, std::span<char> bytes) override {
            bytes_.copy(bytes.data(), bytes.size(), at);
            return {};
        }
        [[nodiscard]] std::optional<FileIdentity> identity() const override { return identity_; }

    private:
        const std::string bytes_;
        const std::optional<FileIdentity> identity_;
    };
    class Output : public OutputFile {
    public:
        explicit Output(OneFilePort& port)
            : port_(port) {
            port_.written_.clear();
        }
        FileStatus write(std::string_view bytes) override {
            port_.written_ += bytes;
            return {};
        }
        FileStatus flush() override { return {}; }
        FileStatus close() override { return {}; }

    private:
        OneFilePort& port_;
    };

    std::string bytes_;
    std::string written_;
    std::int64_t version_ = 0;
};

/// Opens the bytes as a database and reads everything in it: values, indexes, structure. Damage ends in
/// JetError, and nothing else.
inline void readAll(std::string_view bytes) {
    OneFilePort files{std::string(bytes)};
    try {
        jet::DBEngine engine(files);
        const auto database = engine.OpenDatabase(OneFilePort::kPath);
        jet::PageStore& store = database->shared().store();
        jet::checkDatabase(store);
        for (const auto& entry : jet::Catalog(store).tables()) {
            try {
                const jet::Table table(store, entry.page);
                std::size_t budget = store.size();
                table.scan([&](jet::RowId, const jet::RowReader& row) {
                    for (std::size_t i = 0; i < table.definition().columns.size(); ++i) {
                        jet::valueOf(store, table.definition(), row, i, budget);
                    }
                });
                for (const auto& index : table.definition().logicalIndexes) {
                    (void)table.rowsBy(index);
                }
            } catch (const jet::JetError&) {
            }
        }
    } catch (const jet::JetError&) {
    }
    if (files.bytes() != bytes) {
        std::abort(); // reading must not change the file
    }
}

/// One change, committed by itself; a refusal leaves the file as it was.
template<class Work>
void changeOnce(OneFilePort& files, const Work& work) {
    const std::string before = files.bytes();
    try {
        work();
    } catch (const jet::JetError&) {
        if (files.bytes() != before) {
            std::abort();
        }
    }
}

/// Opens the bytes as a database, changes rows, columns and indexes of its tables and checks the file. A file
/// without faults must have none afterwards.
inline void changeAndCheck(std::string_view bytes) {
    OneFilePort files{std::string(bytes)};
    try {
        jet::DBEngine engine(files);
        const auto database = engine.OpenDatabase(OneFilePort::kPath);
        const bool sound = jet::checkDatabase(database->shared().store()).faults.empty();
        std::size_t tables = 0;
        for (const auto& name : database->TableNames()) {
            if (++tables > 4) {
                break;
            }
            const auto change = [&](const auto& work) {
                changeOnce(files, [&] { database->shared().changed(name, work); });
            };
            change([](jet::Table& table) { table.insert({}); });
            change([](jet::Table& table) {
                const auto rows = table.rows();
                if (!rows.empty()) {
                    const auto row = table.read(rows.front());
                    std::vector<jet::Assignment> values;
                    for (std::size_t i = 0; i < row.fields().size(); ++i) {
                        const bool text = table.definition().columns[i].isText();
                        values.emplace_back(i, text ? jet::Value(std::string(80, 'x')) : row.value(i));
                    }
                    table.update(rows.front(), values);
                    table.erase(rows.back());
                }
            });
            changeOnce(files, [&] { database->TableDefs(name).Append({"Added", jet::ColumnType::Memo, 0}); });
            change([](jet::Table& table) {
                if (const auto columns = table.definition().columns.size(); columns > 0) {
                    table.insert({{columns - 1, std::string(5000, 'm')}});
                }
            });
            changeOnce(files, [&] {
                for (const auto& index : database->TableDefs(name).Indexes()) {
                    database->Execute("DROP INDEX [" + index.Name + "] ON [" + name + "]");
                    break;
                }
            });
        }
        if (sound && !jet::checkDatabase(database->shared().store()).faults.empty()) {
            std::abort();
        }
    } catch (const jet::JetError&) {
    }
}

} // namespace drx9::fuzz
