#pragma once

#include "films/FilmInstrument.h"
#include "films/FilmLibrary.h"
#include "link/ActionQueue.h"
#include "link/MonitorAccess.h"
#include "link/Records.h"
#include "platform/Clock.h"
#include "platform/MessageBoxes.h"
#include "platform/Progress.h"
#include "util/NumberLocale.h"

#include <functional>
#include <string>

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

    /// By the program's close, which answers a box with No.
    [[nodiscard]] bool ended() const { return ends && ends(); }
    /// Nothing more is to be sent.
    [[nodiscard]] bool stopped() const { return instrument.silent() || ended(); }
    [[nodiscard]] FilmRecord& film(int number) const { return films[static_cast<std::size_t>(number)]; }
    /// What the instrument holds in this slot is known.
    [[nodiscard]] bool isKnown(int number) const { return film(number).FilmNum == number; }
    void forget(int number) const { film(number).FilmNum = 0; }
};

} // namespace drx9
