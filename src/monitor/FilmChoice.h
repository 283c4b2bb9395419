#pragma once

#include "link/Discovery.h"
#include "link/Link.h"
#include "link/LinkSettings.h"
#include "link/Records.h"
#include "monitor/PollTimer.h"
#include "platform/Clock.h"

#include <string>
#include <vector>

namespace drx9 {

/// A film's name as a list shows it: UTF-8, without the blanks that fill it up.
std::string filmListName(const FilmRecord& film);

/// The film list of the main window and the film in use: which one was last selected, and whether the
/// instrument is known to run it.
///
/// A film is confirmed when its selection was accepted, in step. Another link or version text, an opening of
/// the link more than 3 s after the last sound answer (nothing restarts faster; time under a window's hold
/// does not count), and a selection that was refused, not answered, or sent by somebody else end that.
class FilmChoice : public LinkListener {
public:
    FilmChoice(const Films& films, const Link& link, Discovery& discovery, const LinkSettings& settings,
               const PollTimer& timer, const Clock& clock);

    // The list.

    [[nodiscard]] const std::vector<std::string>& names() const { return names_; } ///< UTF-8
    [[nodiscard]] int index() const { return index_; } ///< chosen entry, from 0; -1 none
    void choose(int index) { index_ = index; }
    void clearList();
    /// A list read from the instrument. `asked` is the index of a choice that still waits to be sent, -1 when
    /// none. Selects the film in use again without a request; true when the first film has been chosen and
    /// must be requested, as no film was selected since the start.
    [[nodiscard]] bool setList(std::vector<std::string> names, int asked);
    /// Takes a choice that was not sent back: the film in use is the chosen one again.
    void showCurrent();

    // The film in use.

    /// The film last selected; null when there is none yet.
    [[nodiscard]] const FilmRecord* current() const;
    /// Its name, 8 characters (bytes); blanks when there is none.
    [[nodiscard]] std::string currentName() const;
    /// What the closed list shows where it holds no such entry: the name of the film in use; empty when the
    /// list shows it itself. UTF-8.
    [[nodiscard]] std::string nameBesideList() const;
    /// "D" was sent for this film; `confirmed` when it was accepted, in step.
    void selected(int number, bool confirmed);
    /// Somebody else has sent a selection or reset the films.
    void unconfirm();
    /// Why the film is marked, for the mark's tooltip; empty when it is not.
    [[nodiscard]] std::string mark() const;

    // Losses.

    void noteLoss() { confirmedAtLoss_ = confirmed_; }
    /// The film may have to be selected again after the loss that has just ended: it was confirmed before,
    /// and the same version text answers. Asked once a loss.
    [[nodiscard]] bool takeRepeat();
    void forgetLoss() { confirmedAtLoss_ = false; }

    void linkOpening() override;
    void linkOpened() override;

private:
    const Films& films_;
    const Link& link_;
    const LinkSettings& settings_;
    const PollTimer& timer_;
    const Clock& clock_;
    std::vector<std::string> names_;
    int index_ = -1;
    int current_ = -1; ///< number of the film last selected, -1 none yet
    bool confirmed_ = false;
    bool confirmedAtLoss_ = false;
    LinkSettings linkThen_;   ///< the link that confirmed it
    std::string versionThen_; ///< its version text
};

} // namespace drx9
