#include "films/FilmTransfer.h"

#include "films/FilmDownload.h"
#include "films/FilmUpload.h"
#include "films/Texts.h"
#include "util/ProgramName.h"
#include "util/Text.h"

#include <algorithm>

namespace drx9 {

/// A transfer on the stack: no tick, no queued action, no other transfer.
class FilmTransfer::Run {
public:
    explicit Run(FilmTransfer& transfer)
        : transfer_(transfer)
        , scope_(transfer.parts_.actions) {
        transfer_.running_ = true;
        transfer_.lasting_ = {};
        transfer_.parts_.instrument.begin();
        transfer_.parts_.library.forgetNotice();
    }
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;
    ~Run() { transfer_.running_ = false; }

private:
    FilmTransfer& transfer_;
    ActionQueue::Scope scope_;
};

void FilmTransfer::upload() {
    if (running_ || (parts_.library.uploadOverwrites() && !askUnsaved()) || parts_.ended()) {
        return;
    }
    const Run run(*this);
    if (!parts_.library.openUploadCopy()) {
        return;
    }
    const LibraryNotice opened = parts_.library.notice();
    parts_.library.forgetNotice();
    parts_.list.refreshLists();
    const LibraryNotice read = FilmUpload(parts_).run();
    parts_.list.refreshLists();
    parts_.list.ShowDBFilm();
    parts_.library.tell(opened.text + (opened.text.empty() ? "" : ". ") + read.text + filmText::kNotSavedYet,
                        std::max({opened.tone, read.tone, Tone::Warn}));
}

void FilmTransfer::download(int index) {
    if (running_) {
        return;
    }
    const Run run(*this);
    parts_.list.setHourglass(true);
    FilmDownload download(parts_, index);
    if (!download.shutterClosed()) {
        return;
    }
    const LibraryNotice sent = download.run();
    parts_.list.selectFirstRow();
    parts_.list.setHourglass(false);
    parts_.library.tell(sent.text, sent.tone);
    lasting_ = sent.tone == Tone::Plain ? LibraryNotice{} : sent;
}

void FilmTransfer::resetToDefaults() {
    if (running_) {
        return;
    }
    const Run run(*this);
    parts_.list.setHourglass(true);
    parts_.memory.filmUnconfirmed();
    const std::uint16_t status = parts_.instrument.resetFilms();
    for (FilmRecord& film : parts_.films) {
        film.FilmNum = 0; // not known, whatever was answered
    }
    const bool sound = parts_.instrument.look() != FilmInstrument::Step::Broken;
    parts_.list.setHourglass(false);
    if (status == comm::kOk && sound) {
        parts_.library.tell(filmText::kReset, Tone::Plain);
    } else if (comm::isUnanswered(status) || status == comm::kOk) {
        parts_.library.tell(
            filled(filmText::kResetUnknown, {sound ? commStatusText(status) : filmText::kShutterOutOfStep}),
            Tone::Alarm);
    } else {
        parts_.library.tell(filled(filmText::kNotReset, {commStatusText(status)}), Tone::Alarm);
    }
}

bool FilmTransfer::askUnsaved() {
    return !parts_.library.unsavedUpload() ||
           !parts_.boxes.askYesNo(filmText::kAskUnsaved, kProgramName, MessageIcon::Question) ||
           parts_.library.saveUploadAs();
}

} // namespace drx9
