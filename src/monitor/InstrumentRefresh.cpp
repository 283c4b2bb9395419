#include "monitor/InstrumentRefresh.h"

#include "monitor/FilmChoice.h"
#include "monitor/Texts.h"
#include "platform/ShownProgress.h"

#include <algorithm>

namespace drx9 {

namespace {
/// What the instrument holds from that film on is not known.
void forgetFilms(Films& films, std::size_t first) {
    for (std::size_t i = first; i < films.size(); ++i) {
        films[i].FilmNum = 0;
    }
}
} // namespace

void InstrumentRefresh::linkOpened() {
    const bool same =
        sameInstrument(link_, parts_.discovery.tried()) && version_ == parts_.link.CommVersion();
    link_ = parts_.discovery.tried(); // what is only set may be another
    version_ = parts_.link.CommVersion();
    if (!same) {
        forgetFilms(parts_.films, 0);
    }
}

InstrumentRefresh::Result InstrumentRefresh::run() {
    Result result;
    Films films = parts_.films;
    parts_.link.watch().begin();
    readFilms(films, result);
    parts_.link.settle();
    if (parts_.link.watch().broken()) {
        result.end = End::OutOfStep;
        return result;
    }
    if (!parts_.actions.waiting() || parts_.actions.waitingFor(ActionQueue::For::System)) {
        readRecord(result);
    } else {
        result.end = End::Cut;
    }
    if (result.end == End::Read) {
        parts_.films = films;
    }
    return result;
}

void InstrumentRefresh::readFilms(Films& films, Result& result) {
    const ShownProgress shown(parts_.progress, monitorText::kReading, ProgressOwner::MainWindow);
    const int count = std::min<int>(parts_.link.FilmCount(), kMostFilms);
    for (int i = 1; i <= count; ++i) {
        if (parts_.actions.waiting()) {
            result.end = End::Cut;
            break;
        }
        shown.reach(i, count);
        const Commands::FilmAnswer answer = parts_.commands.Comm_GetFilm(i, Messages::NonBlocking);
        if (!answer.film) {
            parts_.answers.noteExchange("A", answer.status);
            break;
        }
        films[static_cast<std::size_t>(i)] = *answer.film;
        result.films.push_back(filmListName(*answer.film));
    }
    forgetFilms(films, result.films.size() + 1);
}

void InstrumentRefresh::readRecord(Result& result) {
    result.recordAsked = true;
    const Commands::SystemAnswer answer = parts_.commands.Comm_GetSystem(parts_.system);
    result.recordRead = answer.taken;
    parts_.answers.noteExchange("C?", answer.status);
    if (parts_.link.watch().surplus()) {
        result.end = End::OutOfStep;
    } else if (!result.recordRead) {
        parts_.answers.noteFailure(monitorText::kRecordNotRead); // the status is that of "C?"
    }
}

} // namespace drx9
