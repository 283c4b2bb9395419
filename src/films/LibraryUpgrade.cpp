#include "films/LibraryUpgrade.h"

#include "films/FilmText.h"
#include "films/Texts.h"
#include "platform/AtomicReplace.h"
#include "util/Paths.h"
#include "util/Text.h"

#include <array>

namespace drx9 {

namespace {
constexpr std::array<const char*, 7> kFields{"FilmName", "Material", "Tooling",  "EndThick",
                                             "ThickSet", "TimeSet",  "SensorAvg"};
constexpr std::size_t kNameField = 0;
} // namespace

LibraryUpgrade::Outcome LibraryUpgrade::DBUpgrade() {
    const auto database = engine_.OpenDatabase(path_);
    const std::vector<jet::Index> indexes = database->TableDefs("Film").Indexes();
    if (indexes.empty()) {
        return {};
    }
    try {
        convert(*database, indexes.front().Name);
    } catch (const jet::JetError& error) {
        return {false, filled(filmText::kNotConverted, {error.reason()})};
    }
    return {true, told(!database->TableDefs("Film").Indexes().empty())};
}

/// One transaction holds the file as it was read, so that the order and the rows belong together. What fails
/// takes it back: the database's own end does.
void LibraryUpgrade::convert(jet::Database& database, const std::string& index) {
    if (const std::string reason = database.ReadOnlyReason(); !reason.empty()) {
        throw jet::JetError(jet::Fault::ReadOnly, reason);
    }
    database.BeginTrans();
    const std::vector<Row> inOrder = films(database, index);
    database.Execute("DROP INDEX PRIMARYKEY ON FILM");
    database.TableDefs("Film").Append(jet::TableDef::CreateField("FilmNum", jet::ColumnType::Integer));
    number(database, inOrder);
    keepOldFile();
    commit(database);
}

std::vector<LibraryUpgrade::Row> LibraryUpgrade::films(jet::Database& database, const std::string& index) {
    std::vector<Row> found;
    const auto records = database.OpenRecordset("Film");
    records->Index(index);
    stood_ = records->RecordCount();
    for (records->MoveFirst(); !records->Eof() && found.size() < std::size_t{kMostFilms};
         records->MoveNext()) {
        Row row;
        for (const char* field : kFields) {
            row.push_back(records->Value(field));
        }
        if (!jet::isNull(row[kNameField])) {
            row[kNameField] = fixedText(textOf(row[kNameField]), kFilmNameLength);
        }
        found.push_back(std::move(row));
    }
    return found;
}

void LibraryUpgrade::number(jet::Database& database, const std::vector<Row>& films) {
    const auto records = database.OpenRecordset("Film");
    std::int64_t filmNum = 0;
    for (const Row& film : films) {
        records->AddNew();
        records->Edit(); // kept: drops the new row, the stored one is written over
        records->SetValue("FilmNum", ++filmNum);
        for (std::size_t i = 0; i < kFields.size(); ++i) {
            records->SetValue(kFields[i], film[i]);
        }
        records->Update();
        records->MoveNext();
    }
}

/// A failed commit leaves the file as it was, and then no copy. Where only the last flush failed, the
/// converted file stays, and its copy too.
void LibraryUpgrade::commit(jet::Database& database) {
    const auto before = files_.identity(path_);
    try {
        database.CommitTrans();
    } catch (const jet::JetError& error) {
        if (files_.identity(path_) == before) {
            files_.remove(backup_);
            throw;
        }
        warning_ = filled(filmText::kAttention, {error.reason()});
    }
}

void LibraryUpgrade::keepOldFile() {
    std::string name = path_ + ".bak";
    for (int i = 1; files_.exists(name); ++i) {
        name = path_ + ".bak" + std::to_string(i);
    }
    std::string bytes;
    bool ours = false;
    FileStatus status = files_.read(path_, bytes);
    if (status.ok()) {
        status = replaceFile(files_, name, bytes, [&] {
            ours = !files_.exists(name);
            return ours ? FileStatus() : FileStatus::failure(filmText::kBackupExists);
        });
    }
    if (!status.ok()) {
        if (ours && files_.exists(name)) {
            files_.remove(name); // only its folder could not be flushed
        }
        throw jet::JetError(jet::Fault::NotSaved,
                            filled(filmText::kNoBackup, {bareName(name), status.reason()}));
    }
    backup_ = name;
}

std::string LibraryUpgrade::told(bool indexLeft) const {
    const std::string kept = bareName(backup_);
    const std::string numbered =
        stood_ > std::size_t{kMostFilms}
            ? filled(filmText::kSomeNumbered, {std::to_string(kMostFilms), std::to_string(stood_), kept})
            : filled(filmText::kAllNumbered, {kept});
    return numbered + (indexLeft ? filmText::kIndexLeft : "") + warning_;
}

} // namespace drx9
