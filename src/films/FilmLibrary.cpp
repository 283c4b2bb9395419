#include "films/FilmLibrary.h"

#include "films/FilmText.h"
#include "films/LibraryUpgrade.h"
#include "films/Texts.h"
#include "jet/LockFile.h"
#include "platform/AtomicReplace.h"
#include "util/Text.h"

namespace drx9 {

namespace {
constexpr const char* kFilter = "DB Files (*.mdb)|*.mdb";
constexpr std::string_view kNotSaved = "the change was not saved: ";

/// The engine's reason without its own beginning, for behind "Change not saved: ".
std::string plainReason(const std::string& reason) {
    return reason.rfind(kNotSaved, 0) == 0 ? reason.substr(kNotSaved.size()) : reason;
}
} // namespace

FilmLibrary::FilmLibrary(const FilmLibraryParts& parts)
    : parts_(parts) {
    at(Dat::DBFilms).recordSource = at(Dat::DBSelected).recordSource = "Film";
    at(Dat::MatAll).recordSource = at(Dat::Material).recordSource = "Material";
}

FilmLibrary::~FilmLibrary() {
    release();
}

// ---- The file ----

FileDialogRequest FilmLibrary::dialogRequest() const {
    FileDialogRequest request;
    request.filter = kFilter;
    request.initialFolder = parts_.paths.programFolder;
    return request;
}

void FilmLibrary::DBOpen() {
    forgetNotice();
    if (!parts_.files.exists(path())) {
        const std::string chosen = parts_.dialogs.openFile(dialogRequest());
        parts_.DBFileName = chosen.empty() ? parts_.DBFileName : chosen;
    }
    const std::string notLookedAt = upgrade();
    bind();
    if (!notLookedAt.empty() && openFailure_.empty()) {
        tell(filled(filmText::kNotConverted, {notLookedAt}), Tone::Alarm);
    }
    conversion_ = notice_;
    caption_ = "Films - [" + trimmed(bareName(parts_.DBFileName)) + "]";
}

/// Why the file could not even be looked at; empty when it could.
std::string FilmLibrary::upgrade() {
    const bool ran = statements_.run([&] {
        const auto outcome = LibraryUpgrade(parts_.engine, parts_.files, path()).DBUpgrade();
        if (!outcome.told.empty()) {
            tell(outcome.told, outcome.converted ? Tone::Warn : Tone::Alarm);
        }
    });
    return ran ? std::string() : statements_.reason();
}

void FilmLibrary::bind() {
    release();
    boundPath_ = path();
    elsewhere_.clear();
    openFailure_.clear();
    lost_.clear();
    if (!statements_.run([&] { database_ = parts_.engine.OpenDatabase(boundPath_); })) {
        openFailure_ = statements_.reason();
    }
    for (const auto& [source, table] : {std::pair{Dat::DBFilms, "Film"},
                                        {Dat::DBSelected, "Film"},
                                        {Dat::MatAll, "Material"},
                                        {Dat::Material, "Material"}}) {
        if (select(source, table) == Found::Failed && openFailure_.empty()) {
            openFailure_ = statements_.reason();
        }
    }
    // Until a film is chosen nothing is edited.
    for (const Dat source : {Dat::DBSelected, Dat::Material}) {
        if (at(source).records) {
            at(source).records->AbsolutePosition(-1);
        }
    }
}

void FilmLibrary::release() {
    for (Source& source : sources_) {
        source.records.reset();
    }
    database_.reset();
    gathering_ = false;
}

bool FilmLibrary::openDatabase() {
    const std::string chosen = parts_.dialogs.openFile(dialogRequest());
    if (chosen.empty()) {
        return false;
    }
    parts_.DBFileName = chosen;
    DBOpen();
    return true;
}

bool FilmLibrary::saveDatabaseAs() {
    return saveAs(path());
}

bool FilmLibrary::saveUploadAs() {
    return saveAs(uploadPath());
}

bool FilmLibrary::saveAs(const std::string& source) {
    FileDialogRequest request = dialogRequest();
    request.defaultExtension = "mdb";
    request.overwritePrompt = true;
    const std::string chosen = parts_.dialogs.saveFile(request);
    if (chosen.empty()) {
        return false;
    }
    const std::string saved = bareName(chosen);
    const std::string target = parts_.paths.resolve(chosen);
    const bool isCurrent = same(source, path()) || same(source, boundPath_);
    if (const std::string reason = copy(source, target); !reason.empty()) {
        tell(filled(filmText::kNotSavedAs, {saved, reason}), Tone::Alarm);
        return false;
    }
    if (isCurrent) {
        parts_.DBFileName = chosen;
    }
    unsavedUpload_ = unsavedUpload_ && (!same(source, uploadPath()) || same(target, source));
    const std::string said = filled(filmText::kSavedAs, {saved});
    if (same(target, boundPath_)) {
        elsewhere_.clear();
        statements_.run([this] { followFile(); }); // it has been replaced just now
        tell(said, Tone::Plain);
    } else {
        elsewhere_ = filled(filmText::kChangesElsewhere, {bareName(boundPath_), saved});
        tell(said + " " + elsewhere_, Tone::Plain);
    }
    return true;
}

bool FilmLibrary::uploadOverwrites() const {
    return unsavedUpload_ && !same(path(), uploadPath());
}

bool FilmLibrary::openUploadCopy() {
    if (const std::string reason = copy(path(), uploadPath()); !reason.empty()) {
        tell(filled(filmText::kNotCopied, {kUploadFile, reason}), Tone::Alarm);
        return false;
    }
    parts_.DBFileName = kUploadFile;
    DBOpen();
    unsavedUpload_ = true;
    return true;
}

bool FilmLibrary::same(const std::string& a, const std::string& b) const {
    const auto first = parts_.files.identity(a);
    const auto second = parts_.files.identity(b);
    return parts_.files.resolveLinks(a) == parts_.files.resolveLinks(b) ||
           (first && second && first->node != 0 && first->device == second->device &&
            first->node == second->node);
}

/// An empty text when the copy is made, else why not. A file copied onto itself stays as it is.
std::string FilmLibrary::copy(const std::string& source, const std::string& target) {
    std::string bytes;
    FileStatus status = parts_.files.read(source, bytes);
    if (status.ok() && !same(source, target)) {
        const std::string held = jet::lockReason(parts_.files, target);
        status = held.empty() ? replaceFile(parts_.files, target, bytes) : FileStatus::failure(held);
    }
    return status.reason();
}

LibraryNotice FilmLibrary::standing() const {
    if (const std::string& why = openFailure_.empty() ? lost_ : openFailure_; !why.empty()) {
        return {bareName(boundPath_) + ": " + why, Tone::Alarm};
    }
    const std::string reason = database_ ? database_->ReadOnlyReason() : std::string();
    if (!reason.empty()) {
        return {filled(filmText::kReadOnly, {reason}), Tone::Warn};
    }
    if (unsavedUpload_) {
        return {filmText::kUnsaved, Tone::Warn};
    }
    return elsewhere_.empty() ? conversion_ : LibraryNotice{elsewhere_, Tone::Plain};
}

// ---- The record sources ----

/// Where another program has replaced the file, all sources look at the new one from here on. Gathered
/// changes stay with the file that they were made for: their commit will fail and say so.
void FilmLibrary::followFile() {
    if (!database_) {
        throw jet::JetError(jet::Fault::CannotOpen, openFailure_);
    }
    if (gathering_) {
        return;
    }
    std::unique_ptr<jet::Database> now;
    lost_.clear();
    if (!statements_.run([&] { now = parts_.engine.OpenDatabase(boundPath_); })) {
        lost_ = statements_.reason();
        throw jet::JetError(jet::Fault::CannotOpen, lost_);
    }
    if (&now->shared() == &database_->shared()) {
        return;
    }
    database_ = std::move(now);
    ++replacements_;
    requeryAll();
}

/// A source without a current row stays without one: nobody chose a film.
void FilmLibrary::requeryAll() {
    for (Source& source : sources_) {
        const bool chosen = source.records && source.records->AbsolutePosition() != -1;
        source.records.reset();
        if (statements_.run([&] { requery(source); }) && !chosen) {
            source.records->AbsolutePosition(-1);
        }
    }
}

void FilmLibrary::requery(Source& source) {
    source.records = database_->OpenRecordset(source.recordSource);
}

Found FilmLibrary::select(Dat source, const std::string& recordSource) {
    at(source).recordSource = recordSource;
    return refresh(source);
}

Found FilmLibrary::refresh(Dat source) {
    at(source).records.reset();
    const bool ran = statements_.run([&] {
        followFile();
        requery(at(source));
    });
    if (!ran) {
        return Found::Failed;
    }
    return found(source) ? Found::Yes : Found::No;
}

bool FilmLibrary::found(Dat source) const {
    return at(source).records && at(source).records->AbsolutePosition() != -1;
}

jet::Value FilmLibrary::value(Dat source, const char* field) {
    jet::Value result;
    if (found(source)) {
        statements_.run([&] { result = at(source).records->Value(field); });
    }
    return result;
}

std::vector<jet::Value> FilmLibrary::column(Dat source, const char* field) {
    std::vector<jet::Value> values;
    jet::Recordset* const records = at(source).records.get();
    if (records == nullptr) {
        return values;
    }
    for (records->MoveFirst(); !records->Eof(); records->MoveNext()) {
        values.push_back(value(source, field));
    }
    records->MoveFirst();
    return values;
}

bool FilmLibrary::edit(Dat source, const Values& values, Unfit policy) {
    unfit_.clear();
    Values changed;
    for (const auto& [field, wanted] : values) {
        if (!storesSame(value(source, field), wanted)) {
            changed.emplace_back(field, wanted);
        }
    }
    if (!found(source) || changed.empty()) {
        return found(source);
    }
    if (!statements_.run([&] { at(source).records->Edit(); })) {
        return notSaved();
    }
    return store(at(source), changed, policy) ||
           (policy == Unfit::KeepsField && unfit_.size() == changed.size());
}

bool FilmLibrary::add(Dat source, const Values& values, Unfit policy) {
    unfit_.clear();
    if (!at(source).records) {
        return notSaved();
    }
    at(source).records->AddNew();
    return store(at(source), values, policy);
}

/// Sets the fields, each a statement of its own, and saves the row.
bool FilmLibrary::store(Source& source, const Values& values, Unfit policy) {
    for (const auto& [field, value] : values) {
        if (!statements_.run([&, name = field, &set = value] { source.records->SetValue(name, set); })) {
            unfit_.emplace_back(field);
            notSaved();
        }
    }
    if (unfit_.size() == values.size() || (policy == Unfit::DropsRow && !unfit_.empty())) {
        source.records->CancelUpdate();
        return false;
    }
    if (!statements_.run([&] { source.records->Update(); })) {
        source.records->CancelUpdate();
        return notSaved();
    }
    return true;
}

bool FilmLibrary::notSaved() {
    tell(filled(filmText::kChangeNotSaved, {plainReason(statements_.reason())}), Tone::Alarm);
    return false;
}

std::size_t FilmLibrary::columnSize(const char* table, const char* field) {
    std::size_t size = 0;
    statements_.run([&] {
        followFile();
        for (const jet::Field& column : database_->TableDefs(table).Fields()) {
            size = equalNoCase(column.Name, field) ? column.Size : size;
        }
    });
    return size;
}

// ---- Gathered commits ----

bool FilmLibrary::gatherCommits() {
    gathering_ = gathering_ || statements_.run([&] {
        followFile();
        database_->BeginTrans();
    });
    return gathering_;
}

bool FilmLibrary::commitGathered() {
    if (!gathering_) {
        return true;
    }
    gathering_ = false;
    const bool stored = statements_.run([&] { database_->CommitTrans(); });
    if (!stored) {
        tell(filled(filmText::kChangesNotSaved, {plainReason(statements_.reason())}), Tone::Alarm);
        requeryAll();
    }
    return stored;
}

} // namespace drx9
