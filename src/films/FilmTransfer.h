#pragma once

#include "films/FilmInstrument.h"
#include "films/FilmLibrary.h"
#include "films/TransferReport.h"
#include "link/ActionQueue.h"
#include "link/MonitorAccess.h"
#include "link/Records.h"
#include "platform/Clock.h"
#include "platform/MessageBoxes.h"
#include "platform/Progress.h"
#include "util/NumberLocale.h"

#include <functional>
#include <string>
#include <vector>

namespace drx9 {

/// What a transfer asks of the film window: its list, and to show what has changed. Rows count from 0.
class FilmListView {
public:
    virtual ~FilmListView() = default;
    [[nodiscard]] virtual int rowCount() const = 0;
    /// Makes a row the current one; which rows are selected stays.
    virtual void setCurrentRow(int row) = 0;
    [[nodiscard]] virtual bool isSelected(int row) const = 0;
    /// Film name of the current row, as it is stored.
    [[nodiscard]] virtual std::string filmName() const = 0;
    /// Shows the current row's film.
    virtual void ShowDBFilm() = 0;
    /// Reads the film list and the material list again.
    virtual void refreshLists() = 0;
    /// Selects the first row alone.
    virtual void selectFirstRow() = 0;
    /// The third sensor's box is enabled: the instrument has three sensors or more.
    [[nodiscard]] virtual bool manySensors() const = 0;
    virtual void setHourglass(bool on) = 0;
};

struct FilmTransferParts {
    FilmLibrary& library;
    Films& films; ///< holds what the instrument holds; the number of an entry that nobody knows is 0
    FilmInstrument& instrument;
    MessageBoxes& boxes;
    Progress& progress;
    const Clock& clock;
    ActionQueue& actions;
    FilmMemoryAccess& memory;
    const NumberLocale& locale;
    FilmListView& list;
    std::function<bool()> ends; ///< the program is closing; may be empty
};

/// Moves films between the library and the instrument. Every operation pumps events, from its first exchange
/// to its last: nothing of ours runs meanwhile except what only looks, and another operation asked for then
/// has no effect. It ends early when two exchanges in a row time out, or after the exchange in hand when the
/// program closes. What came of it is the library's notice.
class FilmTransfer {
public:
    explicit FilmTransfer(const FilmTransferParts& parts)
        : parts_(parts) {}

    /// Reads all films of the instrument into a copy of the library. Where that would overwrite an upload
    /// that has not been saved, asks first.
    void upload();
    /// Writes the selected films (0) or all films (1) to the instrument, then reads them back and asks about
    /// each difference. The film in row k is written as film k + 1.
    void download(int index);
    /// "Z": the instrument's own films again.
    void resetToDefaults();
    /// Asks whether an upload that has not been saved under another name is to be, and saves it. False when
    /// it was to be saved and was not.
    bool askUnsaved();

    [[nodiscard]] bool running() const { return running_; }
    /// What the last download could not do, for the bottom line until the next transfer.
    [[nodiscard]] const LibraryNotice& lasting() const { return lasting_; }

private:
    class Run;

    using Read = std::vector<FilmRecord>; ///< since the last look at the line

    int readFilms(TransferReport& report);
    bool storeRead(Read& read, TransferReport& report);
    bool storeFilm(const FilmRecord& film, TransferReport& report);
    bool shutterClosed();
    void writeFilms(int index, TransferReport& report);
    void writeRow(int film, std::vector<int>& written, TransferReport& report);
    void nameRest(int index, TransferReport& report);
    [[nodiscard]] std::string rowName(int film) const;
    void noteFaults(const std::string& name, const std::string& named, TransferReport& report);
    void VerifyFilms(int index, TransferReport& report);
    bool verifyRow(int film, Messages& messages, Read& read, TransferReport& report);
    bool keepReadBack(Read& read, TransferReport& report);
    [[nodiscard]] bool takes(int film, int index) const;
    [[nodiscard]] int rows() const;
    /// Whether each of the films is surely the one of its number.
    bool areTheirOwn(const Read& read);
    [[nodiscard]] bool isKnown(int number) const;
    /// The instrument holds this film in this slot.
    void keep(int number, const FilmRecord& film);
    /// Nobody knows what the instrument holds in this slot.
    void forget(int number);
    [[nodiscard]] bool stopped() const;
    [[nodiscard]] bool ended() const; ///< by the program's close, which answers a box with No

    static constexpr double kStoreWithin = 0.9; ///< s; films read are stored together, once a second

    FilmTransferParts parts_;
    bool running_ = false;
    LibraryNotice lasting_;
};

} // namespace drx9
