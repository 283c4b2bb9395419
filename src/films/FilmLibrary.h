#pragma once

#include "films/JetHeaders.h"
#include "films/Statements.h"
#include "platform/Desktop.h"
#include "platform/FilePort.h"
#include "util/Paths.h"
#include "util/Tone.h"

#include <array>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace drx9 {

/// The four record sources. All of them look at one open database: what one stores the others see.
enum class Dat : std::uint8_t {
    DBFilms,    ///< the film list
    DBSelected, ///< the film being edited
    MatAll,     ///< the list of materials
    Material,   ///< the film's material
};

/// What a query came to. A query that fails (a quote in a name, a damaged file) leaves no row either.
enum class Found : std::uint8_t { Yes, No, Failed };

/// What the window's bottom line says of the library.
struct LibraryNotice {
    std::string text; ///< empty: nothing to say
    Tone tone = Tone::Plain;
};

struct FilmLibraryParts {
    jet::DBEngine& engine;
    FilePort& files;
    const Paths& paths;
    FileDialogs& dialogs;
    std::string& DBFileName; ///< as it was given; resolved where it is used
};

/// The film and material database behind the film window. It lives as long as that window, keeps the file's
/// pages in memory and commits each change at once, unless commits are gathered. Database errors never leave
/// it: a statement that fails is skipped, and the bottom line says what was not opened or not saved.
class FilmLibrary {
public:
    using Values = std::vector<std::pair<const char*, jet::Value>>;

    explicit FilmLibrary(const FilmLibraryParts& parts);
    FilmLibrary(const FilmLibrary&) = delete;
    FilmLibrary& operator=(const FilmLibrary&) = delete;
    ~FilmLibrary();

    /// Opens the current file, converted if it is of the old format, and binds all four sources to it. Where
    /// it does not exist the operator is asked for another one. No film and no material is current then.
    void DBOpen();
    /// "Open Database": asks for a file and opens it. False when the operator cancelled.
    bool openDatabase();
    /// "Save As Database": copies the current file and makes the copy current. The sources stay where they
    /// are; where the copy takes the place of their own file they read it again. False when nothing was
    /// saved.
    bool saveDatabaseAs();
    /// The same for the unsaved upload, whatever file is shown; the copy is made current only in its place.
    bool saveUploadAs();
    /// Copies the current file to "UploadData.mdb", makes the copy current and opens it. False when the copy
    /// failed: then nothing has changed.
    bool openUploadCopy();
    /// An upload has not been saved under another name yet.
    [[nodiscard]] bool unsavedUpload() const { return unsavedUpload_; }
    /// The next upload's copy would take the place of an unsaved one.
    [[nodiscard]] bool uploadOverwrites() const;

    /// "Films - [Monitor.mdb]".
    [[nodiscard]] const std::string& caption() const { return caption_; }

    /// Points a source at a query or a table, and reads which rows there are.
    Found select(Dat source, const std::string& recordSource);
    /// Reads again which rows there are.
    Found refresh(Dat source);
    /// What the source asks when its file is replaced; its row stays.
    void renameQuery(Dat source, const std::string& recordSource) { at(source).recordSource = recordSource; }
    /// True when the source has a current row.
    [[nodiscard]] bool found(Dat source) const;
    /// How often another program has replaced a file that was open, as far as is known.
    [[nodiscard]] int replacements() const { return replacements_; }
    /// A field of the current row; null when there is none.
    [[nodiscard]] jet::Value value(Dat source, const char* field);
    /// A field of all rows of a source, with nulls where it cannot be read.
    [[nodiscard]] std::vector<jet::Value> column(Dat source, const char* field);

    /// What becomes of a row with a value that its column cannot hold.
    enum class Unfit : std::uint8_t {
        DropsRow,   ///< nothing is stored
        KeepsField, ///< that field keeps its value; unfit() names it
    };
    /// Changes fields of the current row. Values that are the stored ones already write nothing. False when
    /// there is no row or the change could not be stored; what was not stored the bottom line says.
    bool edit(Dat source, const Values& values, Unfit policy = Unfit::DropsRow);
    /// Adds a row with these fields.
    bool add(Dat source, const Values& values, Unfit policy = Unfit::DropsRow);
    /// Fields of the last edit or add whose columns could not hold their values.
    [[nodiscard]] const std::vector<std::string>& unfit() const { return unfit_; }
    /// Characters that a text column takes; 0 when that is not known.
    [[nodiscard]] std::size_t columnSize(const char* table, const char* field);

    /// From here on changes are kept in memory and commit together. False where the file cannot be read any
    /// more.
    bool gatherCommits();
    /// Commits what was gathered and ends the gathering. On failure all of it is taken back. No effect where
    /// nothing is gathered.
    bool commitGathered();

    /// What came of the last operation; taken away by forgetNotice().
    [[nodiscard]] const LibraryNotice& notice() const { return notice_; }
    void forgetNotice() { notice_ = {}; }
    void tell(std::string text, Tone tone) { notice_ = {std::move(text), tone}; }
    /// What holds as long as the file is open: that it could not be opened, cannot be read any more or cannot
    /// be written and why, that an upload is not saved yet, that changes go to another file than the one
    /// saved last, or what came of a conversion.
    [[nodiscard]] LibraryNotice standing() const;

private:
    struct Source {
        std::string recordSource;
        std::unique_ptr<jet::Recordset> records;
    };

    [[nodiscard]] Source& at(Dat source) { return sources_[static_cast<std::size_t>(source)]; }
    [[nodiscard]] const Source& at(Dat source) const { return sources_[static_cast<std::size_t>(source)]; }
    [[nodiscard]] std::string path() const { return parts_.paths.resolve(parts_.DBFileName); }
    [[nodiscard]] std::string uploadPath() const { return parts_.paths.resolve(kUploadFile); }
    [[nodiscard]] bool same(const std::string& a, const std::string& b) const;
    bool saveAs(const std::string& source);
    std::string upgrade();
    void bind();
    void release();
    void followFile();
    void requery(Source& source);
    void requeryAll();
    bool store(Source& source, const Values& values, Unfit policy);
    bool notSaved();
    std::string copy(const std::string& source, const std::string& target);
    [[nodiscard]] FileDialogRequest dialogRequest() const;

    FilmLibraryParts parts_;
    Statements statements_;
    std::string boundPath_; ///< of the file that the sources look at
    std::unique_ptr<jet::Database> database_;
    std::array<Source, 4> sources_;
    std::string caption_;
    std::string openFailure_;  ///< why the file could not be opened
    std::string lost_;         ///< why it cannot be read any more
    std::string elsewhere_;    ///< said where the sources look at another file than the one saved last
    LibraryNotice conversion_; ///< what came of it; empty where nothing was to be converted
    std::vector<std::string> unfit_;
    bool gathering_ = false;
    int replacements_ = 0;
    bool unsavedUpload_ = false;
    LibraryNotice notice_;
};

} // namespace drx9
